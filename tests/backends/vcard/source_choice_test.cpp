#include "backends/vcard/contact_source.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "backends/text/host_path.h"
#include "tests/machine/memory_registry.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/watched_registry.h"

namespace vcard {
namespace {

using platform::RegistryError;
using Recalled = platform::Result<std::optional<SourceChoice>, RegistryError>;

constexpr std::u16string_view kChoiceKey = u"Software\\Zedra\\Voxtrel Contacts";

TEST(SourceChoice, TheDesktopsAddressBooksAreCalledEds) {
  EXPECT_EQ(ParseChoice(u"eds"), SourceChoice{});
  EXPECT_NE(ParseChoice(u"./eds"), SourceChoice{});
}

TEST(SourceChoice, APathMeansTheSameFromEverywhere) {
  const auto here = std::filesystem::current_path();
  EXPECT_EQ(ParseChoice(u"a/../all.vcf").path, text::ToFileName(here / "all.vcf"));
  EXPECT_EQ(ParseChoice(u"/home/ann//all.vcf").path,
            text::ToFileName(std::filesystem::absolute("/home/ann/all.vcf")))
      << "On Windows it is on the current drive.";
}

TEST(SourceChoice, APathOfTheDeviceStaysOne) {
  EXPECT_EQ(ParseChoice(u"\\contacts.vcf").path, u"\\contacts.vcf");
}

TEST(SourceChoice, IsRemembered) {
  machine::MemoryRegistry registry;
  std::vector<Remark> remarks;
  EXPECT_EQ(RecallChoice(registry, remarks), Recalled(std::nullopt));
  for (const SourceChoice& each : {SourceChoice{u"/home/ann/all.vcf"}, SourceChoice{}}) {
    ASSERT_EQ(support::ErrorOf(RememberChoice(registry, each)), std::nullopt);
    EXPECT_EQ(RecallChoice(registry, remarks), Recalled(each));
  }
  EXPECT_TRUE(remarks.empty());
}

TEST(SourceChoice, RememberingTheSameAgainWritesNothing) {
  machine::MemoryRegistry registry;
  ASSERT_EQ(support::ErrorOf(RememberChoice(registry, {u"/all.vcf"})), std::nullopt);
  support::WatchedRegistry counting(registry);
  counting.FailCall(1000, support::Failing::kOnce);
  ASSERT_EQ(support::ErrorOf(RememberChoice(counting, {u"/all.vcf"})), std::nullopt);
  EXPECT_EQ(counting.CountCalls(), 2U);
}

TEST(SourceChoice, AStoreThatCannotBeReadIsNoReasonToTakeAnotherBook) {
  machine::MemoryRegistry registry;
  ASSERT_EQ(support::ErrorOf(RememberChoice(registry, {u"/all.vcf"})), std::nullopt);
  support::WatchedRegistry failing(registry);
  std::vector<Remark> remarks;
  for (const std::size_t call : {1U, 2U}) {
    failing.FailCall(call, support::Failing::kOnce, RegistryError::kBusy);
    EXPECT_EQ(support::ErrorOf(RecallChoice(failing, remarks)), RegistryError::kBusy) << call;
  }
}

TEST(SourceChoice, AValueThatIsNoChoiceIsPassedOverAndNamed) {
  machine::MemoryRegistry registry;
  ASSERT_EQ(support::ErrorOf(
                support::Put(registry, kChoiceKey, u"chosen", platform::RegistryType::kDword, {})),
            std::nullopt);
  std::vector<Remark> remarks;
  EXPECT_EQ(RecallChoice(registry, remarks), Recalled(std::nullopt));
  ASSERT_EQ(remarks.size(), 1U);
  EXPECT_EQ(remarks[0].place, kChoiceKey);
  EXPECT_EQ(remarks[0].text, "the value \"chosen\" names no address book and is passed over");
  ASSERT_EQ(support::ErrorOf(RememberChoice(registry, {u"/all.vcf"})), std::nullopt);
  EXPECT_EQ(RecallChoice(registry, remarks), Recalled(SourceChoice{u"/all.vcf"}));
}

}  // namespace
}  // namespace vcard
