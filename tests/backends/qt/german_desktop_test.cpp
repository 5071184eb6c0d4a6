#include <gtest/gtest.h>

#include <QDialog>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>

#include "backends/qt/application.h"
#include "backends/qt/strings.h"
#include "resources/dialogs.h"
#include "resources/fault_strings.h"
#include "resources/tags_window_strings.h"
#include "tests/backends/qt/page_machine.h"
#include "tests/backends/qt/user.h"

namespace {

using support::User;

/// A process whose desktop is German, and which has no language file of the device.
class GermanDesktop : public testing::Test {
 protected:
  GermanDesktop() { qt::FollowDesktopLanguage(); }
  ~GermanDesktop() override { resources::ChooseLanguage({}); }
};

TEST_F(GermanDesktop, HasOurOwnTextsInGerman) {
  EXPECT_EQ(qt::Say(resources::kTagsTitle), QStringLiteral("Anrufnamen"));
}

TEST_F(GermanDesktop, WritesNumbersAsGermansDo) {
  EXPECT_EQ(QLocale().toString(1.5), QStringLiteral("1,5"));
}

TEST_F(GermanDesktop, HasTheButtonsOfTheWindowLibraryInGerman) {
  const QMessageBox box(QMessageBox::Question, {}, {}, QMessageBox::Ok | QMessageBox::Cancel);
  EXPECT_EQ(box.button(QMessageBox::Cancel)->text().remove(u'&'), QStringLiteral("Abbrechen"));
}

TEST_F(GermanDesktop, ShowsTheSheetInEnglishAsNoLanguageFileIsInUse) {
  support::PageMachine machine;
  User user;
  user.Soon([] {
    EXPECT_EQ(User::GetWindow()->windowTitle(), QStringLiteral("Property"));
    EXPECT_EQ(User::FindButton(resources::kRecordButtonId)->text().remove(u'&'),
              QStringLiteral("Record"));
    User::GetWindow()->reject();
  });
  machine.RunSheet();
}

TEST_F(GermanDesktop, CancelsAQuestionOfTheSheetByAGermanButton) {
  support::PageMachine machine;
  User user;
  QString cancel;
  user.SetAnswer([&](QDialog& box) {
    auto* const button = box.findChild<QPushButton*>(QStringLiteral("cancel"));
    cancel = button->text().remove(u'&');
    button->click();
  });
  const platform::MessageAnswer answer =
      machine.ui.ShowMessage({u"The tag will be deleted!", platform::MessageCaption::kText,
                              u"Attention", platform::MessageStyle::kOkCancel});
  EXPECT_EQ(answer, platform::MessageAnswer::kCancel);
  EXPECT_EQ(cancel, QStringLiteral("Abbrechen"));
  EXPECT_EQ(user.GetBoxTexts(), std::vector<QString>{QStringLiteral("The tag will be deleted!")});
}

}  // namespace
