#include "maintenance/tag_quality.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>

#include "tests/maintenance/session_fixture.h"
#include "tests/support/results.h"
#include "tests/support/watched_file_system.h"
#include "voicemath/template_file.h"

namespace {

using maintenance::JudgedTag;
using maintenance::TagQuality;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using voicemath::Verdict;

class TagQualityTest : public SessionFixture {
 protected:
  /// A tag whose recording is made from `seed`, for a number of the contact.
  void Learn(std::u16string_view name, std::uint32_t seed, std::int32_t oid,
             std::u16string_view phoneType = u"Home") {
    PutRecording(name, seed);
    m_session.mathematics.m_wavePath = storage::WavePath(name);
    ASSERT_EQ(m_session.mathematics.LearnFile(0), voicemath::kLearned);
    ASSERT_TRUE(voicemath::WriteTemplateFile(m_machine.files, storage::TemplatePath(name),
                                             m_session.mathematics));
    m_tags.push_back({std::u16string(name), {.oid = oid, .phoneType = std::u16string(phoneType)}});
  }
  [[nodiscard]] std::vector<TagQuality> Judge() {
    return maintenance::JudgeTags(m_machine.Get(), m_tags);
  }
  [[nodiscard]] static std::vector<Verdict> VerdictsOf(const TagQuality& quality) {
    return quality.take ? quality.take->verdicts : std::vector<Verdict>();
  }

  std::vector<JudgedTag> m_tags;
};

TEST_F(TagQualityTest, TheSameNameForTwoNumbersIsTooAlikeAndNamesTheOther) {
  Learn(u"100", 1, 17);
  Learn(u"200", 4, 18);
  Learn(u"300", 1, 19);
  const auto qualities = Judge();
  ASSERT_EQ(qualities.size(), 3U);
  EXPECT_THAT(VerdictsOf(qualities[0]), ElementsAre(Verdict::kTooAlike));
  ASSERT_EQ(qualities[0].tooAlike.size(), 1U);
  EXPECT_EQ(qualities[0].tooAlike[0].index, 2U);
  EXPECT_EQ(qualities[0].tooAlike[0].distance, 0.0F);
  EXPECT_FALSE(qualities[1].HasVerdicts());
  EXPECT_EQ(qualities[2].tooAlike[0].index, 0U);
}

TEST_F(TagQualityTest, TwoTagsOfOneNumberAreNotCompared) {
  Learn(u"100", 1, 17, u"Home");
  Learn(u"200", 1, 17, u"Home");
  EXPECT_FALSE(Judge()[0].HasVerdicts());
  m_tags[1].entry.phoneType = u"Mobile";
  EXPECT_THAT(VerdictsOf(Judge()[0]), ElementsAre(Verdict::kTooAlike));
  m_tags[0].entry = m_tags[1].entry = {};
  EXPECT_THAT(VerdictsOf(Judge()[0]), ElementsAre(Verdict::kTooAlike))
      << "Without a contact nobody knows that it is one number.";
}

TEST_F(TagQualityTest, TheMostAlikeTagComesFirst) {
  PutRecording(u"100", 1);
  PutRecording(u"200", 2);
  PutRecording(u"300", 3);
  PutTemplate(u"100", {0, 0, 0, 0, 0, 1, 1, 0, 0, 0});
  PutTemplate(u"200", {0, 0, 0, 0, 0, 1, 0.7F, 0, 0, 0});
  PutTemplate(u"300", {0, 0, 0, 0, 0, 1, 0.9F, 0, 0, 0});
  for (const auto* name : {u"100", u"200", u"300"}) {
    m_tags.push_back({name, {}});
  }
  const auto alike = Judge()[0].tooAlike;
  ASSERT_EQ(alike.size(), 2U);
  EXPECT_EQ(alike[0].index, 2U);
  EXPECT_LT(alike[0].distance, alike[1].distance);
}

TEST_F(TagQualityTest, TheNearestTagIsKnownEvenIfItIsNotTooAlike) {
  Learn(u"100", 1, 17);
  EXPECT_FALSE(Judge()[0].nearest) << "There is no other.";
  Learn(u"200", 4, 18);
  Learn(u"300", 1, 17);
  const auto qualities = Judge();
  ASSERT_TRUE(qualities[0].nearest);
  EXPECT_EQ(qualities[0].nearest->index, 1U) << "300 is of the same number.";
  EXPECT_TRUE(qualities[0].tooAlike.empty());
  EXPECT_EQ(qualities[1].nearest->distance, qualities[0].nearest->distance);
}

TEST_F(TagQualityTest, ARecordingThatIsMissingHasNoJudgementAndStillLikeness) {
  Learn(u"100", 1, 17);
  Learn(u"200", 1, 18);
  ASSERT_TRUE(m_machine.files.Delete(storage::WavePath(u"100")));
  const auto qualities = Judge();
  EXPECT_EQ(support::ErrorOf(qualities[0].take), voicemath::ReviewError::kNotOpened);
  EXPECT_EQ(qualities[0].tooAlike.size(), 1U);
  EXPECT_THAT(VerdictsOf(qualities[1]), ElementsAre(Verdict::kTooAlike));
  EXPECT_TRUE(GetMessages().empty());
}

TEST_F(TagQualityTest, ATemplateThatIsTornIsLikeNoOther) {
  Learn(u"100", 1, 17);
  Learn(u"200", 1, 18);
  ASSERT_TRUE(m_machine.files.PutFile(storage::TemplatePath(u"100"), support::Bytes(20)));
  EXPECT_FALSE(Judge()[0].HasVerdicts());
  EXPECT_FALSE(Judge()[1].HasVerdicts());
}

/// A recording is compared before it is kept, and counts then as the tag that it would become.
TEST_F(TagQualityTest, ATakeIsTooAlikeToTheTagsThatItWouldBeTooAlikeToOnceItIsLearned) {
  Learn(u"100", 1, 17);
  Learn(u"200", 4, 18);
  const support::Samples take = Spoken(1);
  const auto alike =
      maintenance::FindTooAlike(m_machine.Get(), m_tags, take, {.oid = 19, .phoneType = u"Home"});
  Learn(u"300", 1, 19);
  const auto learned = Judge()[2].tooAlike;
  ASSERT_EQ(learned.size(), 1U);
  ASSERT_EQ(alike.size(), 1U);
  EXPECT_EQ(alike[0].index, learned[0].index);
  EXPECT_EQ(alike[0].distance, learned[0].distance);
}

TEST_F(TagQualityTest, ATakeOfANumberThatHasATagAlreadyIsNotComparedWithThatTag) {
  Learn(u"100", 1, 17);
  EXPECT_THAT(maintenance::FindTooAlike(m_machine.Get(), m_tags, Spoken(1),
                                        {.oid = 17, .phoneType = u"Home"}),
              testing::IsEmpty());
}

TEST_F(TagQualityTest, ATakeWithoutSpeechEnoughForATemplateIsLikeNoTag) {
  Learn(u"100", 1, 17);
  for (const std::size_t length : {0U, 1U, 1000U}) {
    EXPECT_THAT(maintenance::FindTooAlike(m_machine.Get(), m_tags, support::Samples(length), {}),
                testing::IsEmpty());
  }
}

/// A list that says less than it could must not look like a whole one.
TEST_F(TagQualityTest, AFileThatIsThereAndCannotBeReadIsNamedAndNothingElseIsMadeUp) {
  Learn(u"100", 1, 17);
  Learn(u"200", 1, 18);
  const auto whole = Judge();
  support::WatchedFileSystem failing(m_machine.files);
  const auto platform = m_machine.GetWith(failing, m_machine.registry);
  for (const auto kind : {support::Failing::kOnce, support::Failing::kFromThenOn}) {
    bool hasFailed = true;
    for (std::size_t call = 1; hasFailed; ++call) {
      failing.FailCall(call, kind);
      const auto qualities = maintenance::JudgeTags(platform, m_tags);
      hasFailed = failing.HasFailed();
      ASSERT_EQ(qualities.size(), 2U);
      const bool isWhole = VerdictsOf(qualities[0]) == VerdictsOf(whole[0]) &&
                           VerdictsOf(qualities[1]) == VerdictsOf(whole[1]);
      const auto unread = std::ranges::count(qualities, true, &TagQuality::hasUnreadFile);
      EXPECT_TRUE(isWhole || unread > 0) << call;
      EXPECT_LE(unread, kind == support::Failing::kOnce ? 1 : 2) << call;
      ASSERT_LT(call, 10000U);
    }
  }
}

TEST_F(TagQualityTest, WhatIsMissingOrDamagedIsNotUnread) {
  Learn(u"100", 1, 17);
  Learn(u"200", 1, 18);
  ASSERT_TRUE(m_machine.files.Delete(storage::WavePath(u"100")));
  ASSERT_TRUE(m_machine.files.Delete(storage::TemplatePath(u"100")));
  ASSERT_TRUE(m_machine.files.PutFile(storage::TemplatePath(u"200"), support::Bytes(20)));
  EXPECT_EQ(std::ranges::count(Judge(), true, &TagQuality::hasUnreadFile), 0);
}

TEST_F(TagQualityTest, ATemplateThatIsMissingOrDamagedIsKnownAsNone) {
  Learn(u"100", 1, 17);
  Learn(u"200", 1, 18);
  Learn(u"300", 1, 19);
  EXPECT_EQ(std::ranges::count(Judge(), true, &TagQuality::hasNoTemplate), 0);
  ASSERT_TRUE(m_machine.files.Delete(storage::TemplatePath(u"100")));
  ASSERT_TRUE(m_machine.files.PutFile(storage::TemplatePath(u"200"), support::Bytes(3)));
  const auto qualities = Judge();
  EXPECT_TRUE(qualities[0].hasNoTemplate);
  EXPECT_TRUE(qualities[1].hasNoTemplate);
  EXPECT_FALSE(qualities[2].hasNoTemplate);
}

TEST_F(TagQualityTest, ATemplateOfZerosHasNoFrameAndIsKnownAsNone) {
  Learn(u"100", 1, 17);
  ASSERT_TRUE(m_machine.files.PutFile(storage::TemplatePath(u"100"), support::Bytes(20)));
  EXPECT_TRUE(Judge()[0].hasNoTemplate);
}

TEST_F(TagQualityTest, OneTagIsJudgedAsAmongAll) {
  Learn(u"100", 1, 17);
  Learn(u"200", 1, 18);
  ASSERT_TRUE(m_machine.files.PutFile(storage::WavePath(u"200"),
                                      support::WaveFile(support::Constant(9000, 0))));
  const TagQuality one = maintenance::JudgeTag(m_machine.Get(), m_tags, 1);
  EXPECT_THAT(VerdictsOf(one), ElementsAre(Verdict::kSilent, Verdict::kTooAlike));
  EXPECT_EQ(VerdictsOf(one), VerdictsOf(Judge()[1]));
}

TEST_F(TagQualityTest, MoreTagsThanTemplatesAreKeptOfAreJudgedByTheirRecordings) {
  for (int i = 0; i < 102; ++i) {
    const std::string name = std::to_string(1000 + i);
    const std::u16string wide(name.begin(), name.end());
    PutRecording(wide, 1);
    m_tags.push_back({wide, {}});
  }
  PutRecording(m_tags.back().name, 1);
  ASSERT_TRUE(m_machine.files.PutFile(storage::WavePath(m_tags.back().name),
                                      support::WaveFile(support::Constant(9000, 0))));
  const auto qualities = Judge();
  ASSERT_EQ(qualities.size(), 102U);
  EXPECT_THAT(VerdictsOf(qualities.front()), Not(Contains(Verdict::kTooAlike)));
  EXPECT_THAT(VerdictsOf(qualities.back()), ElementsAre(Verdict::kSilent));
}

}  // namespace
