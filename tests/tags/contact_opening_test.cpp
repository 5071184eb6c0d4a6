#include "tags/contact_reading.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/machine/simulated_contacts.h"
#include "tests/support/results.h"
#include "tests/support/watched_clock.h"

namespace tags {
namespace {

using machine::SimulatedContacts;
using Opening = SimulatedContacts::Opening;

class ContactOpening : public testing::Test {
 protected:
  /// The message if that fails.
  std::optional<ContactMessage> Open() { return support::ErrorOf(OpenContacts(m_store, m_clock)); }

  SimulatedContacts m_store;
  support::WatchedClock m_clock;
};

TEST_F(ContactOpening, LogsOnWithoutAPauseIfAllWorks) {
  EXPECT_EQ(Open(), std::nullopt);
  EXPECT_TRUE(m_store.IsLoggedOn());
  EXPECT_TRUE(m_clock.GetSleeps().empty());
}

TEST_F(ContactOpening, EndsAtOnceWithoutTheService) {
  m_store.FailOpening(Opening::kInitialize);
  EXPECT_EQ(Open(), ContactMessage{ContactFailure::kServiceNotReady});
  EXPECT_EQ(m_store.CountCalls(Opening::kConnect), 0);
}

TEST_F(ContactOpening, TriesASecondTimeAfter200Milliseconds) {
  m_store.FailOpening(Opening::kConnect, 1);
  EXPECT_EQ(Open(), std::nullopt);
  EXPECT_EQ(m_clock.GetSleeps(), std::vector<std::uint32_t>({200}));
}

TEST_F(ContactOpening, TriesAThirdTimeAfterAnother200Milliseconds) {
  m_store.FailOpening(Opening::kConnect, 2);
  EXPECT_EQ(Open(), std::nullopt);
  EXPECT_EQ(m_clock.GetSleeps(), std::vector<std::uint32_t>({200, 200}));
}

TEST_F(ContactOpening, GivesUpAfterTheThirdAttempt) {
  m_store.FailOpening(Opening::kConnect);
  EXPECT_EQ(Open(), ContactMessage{ContactFailure::kNotConnected});
  EXPECT_EQ(m_store.CountCalls(Opening::kConnect), 3);
  EXPECT_EQ(m_clock.GetSleeps(), std::vector<std::uint32_t>({200, 200}));
  EXPECT_EQ(m_store.CountCalls(Opening::kLogon), 0);
}

TEST_F(ContactOpening, TriesTheLogonOnce) {
  m_store.FailOpening(Opening::kLogon);
  EXPECT_EQ(Open(), ContactMessage{ContactFailure::kNotLoggedOn});
  EXPECT_EQ(m_store.CountCalls(Opening::kLogon), 1);
}

}  // namespace
}  // namespace tags
