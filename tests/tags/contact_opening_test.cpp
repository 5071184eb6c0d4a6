#include "tags/contact_opening.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/machine/simulated_contacts.h"

namespace tags {
namespace {

using machine::SimulatedContacts;
using Opening = SimulatedContacts::Opening;

class RecordingClock final : public platform::Clock {
 public:
  std::uint32_t GetTickCount() override { return 0; }
  [[nodiscard]] std::int64_t GetUnixTime() override { return 0; }
  void Sleep(std::uint32_t milliseconds) override { pauses.push_back(milliseconds); }

  std::vector<std::uint32_t> pauses;
};

class ContactOpening : public testing::Test {
 protected:
  std::optional<ContactMessage> Open() { return OpenContacts(m_store, m_clock); }

  SimulatedContacts m_store;
  RecordingClock m_clock;
};

TEST_F(ContactOpening, LogsOnWithoutAPauseWhereAllWorks) {
  EXPECT_EQ(Open(), std::nullopt);
  EXPECT_TRUE(m_store.IsLoggedOn());
  EXPECT_TRUE(m_clock.pauses.empty());
}

TEST_F(ContactOpening, EndsAtOnceWithoutTheService) {
  m_store.FailOpening(Opening::kInitialize);
  EXPECT_EQ(Open(), ContactMessage{ContactFailure::kServiceNotReady});
  EXPECT_EQ(m_store.CountCalls(Opening::kConnect), 0);
}

TEST_F(ContactOpening, TriesASecondTimeAfter200Milliseconds) {
  m_store.FailOpening(Opening::kConnect, 1);
  EXPECT_EQ(Open(), std::nullopt);
  EXPECT_EQ(m_clock.pauses, std::vector<std::uint32_t>({200}));
}

TEST_F(ContactOpening, TriesAThirdTimeAfterAnother200Milliseconds) {
  m_store.FailOpening(Opening::kConnect, 2);
  EXPECT_EQ(Open(), std::nullopt);
  EXPECT_EQ(m_clock.pauses, std::vector<std::uint32_t>({200, 200}));
}

TEST_F(ContactOpening, GivesUpAfterTheThirdAttempt) {
  m_store.FailOpening(Opening::kConnect);
  EXPECT_EQ(Open(), ContactMessage{ContactFailure::kNotConnected});
  EXPECT_EQ(m_store.CountCalls(Opening::kConnect), 3);
  EXPECT_EQ(m_clock.pauses, std::vector<std::uint32_t>({200, 200}));
  EXPECT_EQ(m_store.CountCalls(Opening::kLogon), 0);
}

TEST_F(ContactOpening, TriesTheLogonOnce) {
  m_store.FailOpening(Opening::kLogon);
  EXPECT_EQ(Open(), ContactMessage{ContactFailure::kNotLoggedOn});
  EXPECT_EQ(m_store.CountCalls(Opening::kLogon), 1);
}

}  // namespace
}  // namespace tags
