// Whatever a text holds, it is shown as it stands: a language file gives no window a picture, a
// link or another letter.

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QHelpEvent>
#include <QLabel>
#include <QTextDocument>
#include <QTextEdit>
#include <QToolTip>

#include "backends/qt/strings.h"
#include "language/translation.h"
#include "resources/dialogs.h"
#include "resources/language_keys.h"
#include "tests/backends/qt/dialog_fixture.h"

namespace {

using support::User;

const std::u16string kMarks =
    u"<img src='/no/such.png'><b>bold</b> <a href='x'>link</a> &lt;&amp; 100% & so on";

/// What a widget shows that takes what looks like HTML for HTML.
QString Shown(const QString& text) {
  if (!Qt::mightBeRichText(text)) {
    return text;
  }
  QTextDocument document;
  document.setHtml(text);
  return document.toPlainText();
}

/// What the tool tip shows over a widget; empty if there is none.
QString ShownTip(QWidget& widget) {
  const QPoint middle = widget.rect().center();
  QHelpEvent event(QEvent::ToolTip, middle, widget.mapToGlobal(middle));
  QApplication::sendEvent(&widget, &event);
  const QString shown = QToolTip::isVisible() ? Shown(QToolTip::text()) : QString();
  // The library lets a tip fade, and it would be taken for the next one.
  for (QWidget* const window : QApplication::topLevelWidgets()) {
    if (window->inherits("QTipLabel")) {
      delete window;
    }
  }
  return shown;
}

QString SpokenDescription(QWidget& widget) {
  return QAccessible::queryAccessibleInterface(&widget)->text(QAccessible::Description);
}

using QtPlainText = DialogFixture;

TEST_F(QtPlainText, IsShownByEveryKindOfControl) {
  NotingDialog dialog(m_ui);
  const QString marks = qt::ToQString(kMarks);
  Run(dialog, [&] {
    for (const int id : {sample::kLabel, sample::kGo, sample::kStop, sample::kCheck}) {
      dialog.Window().SetText(id, kMarks);
      EXPECT_EQ(dialog.Window().GetText(id), kMarks);
      EXPECT_EQ(ShownTip(*User::Find(id)), marks) << id;
      EXPECT_EQ(SpokenDescription(*User::Find(id)), marks) << id;
    }
    EXPECT_EQ(dynamic_cast<QLabel*>(User::Find(sample::kLabel))->textFormat(), Qt::PlainText);
    for (const int id : {sample::kCombo, sample::kSortedCombo, sample::kEditable, sample::kList}) {
      ASSERT_EQ(dialog.Window().AddItem(id, kMarks), 0);
      dialog.Window().SetSelection(id, 0);
      EXPECT_EQ(dialog.Window().GetItemText(id, 0), kMarks);
      // The choice of a closed box is elided, and the tip shows it whole.
      const bool isElided = id == sample::kCombo || id == sample::kSortedCombo;
      EXPECT_EQ(ShownTip(*User::Find(id)), isElided ? marks : QString()) << id;
    }
    EXPECT_EQ(ShownTip(*User::FindList(sample::kList)->viewport()), "");
    dialog.Window().SetText(sample::kEditable, kMarks);
    EXPECT_EQ(dialog.Window().GetText(sample::kEditable), kMarks);
  });
}

TEST_F(QtPlainText, OfMessageBoxesAndTheirCaptions) {
  platform::MessageBox box = platform::ApplicationBox(kMarks);
  box.captionKind = platform::MessageCaption::kText;
  box.caption = kMarks;
  QString text;
  QString title;
  m_user.SetAnswer([&](QDialog& dialog) {
    const auto* edit = dialog.findChild<QTextEdit*>();
    text = edit->toPlainText();
    for (const QTextFormat& format : edit->document()->allFormats()) {
      EXPECT_FALSE(format.isImageFormat());
      EXPECT_FALSE(format.toCharFormat().isAnchor());
    }
    title = dialog.windowTitle();
    support::Press("ok")(dialog);
  });
  static_cast<void>(m_ui.ShowMessage(box));
  EXPECT_EQ(text.toStdU16String(), kMarks);
  EXPECT_EQ(title.toStdU16String(), kMarks);
}

TEST_F(QtPlainText, OfATitleMayHoldTheMarkOfAChange) {
  EXPECT_EQ(qt::AsWindowTitle(QStringLiteral("a[*]b")), "a[*][*]b");
  EXPECT_EQ(qt::AsWindowTitle(QStringLiteral("a[b]")), "a[b]");
}

TEST_F(QtPlainText, OfToolTipsIsLeftAloneUnlessItLooksLikeMore) {
  EXPECT_EQ(qt::AsToolTip(QStringLiteral("1 < 2 & 3")), "1 < 2 & 3");
  EXPECT_NE(qt::AsToolTip(QStringLiteral("<b>1</b>")), "<b>1</b>");
  EXPECT_EQ(Shown(qt::AsToolTip(QStringLiteral("<b>1</b>\n  %1 2"))), "<b>1</b>\n  %1 2");
}

/// A text of a language file ends at its first slash.
constexpr const char16_t* kMarksOfLanguageFile = u"<b>x <i>y <img src=none.png> &lt; z";

/// The Learning page with a language file whose every text is made of marks.
TEST(QtPlainTextOfALanguageFile, IsShownAsItStandsByTheWholeSheet) {
  support::PageMachine machine;
  std::u16string file;
  for (const resources::LanguageKey& key : resources::kLanguageKeys) {
    file += std::u16string(key.key) + u" " + kMarksOfLanguageFile + u"\r\n";
  }
  machine.LoadLanguage(language::ToLanguageFile(file));
  User user;
  int labels = 0;
  int tips = 0;
  user.Soon([&] {
    for (auto* label : User::GetWindow()->findChildren<QLabel*>()) {
      EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
      ++labels;
    }
    for (auto* widget : User::GetWindow()->findChildren<QWidget*>()) {
      EXPECT_EQ(widget->whatsThis(), "");
      EXPECT_EQ(widget->statusTip(), "");
      if (!widget->toolTip().isEmpty()) {
        // The label of the count has a number after its text.
        EXPECT_TRUE(Shown(widget->toolTip()).startsWith(QString::fromUtf16(kMarksOfLanguageFile)))
            << widget->toolTip().toStdString();
        ++tips;
      }
    }
    User::GetWindow()->reject();
  });
  machine.RunSheet();
  EXPECT_GT(labels, 2);
  EXPECT_GT(tips, 2);
}

}  // namespace
