#include "tests/maintenance/reinit_page_fixture.h"

namespace {

using resources::kTestButtonId;

class PageOneTestButton : public ReinitPageFixture {
 protected:
  Texts Test() {
    Texts lines;
    m_machine.ui.SetDialogStory(140, [&](headless::HeadlessDialog& window) {
      lines = window.GetItems(resources::kTestListId);
    });
    m_dialog->Press(kTestButtonId);
    return lines;
  }
};

TEST_F(PageOneTestButton, OpensTheDialogOnTheTagsOfThePage) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  Open();
  // Templates without frames are alike.
  EXPECT_EQ(Test(), (Texts{u"100%; 1; Ann Lee 5551234 M;  Bob Ray 5550001 H",
                           u"100%; 1; Bob Ray 5550001 H;  Ann Lee 5551234 M"}));
  EXPECT_EQ(m_page->GetTestDialog().GetLines().size(), 2U);
}

TEST_F(PageOneTestButton, IsDisabledWithOneTag) {
  PutTag(u"100", kAnn, u"Mobile");
  Open();
  bool wasShown = false;
  m_machine.ui.SetDialogStory(140, [&](headless::HeadlessDialog&) { wasShown = true; });
  m_dialog->Press(kTestButtonId);
  EXPECT_FALSE(wasShown);
}

TEST_F(PageOneTestButton, ATagOfAContactThatIsGoneLeavesAnEmptyPlaceThatIsReported) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", 99, u"Home");
  PutTag(u"300", kBob, u"Home");
  Open();
  ASSERT_EQ(m_page->GetTags().tagCount, 3) << "The removed one still counts.";
  EXPECT_EQ(Test().size(), 2U);
  ASSERT_EQ(GetMessages().size(), 1U);
  EXPECT_TRUE(GetMessages()[0].starts_with(u"Some voice tags were not read, or were removed"));
  Open();
  EXPECT_EQ(Test().size(), 2U);
  EXPECT_EQ(GetMessages().size(), 1U) << "Gone once the page was opened again.";
}

TEST_F(PageOneTestButton, ATagRecordedMeanwhileTakesPart) {
  PutSpokenTag(u"100", 1);
  PutVersion(u"2");
  Open();
  EXPECT_FALSE(m_dialog->IsEnabled(kTestButtonId));
  m_dialog->Press(resources::kRecordButtonId);
  EXPECT_TRUE(m_dialog->IsEnabled(kTestButtonId));
  EXPECT_EQ(Test().size(), 2U);
  // And recording goes on working after the test has used the page's mathematics.
  m_dialog->Press(resources::kRecordButtonId);
  EXPECT_EQ(m_page->GetTags().tagCount, 3);
  EXPECT_EQ(Test().size(), 3U);
  EXPECT_TRUE(GetMessages().empty());
}

}  // namespace
