#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QTest>
#include <algorithm>
#include <cstddef>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "backends/qt/look.h"
#include "backends/qt/strings.h"
#include "platform/dialog.h"
#include "resources/dialogs.h"
#include "resources/strings.h"
#include "tests/backends/qt/page_machine.h"
#include "tests/backends/qt/user.h"

namespace {

using support::User;

/// The windows in the languages that come with the program: nothing in them is cut off.
class TranslationsOnScreen : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    QFile file(QStringLiteral(VOXTREL_LANGUAGES_DIR "/Voxtrel%1.lng")
                   .arg(QString::fromLatin1(GetParam())));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray read = file.readAll();
    const auto bytes =
        std::as_bytes(std::span(read.constData(), static_cast<std::size_t>(read.size())));
    m_machine.LoadLanguage({bytes.begin(), bytes.end()});
  }

  static void ExpectWide(const QWidget& control, const QString& text, int room) {
    EXPECT_FALSE(text.isEmpty()) << control.objectName().toStdString();
    EXPECT_LE(control.fontMetrics().size(Qt::TextShowMnemonic, text).width(), room)
        << text.toStdString();
  }

  /// A line that is higher than its place is cut at both ends, and an accent at its upper one.
  static void ExpectHigh(const QLabel& label) {
    const QFontMetrics metrics = label.fontMetrics();
    EXPECT_GE(label.contentsRect().height(), metrics.height()) << label.text().toStdString();
    EXPECT_GE(label.contentsMargins().top() + metrics.ascent(),
              -metrics.tightBoundingRect(label.text()).top())
        << label.text().toStdString();
  }

  support::PageMachine m_machine;
  User m_user;
};

TEST_P(TranslationsOnScreen, TheLearningPageShowsEachOfItsTextsWhole) {
  m_user.Soon([] {
    const QDialog& window = *User::GetWindow();
    for (const auto* label : window.findChildren<QLabel*>()) {
      if (label->isVisible() && !label->objectName().isEmpty()) {
        ExpectWide(*label, label->text(), label->width());
        ExpectHigh(*label);
      }
    }
    for (const auto* button : window.findChildren<QPushButton*>()) {
      if (button->isVisible()) {
        constexpr int kPadding = 3;  // So much stays free, or the text seems to touch the border.
        const int border = button->style()->pixelMetric(QStyle::PM_DefaultFrameWidth);
        ExpectWide(*button, button->text(), button->width() - 2 * (border + kPadding));
      }
    }
    User::GetWindow()->reject();
  });
  m_machine.RunSheet();
}

TEST_P(TranslationsOnScreen, EachButtonOfTheLearningPageHasALetterOfItsOwnThatPressesIt) {
  m_user.Soon([] {
    std::set<QKeySequence> keys;
    const auto keyOf = [](int id) { return QKeySequence::mnemonic(User::FindButton(id)->text()); };
    const int buttons[] = {resources::kRecordButtonId, resources::kPlayButtonId,
                           resources::kDeleteButtonId, resources::kDeleteAllButtonId,
                           resources::kTestButtonId};
    for (const int id : buttons) {
      EXPECT_FALSE(keyOf(id).isEmpty()) << User::FindButton(id)->text().toStdString();
      keys.insert(keyOf(id));
    }
    EXPECT_EQ(keys.size(), std::size(buttons));
    User::GetWindow()->activateWindow();
    QApplication::processEvents();
    const QKeyCombination record = keyOf(resources::kRecordButtonId)[0];
    // Not as a click of a key, which the testing library has for Latin letters alone.
    QTest::sendKeyEvent(QTest::Press, User::GetWindow()->focusWidget(), record.key(), QString(),
                        record.keyboardModifiers());
    EXPECT_TRUE(User::FindButton(resources::kRecordButtonId)->isDown());
    User::GetWindow()->reject();
  });
  m_machine.RunSheet();
}

TEST_P(TranslationsOnScreen, TheTitlesOfTheDialogsFitIntoTheirHeaders) {
  constexpr platform::Font kTitleFont{u"Tahoma", 13, platform::kBoldWeight};
  constexpr int kLeft = 5;
  const auto widthOf = [&](std::u16string_view text) {
    return QFontMetrics(qt::MakeFont(kTitleFont)).horizontalAdvance(qt::ToQString(text));
  };
  const auto roomOf = [](int units) {
    return qt::ToDesktop(platform::ToPixels({0, 0, units, 1})).width() - kLeft;
  };
  EXPECT_LE(widthOf(m_machine.texts(resources::kReinitTitle)),
            roomOf(resources::kReinitDialog.width));
  const auto& controls = resources::kTestResultsDialog.controls;
  const auto help =
      std::ranges::find(controls, resources::kTestHelpId, &resources::ControlTemplate::id);
  ASSERT_NE(help, controls.end());
  EXPECT_LE(widthOf(m_machine.texts(resources::kTestTitle)), roomOf(help->rect.x));
}

INSTANTIATE_TEST_SUITE_P(Languages, TranslationsOnScreen,
                         testing::Values("", ".de", ".es", ".fr", ".ru", ".zh-Hans"));

}  // namespace
