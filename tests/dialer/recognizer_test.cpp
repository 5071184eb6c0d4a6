#include "dialer/recognizer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/dialer/taught_store.h"

namespace {

using dialer::Answer;
using dialer::Certainty;
using dialer::Recognizer;
using testing::IsEmpty;

class RecognizerTest : public testing::Test {
 protected:
  [[nodiscard]] Recognizer Make() {
    return Recognizer(dialer::ReadTaughtTags(m_store.files, m_store.registry).value().tags);
  }

  TaughtStore m_store;
};

TEST_F(RecognizerTest, WithoutTagsNobodyIsKnown) {
  const Answer answer = Make().Recognize(TaughtStore::Spoken(1));
  EXPECT_EQ(answer.certainty, Certainty::kUnknown);
  EXPECT_THAT(answer.candidates, IsEmpty());
}

TEST_F(RecognizerTest, ATakeWithoutSamplesIsNobody) {
  m_store.Teach(u"100", TaughtStore::Spoken(1), 17);
  EXPECT_THAT(Make().Recognize(support::Samples()).candidates, IsEmpty());
  EXPECT_THAT(Make().Recognize(std::span<const dialer::Take>()).candidates, IsEmpty());
}

TEST_F(RecognizerTest, TheTakeThatWasTaughtIsTheBestCandidate) {
  for (const int seed : {1, 2, 3, 4}) {
    m_store.Teach(std::u16string(1, static_cast<char16_t>(u'0' + seed)),
                  TaughtStore::Spoken(static_cast<std::uint32_t>(seed)), seed, u"Mobile");
  }
  const Answer answer = Make().Recognize(TaughtStore::Spoken(3));
  ASSERT_EQ(answer.candidates.size(), dialer::kMostCandidates);
  EXPECT_EQ(answer.candidates[0].tag, u"3");
  EXPECT_EQ(answer.candidates[0].oid, 3);
  EXPECT_EQ(answer.candidates[0].phoneKind, u"Mobile");
  EXPECT_LT(answer.candidates[0].distance, answer.candidates[1].distance);
  EXPECT_GT(answer.candidates[0].score, answer.candidates[1].score);
}

TEST_F(RecognizerTest, TagsOfOneNumberAreOneCandidate) {
  m_store.Teach(u"1", TaughtStore::Spoken(1), 17);
  m_store.Teach(u"2", TaughtStore::Spoken(2), 17);
  m_store.Teach(u"3", TaughtStore::Spoken(3), 17, u"Mobile");
  const Answer answer = Make().Recognize(TaughtStore::Spoken(2));
  ASSERT_EQ(answer.candidates.size(), 2U);
  EXPECT_EQ(answer.candidates[0].tag, u"2");
  EXPECT_EQ(answer.candidates[1].tag, u"3");
}

TEST_F(RecognizerTest, TakesOfOneNameCountAlikeAndTogether) {
  for (const int seed : {1, 2, 3}) {
    m_store.Teach(std::u16string(1, static_cast<char16_t>(u'0' + seed)),
                  TaughtStore::Spoken(static_cast<std::uint32_t>(seed)), seed, u"Mobile");
  }
  const support::Samples first = TaughtStore::Spoken(1);
  const support::Samples second = TaughtStore::Spoken(2);
  const std::vector<dialer::Take> takes{first, second};
  const std::vector<dialer::Take> reversed{second, first};
  const Recognizer recognizer = Make();
  const Answer answer = recognizer.Recognize(takes);
  const Answer other = recognizer.Recognize(reversed);
  ASSERT_EQ(answer.candidates.size(), 3U);
  EXPECT_EQ(answer.candidates[2].tag, u"3") << "Neither take speaks for it.";
  ASSERT_EQ(other.candidates.size(), 3U);
  EXPECT_EQ(other.candidates[0].tag, answer.candidates[0].tag);
  EXPECT_EQ(other.candidates[0].distance, answer.candidates[0].distance);
}

}  // namespace
