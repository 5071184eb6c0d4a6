#include <gmock/gmock.h>

#include <algorithm>

#include "resources/fault_strings.h"
#include "tests/tags/each_fault.h"

namespace {

using namespace resources;
using support::Failing;
using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::u16string>;

constexpr const char16_t* kInUse = u"The tag is in use. Try to delete it later.";

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
    EXPECT_THAT(page.Messages(), ElementsAre(u"The tag will be deleted!", AnyOf(kInUse, kNotKept)));
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
                         NameOfFault);

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
    EXPECT_THAT(page.Messages().back(), AnyOf(kInUse, kNotKept, u"ERROR"));
    EXPECT_EQ(page.Entries(), before);
    EXPECT_EQ(page.Items().size(), 2U);
    ExpectTableOfEntries(page);
    for (const int id : {kPlayButtonId, kDeleteButtonId, kDeleteAllButtonId, kTestButtonId}) {
      EXPECT_TRUE(page.Dialog().IsEnabled(id)) << id;
    }
    EXPECT_EQ(page.Dialog().GetText(kCountLabelId), u"Learned commands: 2");
  }

  /// A file stays with a message about it, or if the search for its kind found nothing at all.
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
      EXPECT_THAT(messages[i], AnyOf(kInUse, kNotKept, u"ERROR"));
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
                         NameOfFault);

}  // namespace
