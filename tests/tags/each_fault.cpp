#include "tests/tags/each_fault.h"

using namespace resources;

void EachFault::Run(const std::function<void(FaultyPage&)>& act,
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

void EachFault::ExpectThatATagCanBeLearned(FaultyPage& page) {
  page.Mend();
  if (page.HasEnded()) {
    page.Reopen();
  }
  const auto entries = page.Entries().size();
  const auto items = page.Items().size();
  const auto count = page.Table().tagCount;
  page.Dialog().Choose(kContactComboId, 1);
  page.Dialog().Press(kRecordButtonId);
  EXPECT_TRUE(page.Messages().empty());
  ASSERT_EQ(page.Entries().size(), entries + 1);
  page.ExpectWholeTag(page.Entries().back(), u"-5", u"Home");
  EXPECT_EQ(page.Items().size(), items + 1);
  EXPECT_EQ(page.Items().back(), u"Bob Ray 5550001 H");
  EXPECT_EQ(page.Table().tagCount, count + 1);
  EXPECT_EQ(page.PlayCode(), 0);
  EXPECT_TRUE(page.Dialog().IsEnabled(kDeleteAllButtonId));
  page.ExpectNothingHeld();
}

void EachFault::ExpectTableOfEntries(FaultyPage& page) {
  const std::vector<std::u16string> entries = page.Entries();
  ASSERT_EQ(page.Table().tagCount, static_cast<std::int32_t>(entries.size()));
  for (std::int32_t i = 0; i < page.Table().tagCount; ++i) {
    EXPECT_EQ(page.Table().GetRecord(i)->GetTagName(), entries[static_cast<std::size_t>(i)]);
  }
}

std::string NameOfFault(const testing::TestParamInfo<Fault>& info) {
  const auto [part, failing] = info.param;
  return testing::PrintToString(part) + (failing == support::Failing::kOnce ? "Once" : "ForGood");
}
