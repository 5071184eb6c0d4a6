#include "dialer/recent_calls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "dialer/ways.h"
#include "tests/machine/memory_registry.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"

namespace {

using dialer::RecentCall;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class RecentCalls : public testing::Test {
 protected:
  void Put(std::u16string_view text) {
    ASSERT_EQ(support::ErrorOf(
                  support::PutText(m_registry, dialer::kCallsKey, dialer::kRecentValue, text)),
              std::nullopt);
  }
  machine::MemoryRegistry m_registry;
};

TEST_F(RecentCalls, ThereAreNoneAtFirst) {
  EXPECT_THAT(dialer::ReadRecentCalls(m_registry), IsEmpty());
}

TEST_F(RecentCalls, TheLatestComesFirst) {
  const RecentCall first{1'795'299'005, -17, u"Mobile"};
  const RecentCall second{1'795'299'999, 2'147'483'647, u"HomeFax"};
  ASSERT_TRUE(dialer::NoteCall(m_registry, first));
  ASSERT_TRUE(dialer::NoteCall(m_registry, second));
  EXPECT_THAT(dialer::ReadRecentCalls(m_registry), ElementsAre(second, first));
}

TEST_F(RecentCalls, TheOldestGoesIfThereAreTooMany) {
  for (std::int32_t i = 0; i < 12; ++i) {
    ASSERT_TRUE(dialer::NoteCall(m_registry, {i, i, u"Home"}));
  }
  const auto calls = dialer::ReadRecentCalls(m_registry);
  ASSERT_THAT(calls, SizeIs(dialer::kMostRecentCalls));
  EXPECT_EQ(calls.front().oid, 11);
  EXPECT_EQ(calls.back().oid, 2);
}

TEST_F(RecentCalls, WhatIsNoCallEndsTheList) {
  for (const std::u16string_view wrong : {u"x 2 Home\n", u"1 2\n", u"1 2 Nowhere\n",
                                          u"1 99999999999 Home\n", u" \n", u"1  2 Home\n"}) {
    Put(u"7 8 Car\n" + std::u16string(wrong) + u"1 2 Home\n");
    EXPECT_THAT(dialer::ReadRecentCalls(m_registry), ElementsAre(RecentCall{7, 8, u"Car"}));
  }
}

TEST_F(RecentCalls, TheWayOfCallingStays) {
  ASSERT_TRUE(dialer::ChooseWay(m_registry, dialer::Way::kSerial));
  ASSERT_TRUE(dialer::NoteCall(m_registry, {1, 2, u"Home"}));
  EXPECT_EQ(dialer::ReadWay(m_registry), dialer::Way::kSerial);
}

}  // namespace
