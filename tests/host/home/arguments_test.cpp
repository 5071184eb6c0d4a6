#include "host/home/arguments.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <variant>
#include <vector>

namespace {

using home::Arguments;

std::variant<Arguments, int> Parse(std::vector<const char*> words) {
  words.insert(words.begin(), "voxtrel-home");
  return home::ParseArguments(machine::ReadOptions(), static_cast<int>(words.size()), words.data());
}

TEST(HomeArguments, AreThoseOfTheEnvironmentUnlessAnOptionSaysSomethingElse) {
  qputenv("VOXTREL_ROOT", "/of/the/environment");
  qputenv("VOXTREL_CONTACTS", "eds");
  const auto arguments = std::get<Arguments>(
      Parse({"--contacts", "my.vcf", "--microphone", "in.wav", "--speaker", "out.wav"}));
  qunsetenv("VOXTREL_ROOT");
  qunsetenv("VOXTREL_CONTACTS");
  EXPECT_EQ(arguments.machine.root, "/of/the/environment");
  EXPECT_EQ(arguments.machine.contacts, "my.vcf");
  EXPECT_EQ(arguments.machine.microphone, "in.wav");
  EXPECT_EQ(arguments.machine.speaker, "out.wav");
}

TEST(HomeArguments, ChooseAPageAndTheProbe) {
  EXPECT_FALSE(std::get<Arguments>(Parse({})).teaches);
  EXPECT_FALSE(std::get<Arguments>(Parse({})).dials);
  EXPECT_TRUE(std::get<Arguments>(Parse({"--dial"})).dials);
  EXPECT_TRUE(std::get<Arguments>(Parse({"--teach"})).teaches);
  EXPECT_TRUE(std::get<Arguments>(Parse({"--probe"})).isProbe);
}

TEST(HomeArguments, EndWithTheCodeOfWrongUsageIfTheyAreUnknown) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(std::get<int>(Parse({"--nonsense\x1b"})), 2);
  EXPECT_EQ(testing::internal::GetCapturedStderr().find('\x1b'), std::string::npos);
}

TEST(HomeArguments, HaveHelpAndAVersion) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(std::get<int>(Parse({"--help"})), 0);
  EXPECT_NE(testing::internal::GetCapturedStdout().find("--teach"), std::string::npos);
  testing::internal::CaptureStdout();
  EXPECT_EQ(std::get<int>(Parse({"--version"})), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "voxtrel-home " VOXTREL_VERSION "\n");
}

}  // namespace
