#include "platform/vcard/source_choice.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/headless/memory_registry.h"
#include "platform/text/utf.h"
#include "tests/support/failing_registry.h"
#include "tests/support/registry_access.h"

namespace vcard {
namespace {

constexpr std::u16string_view kKey = u"Software\\Zedra\\Voxtrel Contacts";

TEST(SourceChoice, TheDesktopsAddressBooksAreCalledEds) {
  EXPECT_EQ(ParseChoice(u"eds"), SourceChoice{});
  EXPECT_NE(ParseChoice(u"./eds"), SourceChoice{});
}

TEST(SourceChoice, APathMeansTheSameFromEverywhere) {
  const auto here = std::filesystem::current_path();
  EXPECT_EQ(ParseChoice(u"a/../all.vcf").path, text::FromHostName((here / "all.vcf").native()));
  EXPECT_EQ(ParseChoice(u"/home/ann//all.vcf").path, u"/home/ann/all.vcf");
}

TEST(SourceChoice, APathOfTheDeviceStaysOne) {
  EXPECT_EQ(ParseChoice(u"\\contacts.vcf").path, u"\\contacts.vcf");
}

TEST(SourceChoice, IsRemembered) {
  headless::MemoryRegistry registry;
  std::optional<SourceChoice> choice = SourceChoice{u"/x"};
  ASSERT_TRUE(RecallChoice(registry, choice));
  EXPECT_EQ(choice, std::nullopt);
  for (const SourceChoice& each : {SourceChoice{u"/home/ann/all.vcf"}, SourceChoice{}}) {
    ASSERT_TRUE(RememberChoice(registry, each));
    ASSERT_TRUE(RecallChoice(registry, choice));
    EXPECT_EQ(choice, each);
  }
}

TEST(SourceChoice, RememberingTheSameAgainWritesNothing) {
  headless::MemoryRegistry registry;
  ASSERT_TRUE(RememberChoice(registry, {u"/all.vcf"}));
  support::FailingRegistry counting(registry);
  counting.FailCall(1000, support::Failing::kOnce);
  ASSERT_TRUE(RememberChoice(counting, {u"/all.vcf"}));
  EXPECT_EQ(counting.CountCalls(), 2U);
}

TEST(SourceChoice, AStoreThatCannotBeReadIsNoReasonToTakeAnotherBook) {
  headless::MemoryRegistry registry;
  ASSERT_TRUE(RememberChoice(registry, {u"/all.vcf"}));
  support::FailingRegistry failing(registry);
  std::optional<SourceChoice> choice;
  for (const std::size_t call : {1U, 2U}) {
    failing.FailCall(call, support::Failing::kOnce, platform::RegistryError::kBusy);
    EXPECT_FALSE(RecallChoice(failing, choice)) << call;
  }
  ASSERT_EQ(support::Put(registry, kKey, u"chosen", platform::RegistryType::kDword, {}),
            platform::RegistryError::kNone);
  EXPECT_FALSE(RecallChoice(registry, choice));
}

}  // namespace
}  // namespace vcard
