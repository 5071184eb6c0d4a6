
#include "tests/tags/each_fault.h"

namespace {

using namespace resources;
using support::Failing;
using Texts = std::vector<std::u16string>;

class OpeningFaults : public EachFault {
 protected:
  static constexpr const char16_t* kStale = u"300";

  /// Opens the page on a store with a third tag, whose contact is gone.
  static void OpenWithStaleTag(FaultyPage& page) {
    page.AddStaleTag(kStale);
    page.Reopen();
  }

  /// The recording of a stale tag goes first, its template next, its entry last.
  static void ExpectStaleTagInOrder(FaultyPage& page, bool hasEntry) {
    if (page.HasWave(kStale)) {
      EXPECT_TRUE(page.HasTemplate(kStale));
    }
    if (page.HasTemplate(kStale)) {
      EXPECT_TRUE(hasEntry);
    }
  }
};

TEST_P(OpeningFaults, LoseNoTagOfAContactThatIsThere) {
  Run(OpenWithStaleTag, [](FaultyPage& page) {
    const Texts entries = page.Entries();
    ASSERT_GE(entries.size(), 2U);
    page.ExpectWholeTag(entries[0], u"17", u"Home");
    page.ExpectWholeTag(entries[1], u"-5", u"Home");
    ExpectStaleTagInOrder(page, entries.size() == 3);
    EXPECT_LE(page.Messages().size(), 1U) << "The first failure is the last thing that happens.";
    EXPECT_FALSE(page.HasEnded());

    page.Mend();
    page.Reopen();
    EXPECT_FALSE(page.HasWave(kStale)) << "It goes with the next opening at the latest.";
    EXPECT_EQ(page.Items().front(), u"Ann Lee 1110000 H");
    EXPECT_EQ(page.Items().at(1), u"Bob Ray 5550001 H");
    ExpectThatATagCanBeLearned(page);
  });
}

INSTANTIATE_TEST_SUITE_P(Each, OpeningFaults,
                         testing::Combine(testing::Values(FaultyPart::kFiles, FaultyPart::kRegistry,
                                                          FaultyPart::kContacts,
                                                          FaultyPart::kThreads),
                                          testing::Values(Failing::kOnce, Failing::kFromThenOn)),
                         NameOfFault);

}  // namespace
