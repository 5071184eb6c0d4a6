#include "storage/microphone_choice.h"

#include <gtest/gtest.h>

#include "tests/machine/memory_registry.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/watched_registry.h"

namespace {

using platform::RegistryError;
using storage::ChooseMicrophone;
using storage::ReadMicrophone;

TEST(MicrophoneChoice, IsRememberedUntilItIsTakenBack) {
  machine::MemoryRegistry registry;
  EXPECT_EQ(ReadMicrophone(registry), u"");
  ASSERT_TRUE(ChooseMicrophone(registry, u"usb-headset"));
  EXPECT_EQ(ReadMicrophone(registry), u"usb-headset");
  ASSERT_TRUE(ChooseMicrophone(registry, u"built-in"));
  EXPECT_EQ(ReadMicrophone(registry), u"built-in");
  ASSERT_TRUE(ChooseMicrophone(registry, u""));
  EXPECT_EQ(ReadMicrophone(registry), u"");
  EXPECT_TRUE(support::BytesOf(registry, storage::kSoundKey, storage::kMicrophoneValue).empty());
}

TEST(MicrophoneChoice, OfTheServerLeavesANewStoreAsItIs) {
  machine::MemoryRegistry registry;
  ASSERT_TRUE(ChooseMicrophone(registry, u""));
  EXPECT_FALSE(support::KeyExists(registry, storage::kSoundKey));
}

TEST(MicrophoneChoice, OfAnotherProgramThatIsNoTextCountsAsNone) {
  machine::MemoryRegistry registry;
  ASSERT_EQ(
      support::ErrorOf(support::Put(registry, storage::kSoundKey, storage::kMicrophoneValue,
                                    platform::RegistryType::kDword, std::vector<std::byte>(4))),
      std::nullopt);
  EXPECT_EQ(ReadMicrophone(registry), u"");
}

TEST(MicrophoneChoice, ThatCannotBeReadOrWrittenIsNoneAndAFailure) {
  machine::MemoryRegistry registry;
  ASSERT_TRUE(ChooseMicrophone(registry, u"usb-headset"));
  support::WatchedRegistry busy(registry);
  busy.FailCall(1, support::Failing::kFromThenOn, RegistryError::kBusy);
  EXPECT_EQ(ReadMicrophone(busy), u"");
  EXPECT_EQ(support::ErrorOf(ChooseMicrophone(busy, u"built-in")), RegistryError::kBusy);
}

}  // namespace
