#include <gmock/gmock.h>

#include <set>

#include "tests/tags/each_fault.h"

namespace {

using namespace resources;
using support::Failing;
using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::u16string>;

class LearningFaults : public EachFault {
 protected:
  static void Learn(FaultyPage& page) {
    page.Dialog().Choose(kNumberComboId, 1);
    page.Dialog().Press(kRecordButtonId);
  }

  static bool IsRecorderCode(const std::u16string& text) {
    return text.size() == 1 && text[0] >= u'1' && text[0] <= u'5';
  }

  /// The process ends over folders and over the recorder alone.
  static void ExpectEnd(FaultyPage& page) {
    const Texts messages = page.Messages();
    ASSERT_FALSE(messages.empty());
    const std::u16string& first = messages.front();
    if (first.starts_with(u"File :")) {
      EXPECT_THAT(messages, ElementsAre(first, u"1"));
      EXPECT_TRUE(first.ends_with(u" couldn't be creat"));
    } else {
      EXPECT_EQ(messages.size(), 1U);
      EXPECT_TRUE(first.starts_with(u"Can't create \\Program Files") || IsRecorderCode(first) ||
                  first == u"There are no wave-record devices in you computer.");
    }
    EXPECT_EQ(page.Entries().size(), 2U);
    EXPECT_EQ(page.Items().size(), 2U);
    ExpectTableOfEntries(page);
  }

  /// Nothing came of it but files that are no tag.
  static void ExpectNoTag(FaultyPage& page) {
    EXPECT_THAT(page.Messages(), testing::AnyOf(ElementsAre(u"Can't process this file"),
                                                ElementsAre(u"Error in CreateFile")));
    EXPECT_EQ(page.Items().size(), 2U);
    ExpectTableOfEntries(page);
    EXPECT_EQ(page.Dialog().GetText(kCountLabelId), u"Learned commands: 2");
  }

  /// Stored and counted, but not to be seen before the page opens again.
  static void ExpectUnlistedTag(FaultyPage& page) {
    const std::set<std::u16string> known{
        u"Failed to get IContact in OnRecord", u"Failed to get first name",
        u"Failed to get middle name",          u"Failed to get last name",
        u"Failed to get CompanyName",          u"Failed to get mobile phone number"};
    ASSERT_EQ(page.Messages().size(), 1U);
    EXPECT_TRUE(known.contains(page.Messages().front()));
    EXPECT_EQ(page.Items().size(), 2U);
    EXPECT_EQ(page.Dialog().GetText(kCountLabelId), u"Learned commands: 2") << "Not refreshed.";
    ExpectTableOfEntries(page);
  }

  static void ExpectListedTag(FaultyPage& page) {
    EXPECT_THAT(page.Messages(), IsEmpty());
    ExpectTableOfEntries(page);
    ASSERT_EQ(page.Items().size(), 3U);
    EXPECT_EQ(page.Items().back(), u"Ann Lee 5551234 M");
    EXPECT_EQ(page.Table().GetRecord(2)->GetDisplayText(), u"Ann Lee 5551234 M");
    EXPECT_EQ(page.Dialog().GetText(kCountLabelId), u"Learned commands: 3");
  }
};

TEST_P(LearningFaults, LeaveAWholeTagOrNone) {
  Run(Learn, [](FaultyPage& page) {
    const Texts entries = page.Entries();
    ASSERT_GE(entries.size(), 2U);
    page.ExpectWholeTag(entries[0], u"17", u"Home");
    page.ExpectWholeTag(entries[1], u"-5", u"Home");
    if (entries.size() > 2) {
      page.ExpectWholeTag(entries[2], u"17", u"Mobile");
    }
    if (page.HasEnded()) {
      ExpectEnd(page);
    } else if (entries.size() == 2) {
      ExpectNoTag(page);
    } else if (page.Items().size() == 2) {
      ExpectUnlistedTag(page);
    } else {
      ExpectListedTag(page);
    }
    EXPECT_TRUE(page.Dialog().IsEnabled(kRecordButtonId));
    EXPECT_TRUE(page.Dialog().IsEnabled(kTestButtonId));
    EXPECT_TRUE(page.Dialog().IsEnabled(kDeleteAllButtonId));
    EXPECT_FALSE(page.Dialog().IsEnabled(kPlayButtonId));
    EXPECT_FALSE(page.Dialog().IsEnabled(kDeleteButtonId));
    ExpectThatATagCanBeLearned(page);
  });
}

INSTANTIATE_TEST_SUITE_P(Each, LearningFaults,
                         testing::Combine(testing::Values(FaultyPart::kFiles, FaultyPart::kRegistry,
                                                          FaultyPart::kWaveIn, FaultyPart::kWaveOut,
                                                          FaultyPart::kContacts,
                                                          FaultyPart::kThreads),
                                          testing::Values(Failing::kOnce, Failing::kFromThenOn)),
                         NameOfFault);

}  // namespace
