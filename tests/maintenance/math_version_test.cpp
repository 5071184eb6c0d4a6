#include "maintenance/math_version.h"

#include <gtest/gtest.h>

#include "storage/registry_keys.h"
#include "tests/machine/memory_registry.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/watched_registry.h"

namespace {

using maintenance::RecordedVersion;
using platform::RegistryType;
using support::Utf16Bytes;

class MathVersion : public testing::Test {
 protected:
  void MakeKey() { ASSERT_TRUE(m_registry.CreateKey(storage::kSetupKey)); }
  void PutBytes(RegistryType type, const std::vector<std::byte>& bytes) {
    ASSERT_EQ(support::ErrorOf(support::Put(m_registry, storage::kSetupKey,
                                            storage::kMathVersionValue, type, bytes)),
              std::nullopt);
  }
  void PutText(std::u16string_view text) {
    ASSERT_EQ(support::ErrorOf(support::PutText(m_registry, storage::kSetupKey,
                                                storage::kMathVersionValue, text)),
              std::nullopt);
  }
  [[nodiscard]] std::vector<std::byte> GetBytes() {
    return support::BytesOf(m_registry, storage::kSetupKey, storage::kMathVersionValue);
  }
  /// "3" and zeros.
  static std::vector<std::byte> Three(std::size_t length) {
    std::vector<std::byte> bytes(length);
    bytes[0] = std::byte{'3'};
    return bytes;
  }

  machine::MemoryRegistry m_registry;
};

TEST_F(MathVersion, WithoutItsKeyNothingIsDone) {
  EXPECT_FALSE(maintenance::UpdateVersion(m_registry));
  EXPECT_FALSE(support::KeyExists(m_registry, storage::kSetupKey)) << "The installation makes it.";
  EXPECT_EQ(maintenance::ReadVersion(m_registry), RecordedVersion::kUnknown);
}

TEST_F(MathVersion, AMissingValueIsWrittenInEightBytes) {
  MakeKey();
  EXPECT_EQ(maintenance::ReadVersion(m_registry), RecordedVersion::kMissing);
  EXPECT_TRUE(maintenance::UpdateVersion(m_registry));
  EXPECT_EQ(GetBytes(), Three(8));
}

TEST_F(MathVersion, AnotherVersionIsOverwrittenInThirtyTwoBytes) {
  PutText(u"2");
  EXPECT_EQ(maintenance::ReadVersion(m_registry), RecordedVersion::kOther);
  EXPECT_TRUE(maintenance::UpdateVersion(m_registry));
  EXPECT_EQ(GetBytes(), Three(32));
}

TEST_F(MathVersion, IsWrittenAsAText) {
  MakeKey();
  EXPECT_TRUE(maintenance::UpdateVersion(m_registry));
  const auto key = m_registry.OpenKey(storage::kSetupKey).value();
  EXPECT_EQ(key->Query(u"Version_Math").value().type, RegistryType::kString);
}

TEST_F(MathVersion, IsCurrentAfterItWasWritten) {
  MakeKey();
  EXPECT_TRUE(maintenance::UpdateVersion(m_registry));
  EXPECT_EQ(maintenance::ReadVersion(m_registry), RecordedVersion::kCurrent);
  EXPECT_FALSE(maintenance::UpdateVersion(m_registry));
  PutText(u"4");
  EXPECT_TRUE(maintenance::UpdateVersion(m_registry));
  EXPECT_FALSE(maintenance::UpdateVersion(m_registry));
}

TEST_F(MathVersion, TextsThatConvertToThreeAreLeftAlone) {
  for (const std::u16string_view text : {u"3", u" 3", u"+3", u"03", u"3.1", u"3abc"}) {
    PutText(text);
    const auto before = GetBytes();
    EXPECT_FALSE(maintenance::UpdateVersion(m_registry));
    EXPECT_EQ(GetBytes(), before);
  }
}

TEST_F(MathVersion, TextsThatConvertToAnythingElseAreRewritten) {
  for (const std::u16string_view text : {u"", u"2", u"-3", u"30", u"x", u"x3", u"99999999999"}) {
    PutText(text);
    EXPECT_TRUE(maintenance::UpdateVersion(m_registry));
    EXPECT_EQ(GetBytes(), Three(32));
  }
}

TEST_F(MathVersion, ATextWithoutItsTerminatorIsReadToItsEnd) {
  PutBytes(RegistryType::kString, Utf16Bytes(u"3"));
  EXPECT_FALSE(maintenance::UpdateVersion(m_registry));
  PutBytes(RegistryType::kString, {});
  EXPECT_TRUE(maintenance::UpdateVersion(m_registry));
}

TEST_F(MathVersion, WhatStandsBehindTheTerminatorDoesNotCount) {
  PutBytes(RegistryType::kString, Utf16Bytes(std::u16string(u"3\u0000x", 3)));
  EXPECT_FALSE(maintenance::UpdateVersion(m_registry));
}

TEST_F(MathVersion, AValueOfAnotherTypeIsNoVersion) {
  PutBytes(RegistryType::kDword, {std::byte{3}, {}, {}, {}});
  EXPECT_TRUE(maintenance::UpdateVersion(m_registry));
  EXPECT_EQ(maintenance::ReadVersion(m_registry), RecordedVersion::kCurrent);
}

TEST_F(MathVersion, AValueLongerThanItsBufferIsNoVersion) {
  PutBytes(RegistryType::kString, Three(32));
  EXPECT_FALSE(maintenance::UpdateVersion(m_registry));
  PutBytes(RegistryType::kString, Three(34));
  EXPECT_TRUE(maintenance::UpdateVersion(m_registry));
  EXPECT_EQ(GetBytes(), Three(32));
}

TEST_F(MathVersion, ARegistryThatCannotBeAskedIsNoReasonToWork) {
  PutText(u"2");
  support::WatchedRegistry failing(m_registry);
  for (const std::size_t call : {1U, 2U}) {
    failing.FailCall(call, support::Failing::kOnce);
    EXPECT_FALSE(maintenance::UpdateVersion(failing)) << call;
    EXPECT_TRUE(failing.HasFailed());
    EXPECT_EQ(maintenance::ReadVersion(m_registry), RecordedVersion::kOther);
  }
}

TEST_F(MathVersion, AFailureToWriteKeepsNothingFromBeingComputed) {
  PutText(u"2");
  support::WatchedRegistry failing(m_registry);
  failing.FailCall(3, support::Failing::kOnce);
  EXPECT_TRUE(maintenance::UpdateVersion(failing));
  EXPECT_TRUE(failing.HasFailed());
  EXPECT_EQ(maintenance::ReadVersion(m_registry), RecordedVersion::kOther);
}

}  // namespace
