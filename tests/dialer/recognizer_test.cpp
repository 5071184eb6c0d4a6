#include "dialer/recognizer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <iterator>
#include <string>

#include "dialer/wave_reading.h"
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
  EXPECT_NE(answer.certainty, Certainty::kSure) << "One speaks for the first, one for the second.";
}

TEST_F(RecognizerTest, AWordThatWasTaughtForTwoNumbersIsAskedAboutAndNoOtherSuffers) {
  m_store.Teach(u"1", TaughtStore::Spoken(1), 17, u"Mobile");
  m_store.Teach(u"2", TaughtStore::Spoken(1), 17, u"Home");
  m_store.Teach(u"3", TaughtStore::Spoken(2), 18, u"Mobile");
  const Recognizer recognizer = Make();
  const Answer answer = recognizer.Recognize(TaughtStore::Spoken(1));
  EXPECT_EQ(answer.certainty, Certainty::kOneOf);
  ASSERT_GE(answer.candidates.size(), 2U);
  EXPECT_EQ(answer.candidates[0].oid, 17);
  EXPECT_EQ(answer.candidates[1].oid, 17);
  const Answer of = recognizer.Recognize(TaughtStore::Spoken(2));
  EXPECT_EQ(of.certainty, Certainty::kSure);
  EXPECT_EQ(of.candidates[0].tag, u"3");
}

TEST_F(RecognizerTest, NothingIsWrittenSoAFullDiskIsNoHindrance) {
  m_store.Teach(u"1", TaughtStore::Spoken(1), 17);
  const auto files = m_store.files.ListFiles();
  m_store.files.SetCapacity(0);
  EXPECT_EQ(Make().Recognize(TaughtStore::Spoken(1)).candidates.size(), 1U);
  EXPECT_EQ(m_store.files.ListFiles(), files);
}

TEST_F(RecognizerTest, OfAHundredTagsThatAreFarTooLongNoneIsWaitedFor) {
  m_store.Teach(u"1", TaughtStore::Spoken(1), 17);
  const std::vector<float> features(std::size_t{65535} * 5, 1.0F);
  for (int i = 0; i < 99; ++i) {
    const std::u16string name{u'x', static_cast<char16_t>(u'0' + i / 10),
                              static_cast<char16_t>(u'0' + i % 10)};
    m_store.PutTemplate(name, features);
    m_store.PutRecording(name, TaughtStore::Spoken(2));
    m_store.PutEntry(name, i);
  }
  const auto taught = dialer::ReadTaughtTags(m_store.files, m_store.registry).value();
  EXPECT_EQ(taught.tags.size(), 1U);
  EXPECT_EQ(taught.passedOver.size(), 99U);
  EXPECT_EQ(Recognizer(taught.tags).Recognize(TaughtStore::Spoken(1)).candidates[0].tag, u"1");
}

/// The names of the samples, each said three times.
class RecognizerOnSamples : public RecognizerTest {
 protected:
  static constexpr std::array kNames{"anna",   "elizabeth", "hernandez", "jackson",
                                     "oliver", "robert",    "sophie",    "timothy"};

  [[nodiscard]] static support::Samples Said(std::size_t name, int take) {
    const std::string path = std::string(VOXTREL_SAMPLES_DIR) + "/" + kNames.at(name) + "_" +
                             std::to_string(take) + ".wav";
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    return dialer::DecodeWave(std::as_bytes(std::span(bytes)), 10).value();
  }
  void TeachNames(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const auto digit = static_cast<char16_t>(u'0' + i);
      m_store.Teach(std::u16string(1, digit), Said(i, 1), static_cast<std::int32_t>(i));
    }
  }
};

TEST_F(RecognizerOnSamples, EachNameIsKnownForSureIfItIsSaidAgain) {
  TeachNames(kNames.size());
  const Recognizer recognizer = Make();
  for (std::size_t name = 0; name < kNames.size(); ++name) {
    const Answer answer = recognizer.Recognize(Said(name, 2));
    EXPECT_EQ(answer.candidates[0].oid, static_cast<std::int32_t>(name)) << kNames.at(name);
    EXPECT_EQ(answer.certainty, Certainty::kSure) << kNames.at(name);
  }
}

TEST_F(RecognizerOnSamples, NamesThatWereNotTaughtAreNotSure) {
  TeachNames(4);
  const Recognizer recognizer = Make();
  for (std::size_t name = 4; name < kNames.size(); ++name) {
    EXPECT_NE(recognizer.Recognize(Said(name, 1)).certainty, Certainty::kSure) << kNames.at(name);
  }
}

TEST_F(RecognizerOnSamples, ASingleTagIsKnownAndOtherWordsAreNot) {
  TeachNames(1);
  const Recognizer recognizer = Make();
  EXPECT_EQ(recognizer.Recognize(Said(0, 2)).certainty, Certainty::kSure);
  EXPECT_EQ(recognizer.Recognize(Said(0, 3)).certainty, Certainty::kSure);
  for (std::size_t name = 1; name < kNames.size(); ++name) {
    EXPECT_NE(recognizer.Recognize(Said(name, 1)).certainty, Certainty::kSure) << kNames.at(name);
  }
}

TEST_F(RecognizerOnSamples, SilenceAndNoiseAreNobody) {
  TeachNames(4);
  const Recognizer recognizer = Make();
  for (const support::Samples& take : {support::Constant(20000, 0), support::Constant(20000, 900),
                                       support::Noise(20000, 300, 1)}) {
    EXPECT_NE(recognizer.Recognize(take).certainty, Certainty::kSure);
  }
}

TEST_F(RecognizerOnSamples, TakesOfOneNameAreJoinedToOneAnswer) {
  TeachNames(kNames.size());
  const Recognizer recognizer = Make();
  const support::Samples second = Said(5, 2);
  const support::Samples third = Said(5, 3);
  const std::array<dialer::Take, 2> takes{second, third};
  const Answer both = recognizer.Recognize(takes);
  const float mean = (recognizer.Recognize(second).candidates[0].distance +
                      recognizer.Recognize(third).candidates[0].distance) /
                     2;
  EXPECT_EQ(both.candidates[0].oid, 5);
  EXPECT_FLOAT_EQ(both.candidates[0].distance, mean);
}

TEST_F(RecognizerOnSamples, TemplatesAloneKnowMostNamesAndAreSeldomSure) {
  TeachNames(kNames.size());
  const Recognizer quick(dialer::ReadTaughtTags(m_store.files, m_store.registry).value().tags,
                         dialer::Steps::kTemplatesOnly);
  int right = 0;
  for (std::size_t name = 0; name < kNames.size(); ++name) {
    right += quick.Recognize(Said(name, 2)).candidates[0].oid == static_cast<std::int32_t>(name);
  }
  EXPECT_GE(right, 6);
  EXPECT_NE(quick.Recognize(support::Noise(20000, 300, 1)).certainty, Certainty::kSure);
}

/// What is heard of a tag is the same whether the applet cut its recording or the dialer does.
TEST_F(RecognizerOnSamples, ATakeAndTheTagThatWasMadeOfItAreOneAndTheSame) {
  TeachNames(3);
  const Answer answer = Make().Recognize(Said(1, 1));
  EXPECT_EQ(answer.candidates[0].oid, 1);
  EXPECT_EQ(answer.candidates[0].distance, 0);
}

}  // namespace
