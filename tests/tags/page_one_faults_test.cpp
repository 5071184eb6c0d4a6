#include <gmock/gmock.h>

#include <functional>
#include <optional>
#include <ostream>
#include <set>
#include <tuple>

#include "tests/tags/faulty_page.h"

// Each call that the page makes of the machine fails, once or for good, at every position while a
// tag is learned, one is deleted, or all are, and while the page opens. Whatever fails: the message
// says so, the store holds whole tags or what a deletion is known to leave, and the page goes on
// working.

namespace {

using namespace resources;
using support::Failing;
using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::u16string>;

constexpr const char16_t* kInUse = u"The tag is in use. Try to delete it later.";

using Fault = std::tuple<FaultyPart, Failing>;

/// The page after each fault in turn; the last one meets none, since what is done makes fewer
/// calls.
class EachFault : public testing::TestWithParam<Fault> {
 protected:
  /// Opens a page, lets a call fail, has `act` use the page, and `check` look at it.
  void Run(const std::function<void(FaultyPage&)>& act,
           const std::function<void(FaultyPage&)>& check) {
    const auto [part, failing] = GetParam();
    bool hasFailed = true;
    for (std::size_t call = 1; hasFailed; ++call) {
      SCOPED_TRACE(call);
      FaultyPage page;
      page.FailCall(part, call, failing);
      act(page);
      hasFailed = page.HasFailed(part);
      page.ExpectNothingHeld();
      check(page);
      if (!hasFailed) {
        EXPECT_FALSE(page.HasEnded());
        EXPECT_GT(call, 1U) << "No call was made at all.";
      }
      ASSERT_LT(call, 500U);
    }
  }
};

std::string NameOf(const testing::TestParamInfo<Fault>& info) {
  constexpr const char* kParts[] = {"Files",   "Registry", "WaveIn",
                                    "WaveOut", "Contacts", "Threads"};
  const auto [part, failing] = info.param;
  return std::string(kParts[static_cast<std::size_t>(part)]) +
         (failing == Failing::kOnce ? "Once" : "ForGood");
}

/// A new tag without any fault, on the page as it is or, where its process ended, on a new one.
void ExpectThatATagCanBeLearned(FaultyPage& page) {
  page.Mend();
  if (page.HasEnded()) {
    page.Reopen();
  }
  const auto entries = page.Entries().size();
  const auto items = page.Items().size();
  const auto count = page.Table().tagCount;
  page.Dialog().Choose(kContactComboId, 1);
  page.Dialog().Press(kRecordButtonId);
  EXPECT_THAT(page.Messages(), IsEmpty());
  ASSERT_EQ(page.Entries().size(), entries + 1);
  page.ExpectWholeTag(page.Entries().back(), u"-5", u"Home");
  EXPECT_EQ(page.Items().size(), items + 1);
  EXPECT_EQ(page.Items().back(), u"Bob Ray 5550001 H");
  EXPECT_EQ(page.Table().tagCount, count + 1);
  EXPECT_EQ(page.PlayCode(), 0);
  EXPECT_TRUE(page.Dialog().IsEnabled(kDeleteAllButtonId));
  page.ExpectNothingHeld();
}

/// That the entries are those of the table, in its order.
void ExpectTableOfEntries(FaultyPage& page) {
  const Texts entries = page.Entries();
  ASSERT_EQ(page.Table().tagCount, static_cast<std::int32_t>(entries.size()));
  for (std::int32_t i = 0; i < page.Table().tagCount; ++i) {
    EXPECT_EQ(page.Table().GetRecord(i)->GetTagName(), entries[static_cast<std::size_t>(i)]);
  }
}

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
                         NameOf);

class DeletionFaults : public EachFault {
 protected:
  static void Delete(FaultyPage& page) {
    page.Dialog().Choose(kTagListId, 0);
    page.Dialog().Press(kDeleteButtonId);
  }

  static void ExpectDeleted(FaultyPage& page, const Texts& before) {
    EXPECT_THAT(page.Messages(), ElementsAre(u"The tag will be deleted!"));
    EXPECT_EQ(page.Entries(), Texts{before[1]});
    EXPECT_FALSE(page.HasWave(before[0]) || page.HasTemplate(before[0]));
    EXPECT_THAT(page.Items(), ElementsAre(u"Bob Ray 5550001 H"));
    ExpectTableOfEntries(page);
    EXPECT_FALSE(page.Dialog().IsEnabled(kPlayButtonId));
    EXPECT_FALSE(page.Dialog().IsEnabled(kDeleteButtonId));
    EXPECT_FALSE(page.Dialog().IsEnabled(kTestButtonId));
    EXPECT_EQ(page.Dialog().GetText(kCountLabelId), u"Learned commands: 1");
  }

  static void ExpectKept(FaultyPage& page, const Texts& before) {
    EXPECT_THAT(page.Messages(), ElementsAre(u"The tag will be deleted!", kInUse));
    EXPECT_EQ(page.Entries(), before);
    EXPECT_EQ(page.Items().size(), 2U);
    EXPECT_TRUE(page.Dialog().IsEnabled(kPlayButtonId));
    EXPECT_TRUE(page.Dialog().IsEnabled(kDeleteButtonId));
    EXPECT_EQ(page.Dialog().GetText(kCountLabelId), u"Learned commands: 2");
    if (page.HasWave(before[0])) {
      EXPECT_TRUE(page.HasTemplate(before[0])) << "The recording goes first.";
    }
    if (page.HasTemplate(before[0])) {
      ExpectTableOfEntries(page);
    } else {
      // Only the entry could not be deleted: the table has dropped the tag, its line stands.
      EXPECT_EQ(page.Table().tagCount, 1);
      EXPECT_EQ(page.Table().GetRecord(0)->GetTagName(), before[1]);
    }
  }
};

TEST_P(DeletionFaults, DeleteTheTagOrSayThatItIsInUse) {
  Texts before;
  Run(
      [&before](FaultyPage& page) {
        before = page.Entries();
        Delete(page);
      },
      [&before](FaultyPage& page) {
        if (page.Items().size() == 1) {
          ExpectDeleted(page, before);
        } else {
          ExpectKept(page, before);
        }
        page.ExpectWholeTag(before[1], u"-5", u"Home");
        EXPECT_TRUE(page.Dialog().IsEnabled(kDeleteAllButtonId));
        EXPECT_TRUE(page.Dialog().IsEnabled(kRecordButtonId));
        EXPECT_FALSE(page.HasEnded());
        ExpectThatATagCanBeLearned(page);
      });
}

INSTANTIATE_TEST_SUITE_P(Each, DeletionFaults,
                         testing::Combine(testing::Values(FaultyPart::kFiles,
                                                          FaultyPart::kRegistry),
                                          testing::Values(Failing::kOnce, Failing::kFromThenOn)),
                         NameOf);

class DeleteAllFaults : public EachFault {
 protected:
  static void DeleteAll(FaultyPage& page) {
    page.Dialog().Choose(kTagListId, 0);
    page.Dialog().Press(kDeleteAllButtonId);
  }

  static void ExpectEmpty(FaultyPage& page) {
    EXPECT_THAT(page.Entries(), IsEmpty());
    EXPECT_THAT(page.Items(), IsEmpty());
    EXPECT_EQ(page.Table().tagCount, 0);
    for (const int id : {kPlayButtonId, kDeleteButtonId, kDeleteAllButtonId, kTestButtonId}) {
      EXPECT_FALSE(page.Dialog().IsEnabled(id)) << id;
    }
    EXPECT_EQ(page.Dialog().GetText(kCountLabelId), u"Learned commands: 0");
  }

  static void ExpectUnchanged(FaultyPage& page, const Texts& before) {
    EXPECT_EQ(page.Messages().back(), kInUse);
    EXPECT_EQ(page.Entries(), before);
    EXPECT_EQ(page.Items().size(), 2U);
    ExpectTableOfEntries(page);
    for (const int id : {kPlayButtonId, kDeleteButtonId, kDeleteAllButtonId, kTestButtonId}) {
      EXPECT_TRUE(page.Dialog().IsEnabled(id)) << id;
    }
    EXPECT_EQ(page.Dialog().GetText(kCountLabelId), u"Learned commands: 2");
  }

  /// A file stays with a message about it, or where the search for its kind found nothing at all.
  static void ExpectToldLeftovers(FaultyPage& page, const Texts& before) {
    const Texts messages = page.Messages();
    ASSERT_FALSE(messages.empty());
    EXPECT_EQ(messages.front(), u"All voice tags will be deleted!");
    const auto count = [&before](const std::function<bool(const std::u16string&)>& isThere) {
      return std::ranges::count_if(before, isThere);
    };
    const auto waves = count([&page](const std::u16string& tag) { return page.HasWave(tag); });
    const auto templates =
        count([&page](const std::u16string& tag) { return page.HasTemplate(tag); });
    if (waves == 1 || templates == 1) {
      EXPECT_GT(messages.size(), 1U);
    }
    for (std::size_t i = 1; i < messages.size(); ++i) {
      EXPECT_TRUE(messages[i] == kInUse || messages[i] == u"ERROR");
    }
  }
};

TEST_P(DeleteAllFaults, EmptyTheStoreOrKeepTheList) {
  Texts before;
  Run(
      [&before](FaultyPage& page) {
        before = page.Entries();
        DeleteAll(page);
      },
      [&before](FaultyPage& page) {
        ExpectToldLeftovers(page, before);
        if (page.Items().empty()) {
          ExpectEmpty(page);
        } else {
          ExpectUnchanged(page, before);
        }
        EXPECT_FALSE(page.HasEnded());
        ExpectThatATagCanBeLearned(page);
        // Once more, and nothing of what the faults left is there any more.
        page.Dialog().Press(kDeleteAllButtonId);
        ExpectEmpty(page);
        for (const std::u16string& tag : before) {
          EXPECT_FALSE(page.HasWave(tag) || page.HasTemplate(tag));
        }
      });
}

INSTANTIATE_TEST_SUITE_P(Each, DeleteAllFaults,
                         testing::Combine(testing::Values(FaultyPart::kFiles,
                                                          FaultyPart::kRegistry),
                                          testing::Values(Failing::kOnce, Failing::kFromThenOn)),
                         NameOf);

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
                         NameOf);

}  // namespace
