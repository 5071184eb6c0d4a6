#include <gmock/gmock.h>

#include <QApplication>
#include <QClipboard>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QTextEdit>

#include "tests/qt/dialog_fixture.h"

namespace {

using platform::MessageAnswer;
using platform::MessageBox;
using platform::MessageCaption;
using platform::MessageStyle;
using support::User;
using testing::ElementsAre;

class MessageDialog : public DialogFixture {
 protected:
  MessageAnswer Show(const MessageBox& box, User::Answer answer) {
    m_user.SetAnswer(std::move(answer));
    return m_ui.ShowMessage(box);
  }
  static QTextEdit* TextOf(QDialog& box) { return box.findChild<QTextEdit*>("text"); }

  const MessageBox m_question{u"Really?", MessageCaption::kText, u"Attention",
                              MessageStyle::kOkCancel | MessageStyle::kIconExclamation};
};

TEST_F(MessageDialog, AnswersAsTheUserPresses) {
  EXPECT_EQ(Show(m_question, support::Press("ok")), MessageAnswer::kOk);
  EXPECT_EQ(Show(m_question, support::Press("cancel")), MessageAnswer::kCancel);
  EXPECT_THAT(m_user.GetBoxes()[0].buttons, ElementsAre("ok", "cancel"));
}

TEST_F(MessageDialog, EscAndTheCloseBoxDecline) {
  EXPECT_EQ(Show(m_question, [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); }),
            MessageAnswer::kCancel);
  EXPECT_EQ(Show(m_question, [](QDialog& box) { box.close(); }), MessageAnswer::kCancel);
}

TEST_F(MessageDialog, EnterIsOk) {
  EXPECT_EQ(Show(m_question, [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Return); }),
            MessageAnswer::kOk);
}

TEST_F(MessageDialog, WithOneButtonThereIsOneAnswer) {
  const MessageBox box = platform::ApplicationBox(u"text");
  EXPECT_EQ(Show(box, [](QDialog& shown) { QTest::keyClick(&shown, Qt::Key_Escape); }),
            MessageAnswer::kOk);
  EXPECT_THAT(m_user.GetBoxes()[0].buttons, ElementsAre("ok"));
}

TEST_F(MessageDialog, TheCaptionIsWhatTheBoxAsksFor) {
  for (const auto kind :
       {MessageCaption::kText, MessageCaption::kApplication, MessageCaption::kNone}) {
    Show({u"text", kind, u"Own & only", MessageStyle::kOk}, support::Press("ok"));
  }
  EXPECT_EQ(m_user.GetBoxes()[0].caption, "Own & only");
  EXPECT_EQ(m_user.GetBoxes()[1].caption, "Zedra Voxtrel");
  EXPECT_EQ(m_user.GetBoxes()[2].caption, "");
}

TEST_F(MessageDialog, NothingInTheTextIsInterpreted) {
  const std::u16string text = u"<b>R&D</b> 100%s &amp; https://example.org\n\nnext";
  Show(platform::ApplicationBox(text), support::Press("ok"));
  EXPECT_EQ(m_user.GetBoxes()[0].text.toStdU16String(), text);
}

TEST_F(MessageDialog, StaysOnTopOnlyWhereToldTo) {
  Show({u"text", MessageCaption::kNone, {}, MessageStyle::kTopmost}, support::Press("ok"));
  Show({u"text", MessageCaption::kNone, {}, MessageStyle::kSetForeground}, support::Press("ok"));
  EXPECT_TRUE(m_user.GetBoxes()[0].staysOnTop);
  EXPECT_FALSE(m_user.GetBoxes()[1].staysOnTop);
}

TEST_F(MessageDialog, TheWholeTextIsCopiedByTheKeyboard) {
  Show(m_question, [](QDialog& box) {
    QTest::keyClick(&box, Qt::Key_C, Qt::ControlModifier);
    box.reject();
  });
  EXPECT_EQ(QApplication::clipboard()->text(), "Really?");
}

TEST_F(MessageDialog, APartOfTheTextIsChosenAndCopied) {
  Show(platform::ApplicationBox(u"Error 42 in here"), [](QDialog& box) {
    QTextEdit* text = TextOf(box);
    EXPECT_TRUE(text->textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
    EXPECT_TRUE(text->isReadOnly());
    text->setFocus();
    QTest::keyClick(text, Qt::Key_Home);
    for (int i = 0; i < 5; ++i) {
      QTest::keyClick(text, Qt::Key_Right, Qt::ShiftModifier);
    }
    QTest::keyClick(text, Qt::Key_C, Qt::ControlModifier);
    box.reject();
  });
  EXPECT_EQ(QApplication::clipboard()->text(), "Error");
}

TEST_F(MessageDialog, ALongTextWrapsAndScrolls) {
  const int screen = QApplication::primaryScreen()->availableGeometry().height();
  std::u16string text;
  for (int i = 0; i < 2000; ++i) {
    text += u"words and ";
  }
  Show(platform::ApplicationBox(text), [screen](QDialog& box) {
    EXPECT_LT(box.height(), screen);
    EXPECT_TRUE(TextOf(box)->verticalScrollBar()->isVisible());
    box.reject();
  });
  Show(platform::ApplicationBox(std::u16string(500, u'x')), [](QDialog& box) {
    EXPECT_EQ(TextOf(box)->horizontalScrollBar()->maximum(), 0) << "Even one long word wraps.";
    EXPECT_EQ(TextOf(box)->verticalScrollBar()->maximum(), 0);
    box.reject();
  });
}

TEST_F(MessageDialog, AShortTextTakesOneLine) {
  Show(m_question, [](QDialog& box) {
    EXPECT_EQ(TextOf(box)->verticalScrollBar()->maximum(), 0);
    EXPECT_LT(TextOf(box)->height(), 2 * box.fontMetrics().height());
    box.reject();
  });
}

}  // namespace
