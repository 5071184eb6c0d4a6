#include "dialer/taught_tags.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "dialer/callee.h"
#include "tests/dialer/taught_store.h"
#include "tests/machine/simulated_contacts.h"
#include "tests/support/half_written.h"
#include "tests/support/results.h"
#include "tests/support/watched_registry.h"

namespace {

using dialer::PassedOver;
using dialer::PassedOverTag;
using dialer::TaughtTags;
using testing::ElementsAre;
using testing::IsEmpty;

class TaughtTagsTest : public testing::Test {
 protected:
  [[nodiscard]] TaughtTags Read() {
    return dialer::ReadTaughtTags(m_store.files, m_store.registry).value();
  }
  [[nodiscard]] std::vector<std::u16string> Names() {
    std::vector<std::u16string> names;
    for (const auto& tag : Read().tags) {
      names.push_back(tag.name);
    }
    return names;
  }
  [[nodiscard]] std::vector<PassedOver> Reasons() {
    std::vector<PassedOver> reasons;
    for (const PassedOverTag& tag : Read().passedOver) {
      reasons.push_back(tag.reason);
    }
    return reasons;
  }
  void TeachThree() {
    m_store.Teach(u"100", TaughtStore::Spoken(1), 17);
    m_store.Teach(u"-200", TaughtStore::Spoken(2), -18, u"Mobile");
    m_store.Teach(u"300", TaughtStore::Spoken(3), 19);
  }

  TaughtStore m_store;
};

TEST_F(TaughtTagsTest, AnEmptyStoreTeachesNothingAndIsNoFailure) {
  EXPECT_THAT(Read().tags, IsEmpty());
  EXPECT_THAT(Read().passedOver, IsEmpty());
}

TEST_F(TaughtTagsTest, EachTagHasItsContactItsKindItsTemplateAndItsRecording) {
  TeachThree();
  const TaughtTags taught = Read();
  ASSERT_EQ(taught.tags.size(), 3U);
  EXPECT_EQ(taught.tags[1].name, u"-200");
  EXPECT_EQ(taught.tags[1].oid, -18);
  EXPECT_EQ(taught.tags[1].phoneKind, u"Mobile");
  EXPECT_EQ(taught.tags[1].features, voicemath::ComputeLearnedTemplate(TaughtStore::Spoken(2)));
  const auto kept = voicemath::FindKeptPart(TaughtStore::Spoken(2));
  EXPECT_EQ(taught.tags[1].samples.size(), kept.last - kept.first + 1);
}

TEST_F(TaughtTagsTest, ATagWhoseFilesAreGoingIsPassedOverAndTheOthersStay) {
  TeachThree();
  ASSERT_TRUE(m_store.files.Delete(storage::WavePath(u"100")));
  ASSERT_TRUE(m_store.files.Delete(storage::TemplatePath(u"300")));
  EXPECT_THAT(Names(), ElementsAre(u"-200"));
  EXPECT_THAT(Reasons(), ElementsAre(PassedOver::kMissing, PassedOver::kMissing));
}

TEST_F(TaughtTagsTest, AFileThatTheAppletIsWritingIsNotWaitedFor) {
  TeachThree();
  const auto writer = m_store.files.Open(storage::TemplatePath(u"300"),
                                         {platform::FileAccess::kWrite, platform::FileShare::kNone,
                                          platform::FileCreation::kOpenExisting});
  ASSERT_TRUE(writer);
  EXPECT_THAT(Names(), ElementsAre(u"100", u"-200"));
  EXPECT_THAT(Reasons(), ElementsAre(PassedOver::kInUse));
}

TEST_F(TaughtTagsTest, NoFileStaysOpen) {
  TeachThree();
  const TaughtTags taught = Read();
  EXPECT_EQ(m_store.files.CountOpenHandles(), 0U);
}

TEST_F(TaughtTagsTest, OfAHalfWrittenEntryNobodyIsCalledAndTheOthersStay) {
  machine::SimulatedContact ann{.oid = 17, .firstName = u"Ann"};
  ann.Number(platform::PhoneKind::kMobile) = u"555";
  machine::SimulatedContacts contacts;
  contacts.Add(ann);
  ASSERT_TRUE(contacts.Initialize() && contacts.Connect() && contacts.Logon());
  TeachThree();
  for (const support::HalfWritten& entry : support::HalfWrittenEntries()) {
    ASSERT_TRUE(m_store.registry.DeleteKey(storage::EntryPath(u"-200")));
    entry.write(m_store.registry, u"-200");
    const TaughtTags taught = Read();
    EXPECT_THAT(taught.passedOver, IsEmpty()) << entry.what;
    ASSERT_EQ(taught.tags.size(), entry.isThere ? 3U : 2U) << entry.what;
    EXPECT_EQ(taught.tags[0].oid, 17);
    EXPECT_EQ(taught.tags[1].oid, 19);
    if (entry.isThere) {
      const auto& half = taught.tags[2];
      const auto callee = dialer::FindCallee(
          &contacts, {.tag = half.name, .oid = half.oid, .phoneKind = half.phoneKind});
      const bool isWhole = entry.namesContact && entry.namesKind;
      EXPECT_EQ(callee.fault.empty(), isWhole) << entry.what;
      EXPECT_EQ(callee.number, isWhole ? u"555" : u"") << entry.what;
    } else {
      m_store.PutEntry(u"-200", -18);
    }
  }
}

TEST_F(TaughtTagsTest, TornTemplatesAndFilesThatAreNoRecordingsArePassedOver) {
  TeachThree();
  auto bytes = TaughtStore::TemplateFile(voicemath::ComputeLearnedTemplate(TaughtStore::Spoken(1)));
  bytes.pop_back();
  ASSERT_TRUE(m_store.files.PutFile(storage::TemplatePath(u"100"), bytes));
  ASSERT_TRUE(m_store.files.PutFile(storage::WavePath(u"-200"), support::Bytes(100)));
  m_store.PutRecording(u"300", {});
  EXPECT_THAT(Names(), IsEmpty());
  EXPECT_THAT(Reasons(),
              ElementsAre(PassedOver::kDamaged, PassedOver::kDamaged, PassedOver::kDamaged));
}

TEST_F(TaughtTagsTest, ATemplateWithoutFramesOrWithValuesThatAreNoNumbersIsDamaged) {
  TeachThree();
  m_store.PutTemplate(u"100", {});
  m_store.PutTemplate(u"300", {1, 2, 3, 4, std::numeric_limits<float>::quiet_NaN()});
  EXPECT_THAT(Names(), ElementsAre(u"-200"));
  EXPECT_THAT(Reasons(), ElementsAre(PassedOver::kDamaged, PassedOver::kDamaged));
}

TEST_F(TaughtTagsTest, WhatFollowsATemplateIsNotPartOfIt) {
  m_store.Teach(u"100", TaughtStore::Spoken(1), 17);
  const auto features = voicemath::ComputeLearnedTemplate(TaughtStore::Spoken(1));
  auto bytes = TaughtStore::TemplateFile(features);
  bytes.resize(bytes.size() + 1000);
  ASSERT_TRUE(m_store.files.PutFile(storage::TemplatePath(u"100"), bytes));
  ASSERT_EQ(Read().tags.size(), 1U);
  EXPECT_EQ(Read().tags[0].features, features);
}

TEST_F(TaughtTagsTest, TagsThatAreLongerThanANameArePassedOver) {
  m_store.Teach(u"100", TaughtStore::Spoken(1), 17);
  m_store.Teach(u"200", TaughtStore::Spoken(2), 17);
  m_store.PutTemplate(u"100", std::vector<float>(65535 * 5, 1.0F));
  m_store.PutRecording(u"200", support::Constant(600000, 1));
  EXPECT_THAT(Reasons(), ElementsAre(PassedOver::kTooLong, PassedOver::kTooLong));
}

TEST_F(TaughtTagsTest, TemplatesOfAnotherVersionOfTheMathematicsAreNotCompared) {
  TeachThree();
  m_store.SetVersion(u"2");
  EXPECT_THAT(Names(), IsEmpty());
  EXPECT_THAT(Reasons(), ElementsAre(PassedOver::kOtherMathematics, PassedOver::kOtherMathematics,
                                     PassedOver::kOtherMathematics));
}

TEST_F(TaughtTagsTest, AStoreThatNamesNoVersionIsOneWhoseTemplatesAreStillToBeComputed) {
  TeachThree();
  ASSERT_TRUE(m_store.registry.DeleteKey(storage::kSetupKey));
  EXPECT_EQ(Reasons().size(), 3U);
  EXPECT_EQ(Reasons()[0], PassedOver::kOtherMathematics);
}

TEST_F(TaughtTagsTest, AnEntryThatNamesNoContactIsATagOfNobodyKnown) {
  m_store.Teach(u"100", TaughtStore::Spoken(1), 17);
  ASSERT_TRUE(support::PutText(m_store.registry, storage::EntryPath(u"100"), storage::kContactValue,
                               u"nobody"));
  ASSERT_EQ(Read().tags.size(), 1U);
  EXPECT_EQ(Read().tags[0].oid, std::nullopt);
}

TEST_F(TaughtTagsTest, AListThatCannotBeReadIsAFailure) {
  TeachThree();
  support::WatchedRegistry registry(m_store.registry);
  registry.FailCall(1, support::Failing::kOnce);
  EXPECT_FALSE(dialer::ReadTaughtTags(m_store.files, registry));
}

TEST_F(TaughtTagsTest, TagsOfOneContactAndKindAreOfOneNumberAndThoseOfNobodyAreNot) {
  TeachThree();
  auto tags = Read().tags;
  EXPECT_FALSE(dialer::IsSameNumber(tags[0], tags[1]));
  tags[1].oid = tags[0].oid;
  EXPECT_FALSE(dialer::IsSameNumber(tags[0], tags[1])) << "Home and Mobile are two numbers.";
  tags[1].phoneKind = tags[0].phoneKind;
  EXPECT_TRUE(dialer::IsSameNumber(tags[0], tags[1]));
  tags[0].oid = tags[1].oid = std::nullopt;
  EXPECT_FALSE(dialer::IsSameNumber(tags[0], tags[1]));
}

}  // namespace
