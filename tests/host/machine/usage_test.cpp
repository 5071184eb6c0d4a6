#include "host/machine/usage.h"

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace {

struct Explained {
  int exitCode = -1;
  std::string output;
  std::string errors;
};

Explained Explain(std::vector<std::string> arguments) {
  CLI::App app("What it does.", "program");
  app.set_version_flag("--version", "program 3");
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  Explained explained;
  try {
    app.parse(arguments);
  } catch (const CLI::ParseError& error) {
    explained.exitCode = machine::ExplainUsage(app, error);
  }
  explained.output = testing::internal::GetCapturedStdout();
  explained.errors = testing::internal::GetCapturedStderr();
  return explained;
}

TEST(ExplainUsage, HelpAndVersionGoToStandardOutputAndAreNoFailure) {
  EXPECT_EQ(Explain({"--version"}).output, "program 3\n");
  const Explained help = Explain({"--help"});
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_TRUE(help.output.starts_with("What it does.")) << help.output;
  EXPECT_EQ(help.errors, "");
}

TEST(ExplainUsage, AnArgumentThatIsQuotedGivesTheTerminalNoCommand) {
  const Explained wrong = Explain({"--\x1b[2Jx"});
  EXPECT_EQ(wrong.exitCode, 2);
  EXPECT_EQ(wrong.output, "");
  EXPECT_NE(wrong.errors.find("-- [2Jx"), std::string::npos) << wrong.errors;
  EXPECT_EQ(wrong.errors.find('\x1b'), std::string::npos);
}

}  // namespace
