#include "host/home/setup_page.h"

#include <gmock/gmock.h>

#include <QAccessible>
#include <QProgressBar>
#include <QScrollArea>
#include <QScrollBar>
#include <QWheelEvent>

#include "dialer/ways.h"
#include "host/home/level_meter.h"
#include "storage/device_paths.h"
#include "storage/microphone_choice.h"
#include "storage/registry_keys.h"
#include "tags/page_one.h"
#include "tests/host/home/setup_fixture.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"

namespace {

using home_test::SetupPageTest;

std::u16string ReadMicrophone(const machine::Options& options) {
  machine::Backends backends(options);
  return storage::ReadMicrophone(backends.GetRegistry());
}

TEST_F(SetupPageTest, SaysWhoseContactsTheseAreAndHowMany) {
  Open();
  AwaitText("bookPeople", "1 person with a telephone number was found.");
  EXPECT_TRUE(Text("bookSource").contains("You have chosen no address book yet."));
  EXPECT_TRUE(Text("bookSource").contains(QPath("root/contacts.vcf")));
  EXPECT_EQ(Text("bookRemarks"), "");
}

TEST_F(SetupPageTest, AChosenVcardFileIsTakenAndRemembered) {
  WriteContacts("more.vcf", {"Ann", "Bob", "Cy"});
  Open();
  AwaitText("bookPeople", "1 person");
  m_file = QPath("more.vcf");
  Press("chooseBookFile");
  AwaitText("bookPeople", "3 people with telephone numbers were found.");
  EXPECT_EQ(Text("bookNews"), "The address book was chosen.");
  EXPECT_TRUE(Text("bookSource").contains(QPath("more.vcf")));
  EXPECT_EQ(m_work.loads, 1) << "The window shows the people of the new book.";
  Open();
  AwaitText("bookPeople", "3 people");
}

TEST_F(SetupPageTest, ADroppedFileIsChosenAndSeveralAreNot) {
  WriteContacts("more.vcf", {"Ann", "Bob"});
  Open();
  AwaitText("bookPeople", "1 person");
  m_page->OnFilesDropped({QPath("more.vcf"), QPath("contacts.vcf")});
  EXPECT_EQ(Text("bookNews"), "Drop one vCard file, or one folder of them.");
  m_page->OnFilesDropped({QPath("more.vcf")});
  AwaitText("bookPeople", "2 people");
}

TEST_F(SetupPageTest, AFileThatIsNoAddressBookIsNotChosenAndThePageSaysWhy) {
  std::ofstream(Path("other.txt")) << "Hello\n";
  Open();
  AwaitText("bookPeople", "1 person");
  m_page->OnFilesDropped({QPath("other.txt")});
  AwaitText("bookNews", "was not chosen. It is missing, holds no contacts, or cannot be read");
  EXPECT_TRUE(Text("bookPeople").contains("1 person"));
  EXPECT_EQ(m_work.loads, 0);
}

TEST_F(SetupPageTest, TheDesktopsAddressBooksAreNotChosenIfNobodyAnswersForThem) {
  Open();
  AwaitText("bookPeople", "1 person");
  Press("useDesktopBook");
  AwaitText("bookNews", "The desktop's address books were not chosen.");
  EXPECT_TRUE(Text("bookSource").contains("You have chosen no address book yet."));
}

TEST_F(SetupPageTest, ABookWithoutThePeopleOfTheTagsIsNotChosen) {
  TeachAnn();
  WriteContacts("others.vcf", {"Zoe"});
  Open();
  AwaitText("bookPeople", "1 person");
  m_page->OnFilesDropped({QPath("others.vcf")});
  AwaitText("bookNews", "Voice tags belong to people whom it does not have.");
  EXPECT_TRUE(Text("bookPeople").contains("1 person"));
  EXPECT_EQ(m_work.loads, 0);
}

TEST_F(SetupPageTest, PlacesThatCouldNotBeReadAreNamedWithTheirLines) {
  std::ofstream(Path("torn.vcf"), std::ios::binary)
      << "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee;Ann\r\nTEL:5551234\r\nEND:VCARD\r\n"
         "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Ray;Bob\r\n";
  Open();
  AwaitText("bookPeople", "1 person");
  m_page->OnFilesDropped({QPath("torn.vcf")});
  AwaitText("bookRemarks", "1 place could not be read:");
  EXPECT_TRUE(Text("bookRemarks").contains("torn.vcf:6:"));
}

TEST_F(SetupPageTest, OfManyPlacesTheFirstAreShownAndTheOthersAreInReach) {
  constexpr int kKinds = 5;  // That a number of no stated kind can have.
  std::ofstream full(Path("full.vcf"), std::ios::binary);
  full << "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee;Ann\r\n";
  for (int i = 0; i < kKinds + 5; ++i) {
    full << "TEL:55512" << i << "\r\n";
  }
  full << "END:VCARD\r\n";
  full.close();
  Open();
  AwaitText("bookPeople", "1 person");
  m_page->OnFilesDropped({QPath("full.vcf")});
  AwaitText("bookRemarks", "5 places could not be read:");
  EXPECT_EQ(Text("bookRemarks").count(QStringLiteral("full.vcf:")), 3);
  EXPECT_EQ(Find<QPushButton>("showAllPlaces")->text(), "Show 2 &more");
  Press("showAllPlaces");
  EXPECT_EQ(Text("bookRemarks").count(QStringLiteral("full.vcf:")), 5);
  EXPECT_EQ(Find<QPushButton>("showAllPlaces")->text(), "Show &fewer");
  Press("showAllPlaces");
  EXPECT_EQ(Text("bookRemarks").count(QStringLiteral("full.vcf:")), 3);
}

TEST_F(SetupPageTest, AKeyOpensAClosedListAndOnlyEnterChooses) {
  m_inputs.Set({{u"built-in", u"Built-in microphone", true}, {u"headset", u"Headset", false}});
  Open();
  auto* const inputs = Find<QComboBox>("inputs");
  ASSERT_TRUE(Await([&] { return inputs->count() == 3; }));
  for (const Qt::Key key : {Qt::Key_Down, Qt::Key_PageDown, Qt::Key_End, Qt::Key_H}) {
    inputs->setFocus();
    QTest::keyClick(inputs, key);
    EXPECT_TRUE(inputs->view()->isVisible()) << key;
    EXPECT_EQ(inputs->currentIndex(), 0) << key;
    QTest::keyClick(inputs->view(), Qt::Key_Escape);
    EXPECT_EQ(inputs->currentIndex(), 0) << key;
  }
  QTest::keyClick(inputs, Qt::Key_H);
  EXPECT_EQ(inputs->view()->currentIndex().data().toString(), "Headset");
  QTest::keyClick(inputs->view(), Qt::Key_Return);
  EXPECT_EQ(inputs->currentText(), "Headset");
}

TEST_F(SetupPageTest, AnAddressBookGivenAtTheStartCannotBeExchanged) {
  m_options.contacts = Path("contacts.vcf");
  Open();
  AwaitText("bookPeople", "1 person");
  EXPECT_FALSE(Find<QPushButton>("chooseBookFile")->isEnabled());
  EXPECT_FALSE(Find<QPushButton>("useDesktopBook")->isEnabled());
  m_page->OnFilesDropped({QPath("contacts.vcf")});
  EXPECT_TRUE(Text("bookNews").contains("was started with an address book of its own"));
}

TEST_F(SetupPageTest, TheListOfMicrophonesFollowsTheDevices) {
  m_inputs.Set({{u"built-in", u"Built-in microphone", true}});
  Open();
  auto* const inputs = Find<QComboBox>("inputs");
  ASSERT_TRUE(Await([&] { return inputs->count() == 2; }));
  EXPECT_EQ(inputs->itemText(0), "What the desktop uses (Built-in microphone)");
  EXPECT_EQ(inputs->itemText(1), "Built-in microphone");
  m_inputs.Set({{u"built-in", u"Built-in microphone", true}, {u"headset", u"Headset", false}});
  ASSERT_TRUE(Await([&] { return inputs->count() == 3; }));
  EXPECT_EQ(inputs->itemText(2), "Headset");
  EXPECT_EQ(inputs->currentIndex(), 0);
  m_inputs.Set({});
  ASSERT_TRUE(Await([&] { return inputs->count() == 1; }));
}

TEST_F(SetupPageTest, AChosenMicrophoneIsRememberedAlsoWhileItIsUnplugged) {
  m_inputs.Set({{u"built-in", u"Built-in microphone", true}, {u"headset", u"Headset", false}});
  Open();
  auto* const inputs = Find<QComboBox>("inputs");
  ASSERT_TRUE(Await([&] { return inputs->count() == 3; }));
  inputs->setFocus();
  ChooseByKey(*inputs, Qt::Key_End);
  ASSERT_TRUE(Await([&] { return ReadMicrophone(m_options) == u"headset"; }));
  m_inputs.Set({{u"built-in", u"Built-in microphone", true}});
  ASSERT_TRUE(Await([&] { return inputs->currentText() == "headset (not connected)"; }));
  EXPECT_EQ(inputs->itemText(0), "What the desktop uses");
  ChooseByKey(*inputs, Qt::Key_Home);
  ASSERT_TRUE(Await([&] { return ReadMicrophone(m_options).empty(); }));
}

TEST_F(SetupPageTest, ThatThereIsNoMicrophoneIsSaidUntilThereIsOne) {
  m_machine.waveIn.SetScript({.deviceCount = 0});
  Open();
  m_machine.time.Sleep(1500);
  AwaitText("inputNews", "No microphone was found.");
  m_machine.waveIn.SetScript({});
  m_machine.time.Sleep(3000);
  AwaitText("inputNews", "Say something");
}

TEST_F(SetupPageTest, TheLevelIsHeardOnlyWhileThePageIsShown) {
  machine::WaveInScript script;
  script.sound = std::vector<std::byte>(60'000, std::byte{0x40});
  m_machine.waveIn.SetScript(script);
  Open();
  EXPECT_TRUE(m_inputs.IsWatched());
  m_machine.time.Sleep(1000);
  const auto* const meter = static_cast<home::LevelMeter*>(Find<QWidget>("level"));
  ASSERT_TRUE(Await([&] { return meter->GetHighest() > -10; }));
  m_page->OnLeft();
  m_machine.time.Sleep(5000);
  QCoreApplication::processEvents();
  EXPECT_LT(meter->GetHighest(), -60);
  EXPECT_FALSE(m_inputs.IsWatched());
}

TEST_F(SetupPageTest, LanguagesHaveTheirOwnNamesAndAreChosenAndTakenBack) {
  Open();
  auto* const languages = Find<QComboBox>("languages");
  ASSERT_TRUE(Await([&] { return languages->count() == 6; }));
  QStringList names;
  for (int i = 0; i < languages->count(); ++i) {
    names.append(languages->itemText(i));
  }
  EXPECT_EQ(names,
            QStringList({"English", "Deutsch", "Español", "Français", "Русский", "简体中文"}));
  EXPECT_EQ(languages->currentText(), "English");
  languages->setFocus();
  ChooseByKey(*languages, Qt::Key_Down);
  AwaitText("languageNews", "The settings sheet is in Deutsch now.");
  const std::string file = machine::Backends(m_options).ToHostPath(storage::kLanguageFile);
  EXPECT_TRUE(std::filesystem::exists(file));
  ChooseByKey(*languages, Qt::Key_Home);
  AwaitText("languageNews", "The settings sheet is in English now.");
  EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(SetupPageTest, TheWheelScrollsOverAListAndChoosesNothing) {
  m_inputs.Set({{u"built-in", u"Built-in microphone", true}, {u"headset", u"Headset", false}});
  Open();
  m_page->resize(400, 300);
  const auto* const bar = m_page->findChild<QScrollArea*>()->verticalScrollBar();
  ASSERT_TRUE(Await([&] { return bar->maximum() > 500; }));
  for (const char* const name : {"inputs", "languages"}) {
    auto* const list = Find<QComboBox>(name);
    ASSERT_TRUE(Await([&] { return list->count() > 2; }));
    list->setFocus();
    const int before = bar->value();
    const QPointF middle = QRectF(list->rect()).center();
    QWheelEvent wheel(middle, list->mapToGlobal(middle), {}, {0, -120}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&wheel);  // Only what a user does is handed on to a parent.
    qApp->notify(list, &wheel);
    EXPECT_EQ(list->currentIndex(), 0) << name;
    EXPECT_GT(bar->value(), before) << name;
  }
}

TEST_F(SetupPageTest, ALanguageFileOfTheUsersOwnIsReplacedOnlyIfTheUserAgreesAndIsKept) {
  const std::filesystem::path file =
      machine::Backends(m_options).ToHostPath(storage::kLanguageFile);
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file) << "mine";
  Open();
  auto* const languages = Find<QComboBox>("languages");
  ASSERT_TRUE(Await([&] { return languages->currentText() == "A language file of your own"; }));
  languages->setFocus();
  ChooseByKey(*languages, Qt::Key_Home);
  ASSERT_TRUE(Await([&] { return m_questions.size() == 1; }));
  ASSERT_TRUE(Await([&] { return languages->currentText() == "A language file of your own"; }));
  EXPECT_TRUE(std::filesystem::exists(file));
  m_agrees = true;
  ChooseByKey(*languages, Qt::Key_Home);
  AwaitText("languageNews",
            "Your language file is now " + QString::fromStdString(file.native() + ".own1"));
  EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(SetupPageTest, ThePortOfTheDialerIsShownAndItsWindowOpened) {
  {
    machine::Backends backends(m_options);
    ASSERT_EQ(support::ErrorOf(support::PutText(backends.GetRegistry(), storage::kDialerKey,
                                                storage::kComPortValue, u"COM98:")),
              std::nullopt);
  }
  Open();
  AwaitText("portInUse", "Port COM98 is not connected.");
  EXPECT_EQ(Text("lineSettings"),
            "Speed: 9600 baud. Data bits: 8. Stop bits: 1. Flow control: none.");
  Press("changePort");
  ASSERT_EQ(m_started.size(), 1U);
  EXPECT_EQ(m_started[0].first, "voxtrel-connection");
  EXPECT_EQ(m_started[0].second, QStringList(QPath("root")));
  m_canStart = false;
  Press("changePort");
  EXPECT_EQ(Text("portNews"), "voxtrel-connection could not be started.");
}

TEST_F(SetupPageTest, AWayOfCallingIsChosenAndTakenBack) {
  const auto readWay = [this] {
    machine::Backends backends(m_options);
    backends.ChangeNothing();
    return dialer::ReadWay(backends.GetRegistry());
  };
  Open();
  auto* ways = Find<QComboBox>("ways");
  EXPECT_EQ(ways->currentText(), "The first of these that works");
  ChooseByKey(*ways, Qt::Key_End);
  ASSERT_TRUE(Await([&] { return readWay() == dialer::Way::kPrint; }));
  Open();
  ways = Find<QComboBox>("ways");
  ASSERT_TRUE(Await([&] { return ways->currentText() == "Nothing: only show the number"; }));
  ChooseByKey(*ways, Qt::Key_Up);
  ASSERT_TRUE(Await([&] { return readWay() == dialer::Way::kSerial; }));
  ChooseByKey(*ways, Qt::Key_Home);
  ASSERT_TRUE(Await([&] { return readWay() == std::nullopt; }));
}

TEST_F(SetupPageTest, AWayOfCallingThatCannotBeKeptIsNotShownAsChosen) {
  std::filesystem::create_directory(Path("root/registry.db"));
  Open();
  auto* const ways = Find<QComboBox>("ways");
  ChooseByKey(*ways, Qt::Key_End);
  AwaitText("wayNews", "The choice could not be kept.");
  ASSERT_TRUE(Await([&] { return ways->currentText() == "The first of these that works"; }));
}

TEST_F(SetupPageTest, ACheckFindsNothingIfNothingIsWrong) {
  TeachAnn();
  Open();
  Press("check");
  AwaitText("checkNews", "Nothing is wrong with the voice tags.");
  EXPECT_FALSE(Find<QPushButton>("repair")->isVisible());
  EXPECT_EQ(Text("findings"), "");
}

TEST_F(SetupPageTest, WhatACheckFindsIsNamedAndRepaired) {
  const std::filesystem::path lost = TemplateOf(TeachAnn());
  ASSERT_TRUE(std::filesystem::remove(lost));
  Open();
  Press("check");
  AwaitText("checkNews", "1 problem was found:");
  EXPECT_TRUE(Text("findings").contains("Ann Lee")) << Text("findings").toStdString();
  Press("repair");
  AwaitText("checkNews", "Everything was repaired.");
  EXPECT_TRUE(Text("findings").endsWith("Repaired."));
  EXPECT_TRUE(std::filesystem::exists(lost));
  EXPECT_EQ(m_work.loads, 1);
  EXPECT_FALSE(Find<QPushButton>("repair")->isVisible()) << "Nothing is left.";
}

TEST_F(SetupPageTest, ABarShowsHowFarARepairIs) {
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(std::filesystem::remove(TemplateOf(TeachAnn())));
  }
  Open();
  Press("check");
  AwaitText("checkNews", "2 problems were found:");
  auto* const bar = Find<QProgressBar>("checkProgress");
  int highest = 0;
  QObject::connect(bar, &QProgressBar::valueChanged, bar,
                   [&highest](int value) { highest = std::max(highest, value); });
  Press("repair");
  EXPECT_TRUE(bar->isVisible());
  AwaitText("checkNews", "Everything was repaired.");
  EXPECT_EQ(highest, 1) << "one of two was done";
  EXPECT_FALSE(bar->isVisible());
}

TEST_F(SetupPageTest, ARepairWaitsForNobodyWhoHasTheTagsOpen) {
  ASSERT_TRUE(std::filesystem::remove(TemplateOf(TeachAnn())));
  machine::Backends other(m_options);
  const auto held = other.GetThreads().CreateNamedMutex(tags::kInstanceMutex);
  ASSERT_TRUE(held);
  Open();
  Press("check");
  AwaitText("checkNews", "1 problem was found:");
  Press("repair");
  AwaitText("checkNews", "in use by another Voxtrel");
}

TEST_F(SetupPageTest, ThePressedButtonHasTheFocusAgainWhenItsWorkIsDone) {
  Open();
  auto* const check = Find<QPushButton>("check");
  check->setFocus();
  QTest::keyClick(check, Qt::Key_Space);
  EXPECT_FALSE(check->isEnabled());
  AwaitText("checkNews", "There are no voice tags to check.");
  EXPECT_EQ(m_page->focusWidget(), check);
}

TEST_F(SetupPageTest, ABackupBringsBackWhatWasLost) {
  const std::u16string tag = TeachAnn();
  Open();
  m_file = QPath("all.tar");
  Press("backUp");
  AwaitText("backupNews", "1 voice tag was backed up to");
  EXPECT_TRUE(std::filesystem::exists(Path("all.tar")));
  Press("restore");
  AwaitText("backupNews", "All of the backup is here already.");
  ASSERT_TRUE(home::PageTasks(m_options).Delete({tag}).outcome.isDone);
  EXPECT_FALSE(std::filesystem::exists(TemplateOf(tag)));
  Press("restore");
  AwaitText("backupNews", "1 voice tag came back.");
  EXPECT_TRUE(std::filesystem::exists(TemplateOf(tag)));
  EXPECT_TRUE(m_questions.isEmpty());
}

TEST_F(SetupPageTest, TheAnswerToAPressIsInSightOnALowScreen) {
  Open();
  m_page->resize(500, 300);
  m_page->activateWindow();
  m_file = QPath("all.tar");
  auto* const button = Find<QPushButton>("backUp");
  button->setFocus();
  QApplication::processEvents();
  Press("backUp");
  AwaitText("backupNews", "0 voice tags were backed up to");
  const auto* const news = Find<QLabel>("backupNews");
  EXPECT_TRUE(Await([news] { return news->visibleRegion().boundingRect() == news->rect(); }));
}

TEST_F(SetupPageTest, ABackupGetsTheEndByWhichItIsFoundAgain) {
  Open();
  m_file = QPath("all");
  Press("backUp");
  AwaitText("backupNews", "0 voice tags were backed up to");
  EXPECT_TRUE(std::filesystem::exists(Path("all.tar")));
  EXPECT_FALSE(std::filesystem::exists(Path("all")));
}

TEST_F(SetupPageTest, ABackupReplacesNoFileThatTheUserDidNotName) {
  std::ofstream(Path("all.tar")) << "mine";
  Open();
  m_file = QPath("all");
  Press("backUp");
  AwaitText("backupNews", "0 voice tags were backed up to");
  EXPECT_EQ(std::filesystem::file_size(Path("all.tar")), 4U);
  EXPECT_TRUE(std::filesystem::exists(Path("all")));
}

TEST_F(SetupPageTest, WhatARestoreWouldReplaceStaysUnlessTheUserAgrees) {
  const std::u16string tag = TeachAnn();
  Open();
  m_file = QPath("all.tar");
  Press("backUp");
  AwaitText("backupNews", "1 voice tag was backed up to");
  std::filesystem::resize_file(TemplateOf(tag), 100);
  Press("restore");
  AwaitText("backupNews", "1 voice tag stays as it is here.");
  ASSERT_TRUE(Await([&] { return m_questions.size() == 1; }));
  EXPECT_TRUE(m_questions[0].startsWith("1 voice tag here is not as in the backup."));
  EXPECT_TRUE(m_questions[0].contains("Ann Lee"));
  EXPECT_EQ(std::filesystem::file_size(TemplateOf(tag)), 100U);
  m_agrees = true;
  Press("restore");
  AwaitText("backupNews", "1 voice tag came back.");
  EXPECT_GT(std::filesystem::file_size(TemplateOf(tag)), 100U);
}

TEST_F(SetupPageTest, AFileThatIsNoBackupIsRefusedWithTheReason) {
  std::ofstream(Path("other.tar")) << "Hello\n";
  Open();
  m_file = QPath("other.tar");
  Press("restore");
  AwaitText("backupNews", "other.tar");
  EXPECT_TRUE(Text("backupNews").endsWith('.'));
  EXPECT_EQ(m_work.loads, 0);
}

TEST_F(SetupPageTest, NothingIsWiderThanAPhoneAlsoInLargeLetters) {
  Open();
  AwaitText("bookPeople", "1 person");
  m_page->resize(360, 640);
  QFont large = m_page->font();
  large.setPointSize(20);
  m_page->setFont(large);
  const QWidget* const column = m_page->findChild<QScrollArea*>()->widget();
  EXPECT_TRUE(Await([&] { return Find<QPushButton>("useDesktopBook")->text().contains('\n'); }));
  QCoreApplication::processEvents();
  EXPECT_LE(column->minimumSizeHint().width(), 360);
  EXPECT_LE(column->width(), 360);
}

TEST_F(SetupPageTest, EveryControlHasANameForScreenReadersAndTakesTheFocus) {
  Open();
  int controls = 0;
  for (QWidget* const widget : m_page->findChildren<QWidget*>()) {
    const bool isControl = qobject_cast<QPushButton*>(widget) != nullptr ||
                           qobject_cast<QComboBox*>(widget) != nullptr;
    if (!isControl || !widget->isVisible()) {
      continue;
    }
    ++controls;
    QAccessibleInterface* const known = QAccessible::queryAccessibleInterface(widget);
    EXPECT_FALSE(known->text(QAccessible::Name).isEmpty()) << widget->objectName().toStdString();
    EXPECT_NE(widget->focusPolicy(), Qt::NoFocus);
    EXPECT_GE(widget->height(), 44) << widget->objectName().toStdString();
  }
  EXPECT_EQ(controls, 9);
}

}  // namespace
