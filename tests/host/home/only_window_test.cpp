#include "host/home/only_window.h"

#include <gtest/gtest.h>

#include <QTest>
#include <optional>
#include <vector>

#include "tests/support/temp_folder.h"

namespace {

using home::OnlyWindow;

class OnlyWindowTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::string Runtime() const { return m_runtime.Path().native(); }

  support::TempFolder m_runtime;
};

TEST_F(OnlyWindowTest, CallsTheFirstWindowIfASecondOneIsStarted) {
  OnlyWindow first(Runtime(), "/device/of/anna");
  ASSERT_TRUE(first.Claim("show "));
  std::vector<std::string> calls;
  first.OnCall([&calls](const std::string& message) { calls.push_back(message); });
  OnlyWindow second(Runtime(), "/device/of/anna");
  EXPECT_FALSE(second.Claim("teach token"));
  constexpr int kLongest = 60'000;
  ASSERT_TRUE(QTest::qWaitFor([&] { return !calls.empty(); }, kLongest));
  EXPECT_EQ(calls, std::vector<std::string>{"teach token"});
}

TEST_F(OnlyWindowTest, AllowsAWindowForEachRoot) {
  OnlyWindow first(Runtime(), "/device/of/anna");
  OnlyWindow other(Runtime(), "/device/of/bob");
  EXPECT_TRUE(first.Claim({}));
  EXPECT_TRUE(other.Claim({}));
}

TEST_F(OnlyWindowTest, AllowsTheNextWindowAfterTheFirstHasGone) {
  std::optional<OnlyWindow> first(std::in_place, Runtime(), "/device/of/anna");
  ASSERT_TRUE(first->Claim({}));
  first.reset();
  OnlyWindow next(Runtime(), "/device/of/anna");
  EXPECT_TRUE(next.Claim({}));
}

TEST_F(OnlyWindowTest, AllowsTheWindowIfNobodyCanSay) {
  OnlyWindow window({}, "/no/such/root");
  EXPECT_TRUE(window.Claim({}));
}

}  // namespace
