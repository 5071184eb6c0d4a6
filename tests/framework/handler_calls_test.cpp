#include "framework/handler_calls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Notes the commands that it gets, and does with each what a test wants.
class NotingHandler final : public platform::DialogHandler {
 public:
  void Attach(platform::DialogWindow& /*window*/) override {}
  void Detach() override {}
  bool OnInitDialog() override { return true; }
  void OnCommand(int id, platform::CommandEvent event) override {
    EXPECT_EQ(event, platform::CommandEvent::kPosted);
    commands.push_back(id);
    if (act) {
      act(id);
    }
  }
  void OnPaint(platform::Canvas& /*canvas*/) override {}
  void OnLButtonDown(platform::Point /*point*/) override {}
  bool OnHelp() override { return false; }
  void OnOK() override {}
  void OnCancel() override {}

  std::vector<int> commands;
  std::function<void(int id)> act;
};

class HandlerCalls : public testing::Test {
 protected:
  NotingHandler m_handler;
  int m_wakes = 0;
  framework::HandlerCalls m_calls{m_handler, [this] { ++m_wakes; }};
};

TEST_F(HandlerCalls, WakeForACommandThatIsPostedWhileNothingGoesOn) {
  m_calls.Post(7);
  EXPECT_EQ(m_wakes, 1);
  EXPECT_THAT(m_handler.commands, IsEmpty());
  m_calls.Deliver();
  EXPECT_THAT(m_handler.commands, ElementsAre(7));
}

TEST_F(HandlerCalls, WakeForNothingThatWasNotPosted) {
  m_calls.Make([] {});
  EXPECT_EQ(m_wakes, 0);
}

TEST_F(HandlerCalls, KeepPostedCommandsUntilTheOutermostCallHasReturned) {
  m_calls.Make([this] {
    m_calls.Make([this] { m_calls.Post(1); });
    EXPECT_TRUE(m_calls.IsActive());
    EXPECT_EQ(m_wakes, 0);
    // A loop of the handler's own may come to an earlier wake.
    m_calls.Deliver();
    EXPECT_THAT(m_handler.commands, IsEmpty());
  });
  EXPECT_FALSE(m_calls.IsActive());
  EXPECT_EQ(m_wakes, 1);
  m_calls.Deliver();
  EXPECT_THAT(m_handler.commands, ElementsAre(1));
}

TEST_F(HandlerCalls, AreActiveWhileACommandIsDelivered) {
  m_handler.act = [this](int) { EXPECT_TRUE(m_calls.IsActive()); };
  m_calls.Post(1);
  m_calls.Deliver();
  EXPECT_FALSE(m_calls.IsActive());
}

TEST_F(HandlerCalls, DeliverInOrderWhatACommandPosts) {
  m_handler.act = [this](int id) {
    if (id == 1) {
      m_calls.Post(3);
    }
  };
  m_calls.Post(1);
  m_calls.Post(2);
  m_calls.Deliver();
  EXPECT_THAT(m_handler.commands, ElementsAre(1, 2, 3));
}

TEST_F(HandlerCalls, DeliverNothingAfterTheEndOfTheDialog) {
  m_handler.act = [this](int) { EXPECT_TRUE(m_calls.End(5)); };
  m_calls.Post(1);
  m_calls.Post(2);
  m_calls.Deliver();
  m_calls.Deliver();
  EXPECT_THAT(m_handler.commands, ElementsAre(1));
}

TEST_F(HandlerCalls, TakeTheFirstResultOnly) {
  EXPECT_FALSE(m_calls.GetResult());
  EXPECT_TRUE(m_calls.End(1));
  EXPECT_FALSE(m_calls.End(2));
  EXPECT_EQ(m_calls.GetResult(), 1);
}

}  // namespace
