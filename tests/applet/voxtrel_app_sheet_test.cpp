#include <map>
#include <string>
#include <utility>
#include <vector>

#include "resources/dialogs.h"
#include "storage/registry_keys.h"
#include "tests/applet/applet_fixture.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"

namespace {

using headless::HeadlessSheet;

class VoxtrelAppSheet : public AppletFixture {
 protected:
  /// What the sheet shows at the next double-click.
  struct Look {
    std::u16string caption;
    Texts tabs;
  };
  [[nodiscard]] Look LookAt(applet::VoxtrelApp& app) {
    Look look;
    m_machine.ui.SetSheetStory([&look](HeadlessSheet& sheet) {
      look = {sheet.GetCaption(), sheet.GetTabTexts()};
    });
    EXPECT_EQ(Open(app), 0);
    return look;
  }
};

TEST_F(VoxtrelAppSheet, ShowsLearningThenAbout) {
  const auto app = Start();
  std::vector<int> dialogs;
  m_machine.ui.SetSheetStory([&](HeadlessSheet& sheet) {
    for (std::size_t page = 0; headless::HeadlessDialog* shown = sheet.ShowPage(page); ++page) {
      dialogs.push_back(shown->GetTemplate().id);
    }
  });
  EXPECT_EQ(Open(*app), 0);
  EXPECT_EQ(dialogs, (std::vector<int>{134, 135}));
}

TEST_F(VoxtrelAppSheet, TheAboutPageHasTheProductItsVersionAndItsPictures) {
  const auto app = Start();
  std::vector<headless::PaintedStroke> strokes;
  m_machine.ui.SetSheetStory([&](HeadlessSheet& sheet) { strokes = sheet.ShowPage(1)->Paint(); });
  EXPECT_EQ(Open(*app), 0);
  Texts lines;
  std::map<int, platform::Point> pictures;
  for (const headless::PaintedStroke& stroke : strokes) {
    if (stroke.kind == headless::PaintedStroke::Kind::kText) {
      lines.push_back(stroke.text);
    } else if (stroke.kind == headless::PaintedStroke::Kind::kPicture) {
      pictures[stroke.picture] = {stroke.area.left, stroke.area.top};
    }
  }
  EXPECT_EQ(lines, (Texts{u"Voxtrel PE v3.0", std::u16string(applet::kMakerLine)}));
  EXPECT_EQ(pictures.size(), 3U);
  EXPECT_EQ(pictures[2000], (platform::Point{8, 15}));
  EXPECT_EQ(pictures[136], (platform::Point{158, 210}));
}

TEST_F(VoxtrelAppSheet, SpeaksEnglishWithoutALanguageFile) {
  const auto app = Start();
  const Look look = LookAt(*app);
  EXPECT_EQ(look.caption, u"Property");
  EXPECT_EQ(look.tabs, (Texts{u"Learning", u"About"}));
}

TEST_F(VoxtrelAppSheet, TakesCaptionAndTabsFromTheLanguageFile) {
  PutLanguageFile(u"ID_S_PROP_TTL Eigenschaften\r\nID_TAB_2 Lernen\r\nID_TAB_3 Info\r\n    \r\n");
  const auto app = Start();
  const Look look = LookAt(*app);
  EXPECT_EQ(look.caption, u"Eigenschaften");
  EXPECT_EQ(look.tabs, (Texts{u"Lernen", u"Info"}));
}

TEST_F(VoxtrelAppSheet, TabsThatTheLanguageFileLacksAreEmpty) {
  PutLanguageFile(u"ID_S_PROP_TTL Eigenschaften\r\n    \r\n");
  const auto app = Start();
  const Look look = LookAt(*app);
  EXPECT_EQ(look.caption, u"Eigenschaften");
  EXPECT_EQ(look.tabs, (Texts{u"", u""}));
}

TEST_F(VoxtrelAppSheet, ALanguageFileThatIsNoneMakesEveryTextEmpty) {
  ASSERT_TRUE(m_machine.files.PutFile(storage::kLanguageFile, {}));
  const auto app = Start();
  const Look look = LookAt(*app);
  EXPECT_EQ(look.caption, u"");
  EXPECT_EQ(look.tabs, (Texts{u"", u""}));
}

TEST_F(VoxtrelAppSheet, TheLanguageFileIsLookedForOnceAtStartUp) {
  const auto app = Start();
  PutLanguageFile(u"ID_S_PROP_TTL Eigenschaften\r\nID_TAB_2 Lernen\r\n    \r\n");
  const Look look = LookAt(*app);
  EXPECT_EQ(look.caption, u"Property");
  EXPECT_EQ(look.tabs, (Texts{u"Learning", u"About"}));
}

TEST_F(VoxtrelAppSheet, AsksForHelpByThePageOfTheDevicesViewer) {
  const auto app = Start();
  m_machine.ui.SetSheetStory([](HeadlessSheet& sheet) { sheet.AskForHelp(); });
  EXPECT_EQ(Open(*app), 0);
  const std::vector<headless::ShellRequest> expected = {
      {u"", u"peghelp.exe", u"file:ZedraVoxtrelPE_help.htm"}};
  EXPECT_EQ(m_machine.shell.GetRequests(), expected);
}

TEST_F(VoxtrelAppSheet, HelpIsStartedIfThePageIsMissingAndNothingIsSaid) {
  const auto app = Start();
  m_machine.ui.SetSheetStory([](HeadlessSheet& sheet) {
    sheet.AskForHelp();
    sheet.AskForHelp();
  });
  EXPECT_EQ(Open(*app), 0);
  EXPECT_EQ(m_machine.shell.GetRequests().size(), 2U);
  EXPECT_TRUE(m_machine.ui.GetMessages().empty());
}

TEST_F(VoxtrelAppSheet, ASecondOpeningHasTwoTabsAsTheFirst) {
  const auto app = Start();
  EXPECT_EQ(LookAt(*app).tabs.size(), 2U);
  EXPECT_EQ(LookAt(*app).tabs.size(), 2U);
  EXPECT_FALSE(m_machine.process.GetExitCode());
}

TEST_F(VoxtrelAppSheet, OpensAndClosesManyTimesInOneProcess) {
  machine::SimulatedContact ann{.oid = 17, .firstName = u"Ann", .lastName = u"Lee"};
  ann.Number(platform::PhoneKind::kMobile) = u"5551234";
  m_machine.contacts.Add(ann);
  const auto app = Start();
  constexpr int kOpenings = 50;
  int opened = 0;
  m_machine.ui.SetSheetStory([&](HeadlessSheet& sheet) {
    ++opened;
    headless::HeadlessDialog& learning = *sheet.ShowPage(0);
    EXPECT_EQ(learning.GetItems(resources::kContactComboId), Texts{u"Lee Ann"});
    headless::HeadlessDialog& about = *sheet.ShowPage(1);
    EXPECT_FALSE(about.Paint().empty());
    opened % 2 == 0 ? sheet.PressOk() : sheet.Close();
  });
  for (int i = 0; i < kOpenings; ++i) {
    applet::NewCplInfo info;
    EXPECT_EQ(Inquire(*app, info), 0);
    EXPECT_EQ(Open(*app), 0);
  }
  EXPECT_EQ(opened, kOpenings);
  EXPECT_FALSE(m_machine.process.GetExitCode());
  EXPECT_TRUE(m_module.GetIcons().empty());
}

TEST_F(VoxtrelAppSheet, ASecondOpeningReadsContactsAndTagsAgainAndDoublesNothing) {
  machine::SimulatedContact ann{.oid = 17, .firstName = u"Ann", .lastName = u"Lee"};
  ann.Number(platform::PhoneKind::kMobile) = u"5551234";
  m_machine.contacts.Add(ann);
  const std::u16string tag = std::u16string(storage::kTagKey) + u"\\100";
  for (const auto& [name, text] :
       {std::pair(storage::kContactValue, u"17"), std::pair(storage::kPhoneTypeValue, u"Mobile")}) {
    ASSERT_EQ(support::ErrorOf(support::PutText(m_machine.registry, tag, name, text)),
              std::nullopt);
  }
  const auto app = Start();
  for (int opening = 1; opening <= 2; ++opening) {
    m_machine.ui.SetSheetStory([&](HeadlessSheet& sheet) {
      headless::HeadlessDialog& page = *sheet.ShowPage(0);
      EXPECT_EQ(page.GetItems(resources::kTagListId), Texts{u"Ann Lee 5551234 M"}) << opening;
      EXPECT_EQ(page.GetText(resources::kCountLabelId), u"Learned commands: 1") << opening;
      EXPECT_EQ(page.GetItems(resources::kContactComboId).size(), opening == 1 ? 1U : 2U);
      machine::SimulatedContact bob{.oid = 18, .firstName = u"Bob", .lastName = u"Ray"};
      bob.Number(platform::PhoneKind::kMobile) = u"5555678";
      m_machine.contacts.Add(bob);
    });
    EXPECT_EQ(Open(*app), 0);
  }
}

TEST_F(VoxtrelAppSheet, ADoubleClickWhileItIsOpenOpensNoSecondOne) {
  const auto app = Start();
  applet::NewCplInfo info;
  EXPECT_EQ(Inquire(*app, info), 0);
  int shown = 0;
  m_machine.ui.SetSheetStory([&](HeadlessSheet& sheet) {
    ++shown;
    EXPECT_TRUE(app->IsOpen());
    EXPECT_EQ(Open(*app), 0);
    EXPECT_EQ(Send(*app, applet::CplMessage::kDblClk, 1), 1) << "Of no applet of this library.";
    EXPECT_EQ(m_module.GetIcons().empty(), shown > 1) << "It lives until the sheet was closed.";
    // The page is as it was before.
    EXPECT_EQ(sheet.ShowPage(0)->GetText(resources::kCountLabelId), u"Learned commands: 0");
    EXPECT_FALSE(sheet.ShowPage(1)->Paint().empty());
  });
  EXPECT_EQ(Open(*app), 0);
  EXPECT_EQ(shown, 1);
  EXPECT_FALSE(app->IsOpen());
  EXPECT_TRUE(m_module.GetIcons().empty());
  EXPECT_EQ(Open(*app), 0);
  EXPECT_EQ(shown, 2) << "Once it is closed it opens as ever.";
}

TEST_F(VoxtrelAppSheet, AppletsThatFollowEachOtherLeaveNothingBehind) {
  PutLanguageFile(u"ID_S_PROP_TTL Eigenschaften\r\nID_TAB_2 Lernen\r\n    \r\n");
  constexpr int kApplets = 50;
  for (int i = 0; i < kApplets; ++i) {
    const auto app = Start();
    EXPECT_EQ(LookAt(*app).tabs, (Texts{u"Lernen", u""}));
  }
  EXPECT_FALSE(m_machine.process.GetExitCode());
}

TEST_F(VoxtrelAppSheet, ASecondAppletEndsItsProcessWhileTheFirstIsOpen) {
  const auto first = Start();
  const auto second = Start();
  int shown = 0;
  m_machine.ui.SetSheetStory([&](HeadlessSheet& sheet) {
    if (++shown == 1) {
      EXPECT_FALSE(m_machine.process.GetExitCode());
      EXPECT_EQ(Open(*second), 0);
    } else {
      // The page that was refused has done nothing more.
      EXPECT_EQ(sheet.ShowPage(0)->GetText(resources::kCountLabelId), u"");
    }
  });
  EXPECT_EQ(Open(*first), 0);
  EXPECT_EQ(shown, 2);
  EXPECT_EQ(m_machine.process.GetExitCode(), 0);
}

}  // namespace
