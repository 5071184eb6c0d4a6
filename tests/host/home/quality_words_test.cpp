#include "host/home/quality_words.h"

#include <gtest/gtest.h>

namespace {

using home::Tag;
using voicemath::Verdict;

Tag TagWith(std::initializer_list<Verdict> verdicts) {
  Tag tag;
  tag.quality.take = voicemath::TakeQuality{verdicts, -44.04, 6.25};
  return tag;
}

TEST(QualityWords, NameWhatHindersMost) {
  EXPECT_EQ(home::NameQuality(TagWith({Verdict::kSoft, Verdict::kNoisy}).quality),
            QStringLiteral("Too soft"));
  EXPECT_EQ(home::NameQuality(TagWith({}).quality), QStringLiteral("Good"));
}

TEST(QualityWords, HaveOneSentenceForEachVerdict) {
  const Tag tag = TagWith({Verdict::kSoft, Verdict::kNoisy});
  EXPECT_EQ(home::DescribeQuality(tag, {tag}),
            QStringList({QStringLiteral("The recording is too soft: its peak is -44.0 dB, and a "
                                        "good one is above −40 dB."),
                         QStringLiteral("The room is loud: the voice is only 6.3 dB above it, and "
                                        "20 dB is good.")}));
}

TEST(QualityWords, DoNotBlameTheSpeakerForATagThatWasCutShorterThanTheName) {
  const Tag tag = TagWith({Verdict::kCutStart, Verdict::kCutEnd});
  EXPECT_EQ(home::DescribeQuality(tag, {tag}),
            QStringList({QStringLiteral("The voice tag begins in the middle of the name. Speak a "
                                        "little later, or say a shorter name."),
                         QStringLiteral("The voice tag ends in the middle of the name. Speak a "
                                        "little earlier, or say a shorter name.")}));
}

TEST(QualityWords, NameThePersonWhoseTagIsTooAlike) {
  Tag anna = TagWith({Verdict::kTooAlike});
  Tag hanna = TagWith({});
  hanna.contact = u"Hanna Berg";
  anna.quality.tooAlike = {{1, 0.25F}};
  EXPECT_EQ(home::NameQuality(anna.quality), QStringLiteral("Too alike"));
  EXPECT_EQ(home::DescribeQuality(anna, {anna, hanna}),
            QStringList(QStringLiteral(
                "It sounds like Hanna Berg. The dialer may take one for the other.")));
}

TEST(QualityWords, CallATagGoodOnlyIfItsFilesCouldBeRead) {
  Tag tag = TagWith({});
  EXPECT_EQ(home::DescribeQuality(tag, {tag}),
            QStringList(QStringLiteral("The recording is good.")));
  for (bool maintenance::TagQuality::*const problem :
       {&maintenance::TagQuality::hasUnreadFile, &maintenance::TagQuality::hasNoTemplate}) {
    tag = TagWith({});
    tag.quality.*problem = true;
    EXPECT_EQ(home::NameQuality(tag.quality), QStringLiteral("Not judged"));
    EXPECT_EQ(home::DescribeQuality(tag, {tag}),
              QStringList(QStringLiteral(
                  "The tag cannot be judged, since one of its files cannot be read.")));
  }
}

}  // namespace
