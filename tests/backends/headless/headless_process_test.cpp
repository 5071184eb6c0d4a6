#include "backends/headless/headless_system.h"

#include <gtest/gtest.h>

namespace {

TEST(HeadlessProcess, HasNotEndedAtFirst) {
  const headless::HeadlessProcess process;
  EXPECT_FALSE(process.GetExitCode().has_value());
}

TEST(HeadlessProcess, RemembersItsFirstEnd) {
  headless::HeadlessProcess process;
  process.End(0);
  process.End(5);
  EXPECT_EQ(process.GetExitCode(), 0);
}

}  // namespace
