#include "maintenance/test_results.h"

#include <gtest/gtest.h>

#include "storage/device_paths.h"

namespace {

using maintenance::LoadedTemplates;
using maintenance::Neighbour;

class TestResults : public testing::Test {
 protected:
  void AddTag(std::u16string_view name, std::u16string_view text) {
    storage::TagRecord* record = m_tags.GetRecord(m_tags.tagCount);
    record->SetTagName(name);
    record->SetDisplayText(text);
    AddTemplate(name);
  }
  void AddTemplate(std::u16string_view name) {
    m_loaded.tags.push_back(m_tags.tagCount++);
    m_loaded.wavePaths.push_back(storage::WavePath(name));
  }
  [[nodiscard]] std::vector<std::u16string> TextsOf(const std::vector<Neighbour>& nearest) const {
    std::vector<std::u16string> texts;
    for (const auto& line : ToTestLines(m_tags, m_loaded, nearest)) {
      texts.push_back(line.text);
    }
    return texts;
  }

  storage::TagTable m_tags;
  LoadedTemplates m_loaded;
};

using Texts = std::vector<std::u16string>;

TEST_F(TestResults, ALineIsScoreCountNameAndNeighbour) {
  AddTag(u"100", u"Ann Lee 5551234 M");
  AddTag(u"200", u"Bob Ray 5550001 H");
  EXPECT_EQ(TextsOf({{1, 0.1284F}, {0, 0.1284F}}),
            (Texts{u"87%; 1; Ann Lee 5551234 M;  Bob Ray 5550001 H",
                   u"87%; 1; Bob Ray 5550001 H;  Ann Lee 5551234 M"}));
}

TEST_F(TestResults, KnowWhatTheyWereMadeFrom) {
  AddTag(u"100", u"P");
  AddTag(u"200", u"Q");
  AddTag(u"-300", u"R");
  const auto lines = ToTestLines(m_tags, m_loaded, {{1, 0.5F}, {0, 0.25F}, {1, 1.5F}});
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0].tagName, u"200");
  EXPECT_EQ(lines[0].neighbourName, u"100");
  EXPECT_EQ(lines[0].score, 75);
  EXPECT_EQ(lines[0].distance, 0.25F);
  EXPECT_EQ(lines[0].confusions, 2);
  EXPECT_EQ(lines[1].tagName, u"100");
  EXPECT_EQ(lines[1].confusions, 1);
  EXPECT_EQ(lines[2].tagName, u"-300");
  EXPECT_EQ(lines[2].score, 0);
  EXPECT_EQ(lines[2].confusions, 0);
}

TEST_F(TestResults, ATagThatNobodyIsTakenForHasTheCountZero) {
  AddTag(u"1", u"P");
  AddTag(u"2", u"Q");
  AddTag(u"3", u"R");
  EXPECT_EQ(TextsOf({{1, 0.1F}, {0, 0.1F}, {1, 0.9F}}),
            (Texts{u"90%; 1; P;  Q", u"90%; 2; Q;  P", u"10%; 0; R;  Q"}));
}

TEST_F(TestResults, WithoutANeighbourItsTextIsEmpty) {
  AddTag(u"1", u"P");
  EXPECT_EQ(TextsOf({Neighbour{}}), Texts{u"0%; 0; P; "});
}

TEST_F(TestResults, APlaceWithoutANameIsNobodysNeighbour) {
  AddTag(u"1", u"P");
  ++m_tags.tagCount;
  EXPECT_EQ(TextsOf({Neighbour{}}), Texts{u"0%; 0; P; "});
}

TEST_F(TestResults, AreAsManyAsThereIsRoomForTagsWhateverTheCountSays) {
  for (int i = 0; i < 100; ++i) {
    AddTag(std::u16string(1, static_cast<char16_t>(u'A' + i)), u"Tag");
  }
  m_tags.tagCount = 250;
  std::vector<Neighbour> nearest(100, Neighbour{0, 0.5F});
  nearest[0].index = 99;
  const auto lines = ToTestLines(m_tags, m_loaded, nearest);
  ASSERT_EQ(lines.size(), 100U);
  EXPECT_EQ(lines[0].text, u"50%; 99; Tag;  Tag");
}

TEST_F(TestResults, AnEmptyDisplayTextLeavesTheBlankOfTheNeighbour) {
  AddTag(u"1", u"");
  AddTag(u"2", u"Q");
  EXPECT_EQ(TextsOf({{1, 0.5F}, {0, 0.5F}}), (Texts{u"50%; 1; ;  Q", u"50%; 1; Q;  "}));
}

TEST_F(TestResults, ATagNameThatMatchesNoRecordLeavesItsTextsEmpty) {
  AddTag(u"1", u"P");
  AddTemplate(u"2");
  EXPECT_EQ(TextsOf({{1, 0.5F}, {0, 0.5F}}), (Texts{u"50%; 1; P; ", u"50%; ; ;  P"}));
}

TEST_F(TestResults, OfTwoRecordsWithOneNameTheLastCounts) {
  AddTag(u"1", u"First");
  AddTag(u"2", u"Q");
  AddTag(u"1", u"Second");
  // Nobody's nearest is the second place, and three have the first.
  EXPECT_EQ(
      TextsOf({{2, 0.0F}, {0, 0.5F}, {0, 0.0F}}),
      (Texts{u"100%; 1; Second;  Second", u"100%; 1; Second;  Second", u"50%; 0; Q;  Second"}));
}

TEST_F(TestResults, PercentSignsInNamesAreShown) {
  AddTag(u"1", u"100%d %s");
  AddTag(u"2", u"%n");
  EXPECT_EQ(TextsOf({{1, 0.5F}, {0, 0.5F}})[0], u"50%; 1; 100%d %s;  %n");
}

TEST_F(TestResults, AreAsManyAsThereAreTags) {
  for (int i = 0; i < 100; ++i) {
    AddTag(std::u16string(1, static_cast<char16_t>(u'0' + i % 10)) +
               std::u16string(1, static_cast<char16_t>(u'0' + i / 10)),
           u"Tag");
  }
  std::vector<Neighbour> nearest(100, Neighbour{0, 0.5F});
  nearest[0].index = 1;
  const auto lines = ToTestLines(m_tags, m_loaded, nearest);
  ASSERT_EQ(lines.size(), 100U);
  EXPECT_EQ(lines[0].confusions, 99);
  EXPECT_EQ(lines[1].confusions, 1);
  EXPECT_EQ(lines[99].tagName, u"99");
}

TEST_F(TestResults, NoMessageIfEveryTemplateWasRead) {
  AddTag(u"1", u"P");
  EXPECT_EQ(UnreadTagsMessage(m_tags, m_loaded), u"");
}

TEST_F(TestResults, TheMessageNamesTheTagsAndSaysWhatToDo) {
  AddTag(u"1", u"Ann Lee 555 M");
  AddTag(u"2", u"");
  m_loaded.unread = {0, 1};
  EXPECT_EQ(UnreadTagsMessage(m_tags, m_loaded),
            u"No voice template can be read for these voice tags:\n\nAnn Lee 555 M\n2\n\nClose "
            u"Zedra Voxtrel and run this command. It makes missing and damaged templates again "
            u"from the recordings: voxtrel check --repair");
}

TEST_F(TestResults, ManyNamesShareLinesSoThatTheMessageStaysLow) {
  for (int i = 0; i < 11; ++i) {
    AddTag(u"1", u"P");
    m_loaded.unread.push_back(i);
  }
  const std::u16string message = UnreadTagsMessage(m_tags, m_loaded);
  EXPECT_NE(message.find(u"\n\nP; P; P; P; P; P; P; P; P; P; P\n\n"), std::u16string::npos);
}

TEST_F(TestResults, PlacesWithoutANameAreReportedOnce) {
  m_loaded.hasNamelessTags = true;
  const std::u16string alone = UnreadTagsMessage(m_tags, m_loaded);
  EXPECT_TRUE(alone.ends_with(u"Close Zedra Voxtrel and open it again."));
  AddTag(u"1", u"P");
  m_loaded.unread = {0};
  EXPECT_TRUE(UnreadTagsMessage(m_tags, m_loaded).ends_with(u"--repair\n\n" + alone));
}

}  // namespace
