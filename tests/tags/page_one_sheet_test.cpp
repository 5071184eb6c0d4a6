#include <gmock/gmock.h>

#include "framework/dialog.h"
#include "tests/tags/page_fixture.h"

namespace {

using namespace resources;
using testing::ElementsAre;

constexpr int kTimes = 50;

/// The sheet as a host opens it, with the Learning page alone.
class PageOneSheet : public PageFixture {
 protected:
  /// Shows the sheet, where the user does `story`.
  void Show(tags::Page_one& page, const headless::HeadlessUi::SheetStory& story) {
    m_machine.ui.SetSheetStory(story);
    framework::CPropertySheet sheet(u"Property", m_machine.ui);
    sheet.AddPage(page);
    static_cast<void>(sheet.DoModal());
  }

  void ExpectNothingHeld() {
    EXPECT_EQ(m_machine.files.CountOpenHandles(), 0U);
    EXPECT_EQ(m_machine.waveIn.OpenDevices(), 0U);
    EXPECT_EQ(m_machine.waveOut.CountOpenDevices(), 0);
    EXPECT_EQ(m_machine.process.GetExitCode(), std::nullopt);
    EXPECT_TRUE(m_machine.ui.GetMessages().empty());
  }
};

TEST_F(PageOneSheet, OpensAndClosesFiftyTimesInOneProcess) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  int shown = 0;
  for (int i = 0; i < kTimes; ++i) {
    tags::Page_one page(m_machine.Get(), m_texts);
    Show(page, [&](headless::HeadlessSheet& sheet) {
      const auto& dialog = *sheet.ShowPage(0);
      EXPECT_THAT(dialog.GetItems(kContactComboId), testing::SizeIs(2));
      EXPECT_THAT(dialog.GetItems(kTagListId),
                  ElementsAre(u"Ann Lee 5551234 M", u"Bob Ray 5550001 H"));
      ++shown;
      i % 2 == 0 ? sheet.PressOk() : sheet.Close();
    });
    ExpectNothingHeld();
  }
  EXPECT_EQ(shown, kTimes);
  EXPECT_FALSE(m_machine.contacts.IsLoggedOn());
}

TEST_F(PageOneSheet, ShowsTheSamePageFiftyTimesWithEverythingOnce) {
  PutTag(u"100", kAnn, u"Mobile");
  tags::Page_one page(m_machine.Get(), m_texts);
  int shown = 0;
  for (int i = 0; i < kTimes; ++i) {
    Show(page, [&](headless::HeadlessSheet& sheet) {
      const auto& dialog = *sheet.ShowPage(0);
      EXPECT_THAT(dialog.GetItems(kContactComboId), testing::SizeIs(2));
      EXPECT_THAT(dialog.GetItems(kTagListId), ElementsAre(u"Ann Lee 5551234 M"));
      EXPECT_EQ(page.GetTags().tagCount, 1);
      ++shown;
    });
    ExpectNothingHeld();
  }
  EXPECT_EQ(shown, kTimes);
}

TEST_F(PageOneSheet, LearnsAndDeletesInEachOfFiftySheets) {
  // Less than half a second arrives.
  m_machine.waveIn.SetScript(
      {.sound = support::BytesOf(
           support::Mixed(support::Noise(5000, 20, 1), 1200, support::SpeechLike(2600, 9000, 2))),
       .arrivals = {10000}});
  int shown = 0;
  for (int i = 0; i < kTimes; ++i) {
    tags::Page_one page(m_machine.Get(), m_texts);
    Show(page, [&](headless::HeadlessSheet& sheet) {
      auto& dialog = *sheet.ShowPage(0);
      dialog.Press(kRecordButtonId);
      EXPECT_THAT(GetEntries(), testing::SizeIs(1));
      dialog.Choose(kTagListId, 0);
      dialog.Press(kPlayButtonId);
      EXPECT_EQ(page.GetPlayCode(), 0);
      dialog.Press(kDeleteButtonId);
      EXPECT_THAT(GetEntries(), testing::IsEmpty());
      ++shown;
    });
  }
  EXPECT_EQ(shown, kTimes);
  EXPECT_EQ(m_machine.waveOut.GetPlayed().size(), 2U * kTimes);
  EXPECT_EQ(GetMessages().size(), static_cast<std::size_t>(kTimes)) << "One question each.";
  EXPECT_EQ(m_machine.files.CountOpenHandles(), 0U);
}

}  // namespace
