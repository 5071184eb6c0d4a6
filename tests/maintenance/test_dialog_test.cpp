#include "maintenance/test_dialog.h"

#include <algorithm>
#include <functional>

#include "backends/headless/headless_dialog.h"
#include "resources/dialogs.h"
#include "tests/maintenance/session_fixture.h"
#include "tests/support/watched_file_system.h"

namespace {

using resources::kTestListId;

// Templates of one frame: the distance of two is 2 - 2 cos of the angle between them.
const std::vector<float> kX{1, 0, 0, 0, 0};
const std::vector<float> kNearX{1, 0.25F, 0, 0, 0};
const std::vector<float> kY{0, 1, 0, 0, 0};
const std::vector<float> kEven{1, 1, 1, 1, 0};  ///< Exactly 1 from kX.

class TestDialogTest : public SessionFixture {
 protected:
  /// Opens the dialog, and lets `story` look at it.
  void Run(const std::function<void(headless::HeadlessDialog&)>& story) {
    m_dialog.set_Pageone_point(&m_session);
    bool wasShown = false;
    m_machine.ui.SetDialogStory(140, [&](headless::HeadlessDialog& window) {
      wasShown = true;
      story(window);
    });
    EXPECT_EQ(m_dialog.DoModal(), 2);
    EXPECT_TRUE(wasShown);
  }
  Texts Lines() {
    Texts lines;
    Run([&](headless::HeadlessDialog& window) { lines = window.GetItems(kTestListId); });
    return lines;
  }

  /// Sees when the wait cursor is there: while files are read.
  class CursorWatch final : public support::WatchedFileSystem {
   public:
    CursorWatch(platform::FileSystem& files, headless::HeadlessUi& ui)
        : WatchedFileSystem(files), m_ui(ui) {}
    platform::Result<std::unique_ptr<platform::File>, platform::FileError> Open(
        std::u16string_view path, const platform::OpenMode& mode) override {
      cursors.push_back(m_ui.GetCursor());
      return WatchedFileSystem::Open(path, mode);
    }
    std::vector<platform::Cursor> cursors;

   private:
    headless::HeadlessUi& m_ui;
  };

  maintenance::TestDialog m_dialog{m_machine.Get(), m_texts};
};

TEST_F(TestDialogTest, IsBuiltFromItsTable) {
  const auto& table = resources::kTestResultsDialog;
  EXPECT_EQ(table.id, 140);
  EXPECT_EQ(table.caption, u"Test");
  ASSERT_EQ(table.controls.size(), 2U);
  EXPECT_EQ(table.controls[0].id, 1026);
  EXPECT_EQ(table.controls[0].kind, resources::ControlKind::kListBox);
  EXPECT_EQ(table.controls[1].id, 142);
  EXPECT_EQ(table.controls[1].kind, resources::ControlKind::kPicture);
}

TEST_F(TestDialogTest, OfTwoTagsBothLinesSayTheSame) {
  PutTag(u"1", u"Ann", kX);
  PutTag(u"2", u"Bob", kNearX);
  EXPECT_EQ(Lines(), (Texts{u"94%; 1; Ann;  Bob", u"94%; 1; Bob;  Ann"}));
  EXPECT_TRUE(m_dialog.IsComplete());
  EXPECT_TRUE(GetMessages().empty());
}

TEST_F(TestDialogTest, TheMostConfusableComeFirst) {
  PutTag(u"1", u"Far", kY);
  PutTag(u"2", u"P", kX);
  PutTag(u"3", u"Q", kNearX);
  EXPECT_EQ(Lines(), (Texts{u"94%; 1; P;  Q", u"94%; 2; Q;  P", u"0%; 0; Far;  Q"}));
}

TEST_F(TestDialogTest, ADistanceOfOneAndAboveIsScoreZero) {
  PutTag(u"1", u"A", kX);
  PutTag(u"2", u"B", kEven);
  EXPECT_EQ(Lines()[0], u"0%; 1; A;  B");
  EXPECT_EQ(m_dialog.GetLines()[0].distance, 1.0F);
  PutTemplate(u"2", kY);
  EXPECT_EQ(Lines()[0], u"0%; 1; A;  B");
  EXPECT_EQ(m_dialog.GetLines()[0].distance, 2.0F) << "Never more, so that all find a partner.";
}

TEST_F(TestDialogTest, SameTemplatesAreHundredPercentAndTiesKeepTheLowest) {
  for (const std::u16string_view name : {u"1", u"2", u"3", u"4"}) {
    PutTag(name, name, kX);
  }
  EXPECT_EQ(Lines(),
            (Texts{u"100%; 3; 1;  2", u"100%; 1; 2;  1", u"100%; 0; 3;  1", u"100%; 0; 4;  1"}));
}

TEST_F(TestDialogTest, OfEquallyLongOnesTheSearchedForIsTheShorter) {
  // Three frames each; sliding one along the other is not the same as the other way round.
  const std::vector<float> a{9, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 0, 0, 0};
  const std::vector<float> b{0, 0, 3, 0, 0, 9, 0, 0, 0, 0, 0, 7, 0, 0, 0};
  PutTag(u"1", u"A", a);
  PutTag(u"2", u"B", b);
  const auto lines = Lines();
  ASSERT_EQ(lines.size(), 2U);
  const auto& mathematics = m_session.mathematics;
  const float there = mathematics.CompareTemplates(0, 1);
  const float back = mathematics.CompareTemplates(1, 0);
  ASSERT_NE(there, back);
  const auto& results = m_dialog.GetLines();
  const auto ofFirst = std::ranges::find(results, u"1", &maintenance::TestLine::tagName);
  EXPECT_EQ(ofFirst->distance, there);
  EXPECT_EQ(results[0].distance, std::min(there, back));
  EXPECT_EQ(results[1].distance, std::max(there, back));
}

TEST_F(TestDialogTest, AHundredTagsHaveAHundredLines) {
  for (int i = 0; i < 100; ++i) {
    const std::u16string name = language::Decimal(1000 + i);
    const auto value = static_cast<float>(i);
    PutTag(name, u"Tag", {1, value, value * value, 0, 0});
  }
  EXPECT_EQ(Lines().size(), 100U);
  const auto& results = m_dialog.GetLines();
  EXPECT_TRUE(std::ranges::is_sorted(results, {}, &maintenance::TestLine::distance));
  std::int32_t confusions = 0;
  for (const auto& line : results) {
    confusions += line.confusions;
  }
  EXPECT_EQ(confusions, 100);
}

TEST_F(TestDialogTest, WithOneTagOrNoneTheListStaysEmpty) {
  EXPECT_EQ(Lines(), Texts());
  PutTag(u"1", u"Ann", kX);
  EXPECT_EQ(Lines(), Texts());
  EXPECT_EQ(m_machine.ui.GetCursor(), platform::Cursor::kNormal);
  EXPECT_EQ(m_machine.process.GetExitCode(), std::nullopt);
  EXPECT_TRUE(GetMessages().empty());
}

TEST_F(TestDialogTest, TheExtentIsAHundredAtFirst) {
  PutTag(u"1", u"A", kX);
  PutTag(u"2", u"B", kX);
  Run([](headless::HeadlessDialog& window) {
    // 13 letters of 6 pixels each.
    EXPECT_EQ(window.GetItemText(kTestListId, 0), u"100%; 1; A;  B");
    EXPECT_EQ(window.GetHorizontalExtent(kTestListId), 100);
  });
}

TEST_F(TestDialogTest, WithoutLinesTheExtentIsNotTouched) {
  PutTag(u"1", u"A", kX);
  Run([](headless::HeadlessDialog& window) {
    EXPECT_EQ(window.GetHorizontalExtent(kTestListId), 0);
  });
}

TEST_F(TestDialogTest, ALongLineWidensTheExtentToItsWidthAndTwenty) {
  PutTag(u"1", std::u16string(100, u'w'), kX);
  PutTag(u"2", u"B", kX);
  Run([](headless::HeadlessDialog& window) {
    const int width = window.GetTextWidth(kTestListId, window.GetItemText(kTestListId, 0));
    EXPECT_GT(width, 100);
    EXPECT_EQ(window.GetHorizontalExtent(kTestListId), width + 20);
  });
}

TEST_F(TestDialogTest, ALineWithinTheTwentyDoesNotWidenItFurther) {
  // The first line is 6 * 17 wide, the second two letters more, which is within the 20.
  PutTag(u"1", u"AAAAA", kX);
  PutTag(u"2", u"B", kX);
  PutTag(u"3", u"CCC", kX);
  Run([](headless::HeadlessDialog& window) {
    const int first = window.GetTextWidth(kTestListId, window.GetItemText(kTestListId, 0));
    const int last = window.GetTextWidth(kTestListId, window.GetItemText(kTestListId, 2));
    ASSERT_GT(first, 100);
    ASSERT_GT(last, first);
    ASSERT_LE(last, first + 20);
    EXPECT_EQ(window.GetHorizontalExtent(kTestListId), first + 20);
  });
}

TEST_F(TestDialogTest, TheCursorSaysWaitWhileTemplatesAreReadAndNotWhenShown) {
  PutTag(u"1", u"A", kX);
  PutTag(u"2", u"B", kX);
  CursorWatch files(m_machine.files, m_machine.ui);
  PlainSession session(m_machine.GetWith(files, m_machine.registry));
  session.AddTag(u"1", u"A");
  session.AddTag(u"2", u"B");
  maintenance::TestDialog dialog(m_machine.GetWith(files, m_machine.registry), m_texts);
  dialog.set_Pageone_point(&session);
  m_machine.ui.SetDialogStory(140, [&](headless::HeadlessDialog&) {
    EXPECT_EQ(m_machine.ui.GetCursor(), platform::Cursor::kNormal);
  });
  dialog.DoModal();
  EXPECT_EQ(files.cursors, std::vector(2, platform::Cursor::kWait));
}

TEST_F(TestDialogTest, AnUnreadableTemplateIsToldAndTheOthersAreListed) {
  PutTag(u"1", u"Ann", kX);
  m_session.AddTag(u"2", u"Bob 555 M");
  PutTag(u"3", u"Cid", kNearX);
  platform::Cursor cursorAtMessage = platform::Cursor::kWait;
  m_machine.ui.SetListener(
      [&](const headless::ShownMessage&) { cursorAtMessage = m_machine.ui.GetCursor(); });
  EXPECT_EQ(Lines(), (Texts{u"94%; 1; Ann;  Cid", u"94%; 1; Cid;  Ann"}));
  ASSERT_EQ(GetMessages().size(), 1U);
  EXPECT_TRUE(
      GetMessages()[0].starts_with(u"No voice template can be read for these voice tags:\n\n"
                                   u"Bob 555 M\n\nClose Zedra Voxtrel and run"));
  EXPECT_EQ(m_machine.ui.GetMessages()[0].caption, u"Zedra Voxtrel");
  EXPECT_EQ(cursorAtMessage, platform::Cursor::kNormal);
  EXPECT_FALSE(m_dialog.IsComplete());
}

TEST_F(TestDialogTest, ATemplateOfAnEarlierTestIsNeverTakenForAnUnreadableOne) {
  PutTag(u"1", u"Ann", kX);
  PutTag(u"2", u"Bob", kNearX);
  ASSERT_EQ(Lines().size(), 2U);
  ASSERT_TRUE(m_machine.files.Delete(storage::TemplatePath(u"2")));
  EXPECT_EQ(Lines(), Texts{u"0%; 0; Ann; "}) << "Alone, it has no neighbour.";
}

TEST_F(TestDialogTest, WithNoReadableTemplateTheListIsEmpty) {
  m_session.AddTag(u"1", u"Ann");
  m_session.AddTag(u"2", u"Bob");
  EXPECT_EQ(Lines(), Texts());
  EXPECT_EQ(GetMessages().size(), 1U);
}

TEST_F(TestDialogTest, PlacesThatACleanUpLeftEmptyAreTold) {
  PutTag(u"1", u"Ann", kX);
  PutTag(u"2", u"Bob", kNearX);
  m_session.AddTag(u"", u"");
  EXPECT_EQ(Lines().size(), 2U);
  EXPECT_EQ(GetMessages(), Texts{u"Some voice tags were not read, or were removed because their "
                                 u"contact is gone. Close Zedra Voxtrel and open it again."});
}

TEST_F(TestDialogTest, NothingIsKeptBetweenOpenings) {
  PutTag(u"1", u"Ann", kX);
  PutTag(u"2", u"Bob", kNearX);
  EXPECT_EQ(Lines()[0], u"94%; 1; Ann;  Bob");
  PutTemplate(u"2", kX);
  EXPECT_EQ(Lines(), (Texts{u"100%; 1; Ann;  Bob", u"100%; 1; Bob;  Ann"}));
  ASSERT_TRUE(m_machine.files.Delete(storage::TemplatePath(u"2")));
  EXPECT_EQ(Lines().size(), 1U);
  EXPECT_FALSE(m_dialog.IsComplete());
  PutTemplate(u"2", kX);
  EXPECT_EQ(Lines().size(), 2U);
  EXPECT_TRUE(m_dialog.IsComplete());
  m_session.tags.Clear();
  EXPECT_EQ(Lines(), Texts());
  EXPECT_TRUE(m_dialog.GetLines().empty());
}

TEST_F(TestDialogTest, AClickOnThePictureOpensItsHelp) {
  Run([](headless::HeadlessDialog& window) {
    window.Press(resources::kTestHelpId);
    window.Choose(kTestListId, 0);
  });
  EXPECT_EQ(m_machine.shell.GetRequests(),
            (std::vector<headless::ShellRequest>{
                {u"", u"peghelp.exe", u"file:ZedraVoxtrelPE_help.htm#test"}}));
}

TEST_F(TestDialogTest, TheKeyForHelpOpensItsHelpToo) {
  maintenance::TestDialog dialog(m_machine.Get(), m_texts);
  EXPECT_TRUE(dialog.OnHelp());
  EXPECT_EQ(m_machine.shell.GetRequests(),
            (std::vector<headless::ShellRequest>{
                {u"", u"peghelp.exe", u"file:ZedraVoxtrelPE_help.htm#test"}}));
}

TEST_F(TestDialogTest, ChoosingALineDoesNothing) {
  PutTag(u"1", u"A", kX);
  PutTag(u"2", u"B", kX);
  Run([](headless::HeadlessDialog& window) { window.Choose(kTestListId, 1); });
  EXPECT_TRUE(m_machine.shell.GetRequests().empty());
}

TEST_F(TestDialogTest, PaintsItsHeaderOnEveryPaint) {
  Run([](headless::HeadlessDialog& window) {
    for (int i = 0; i < 2; ++i) {
      const auto strokes = window.Paint();
      ASSERT_EQ(strokes.size(), 2U);
      EXPECT_EQ(strokes[0].area.right, window.GetClientRect().right - 1);
      EXPECT_EQ(strokes[1].text, u"Test results");
    }
  });
}

TEST_F(TestDialogTest, TheTitleIsThatOfTheLanguageFileWithItsPercentSigns) {
  LoadLanguage(u"ID_STTL3 50%d %s%n\r\n");
  maintenance::TestDialog dialog(m_machine.Get(), m_texts);
  m_machine.ui.SetDialogStory(140, [](headless::HeadlessDialog& window) {
    EXPECT_EQ(window.Paint()[1].text, u"50%d %s%n");
  });
  dialog.DoModal();
}

}  // namespace
