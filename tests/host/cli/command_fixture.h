#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/host/cli/store.h"
#include "tests/support/run_program.h"
#include "tests/support/temp_folder.h"

/// The real program in a folder of its own, without a sound server.
class CommandFixture : public testing::Test {
 protected:
  [[nodiscard]] support::ProgramRun Run(const std::vector<std::string>& arguments) const {
    std::vector<std::string> all{VOXTREL_PROGRAM, "--root", Path("root")};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return support::RunProgram(all, Environment());
  }

  /// As Run with "--json". What is printed must be one JSON object. Returns it without the error
  /// that it must have if the command failed.
  [[nodiscard]] nlohmann::json RunJson(std::vector<std::string> arguments, int exitCode) const {
    arguments.emplace_back("--json");
    const auto run = Run(arguments);
    EXPECT_EQ(run.exitCode, exitCode) << run.err;
    EXPECT_EQ(run.err.empty(), exitCode == 0) << run.err;
    auto json = nlohmann::json::parse(run.out, nullptr, false);
    EXPECT_TRUE(json.is_object()) << run.out;
    EXPECT_EQ(json.contains("error"), exitCode != 0) << run.out;
    if (exitCode != 0) {
      ExpectError(run, json["error"]);
      json.erase("error");
    }
    return json;
  }

  /// Expects an error that says what the exit code and standard error say.
  static void ExpectError(const support::ProgramRun& run, const nlohmann::json& error) {
    ASSERT_EQ(error.value("code", 0), run.exitCode);
    const std::string message = error.value("message", "");
    EXPECT_FALSE(message.empty());
    EXPECT_THAT(run.err, testing::HasSubstr(message.substr(0, message.find('\n'))));
  }

  /// Expects that a command with "--json" failed and printed its error and nothing else.
  static void ExpectOnlyAnError(const support::ProgramRun& run) {
    const auto json = nlohmann::json::parse(run.out, nullptr, false);
    ASSERT_TRUE(json.is_object() && json.contains("error")) << run.out;
    EXPECT_EQ(json.size(), 1U) << run.out;
    ExpectError(run, json["error"]);
  }

  /// As Run, but no file may become longer than `blocks` of 512 bytes, as on a disk that is full.
  [[nodiscard]] support::ProgramRun RunOnFullDisk(int blocks,
                                                  const std::vector<std::string>& arguments) const {
    std::vector<std::string> all{"/bin/sh",
                                 "-c",
                                 "ulimit -f " + std::to_string(blocks) + "; exec \"$@\"",
                                 "sh",
                                 VOXTREL_PROGRAM,
                                 "--root",
                                 Path("root")};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return support::RunProgram(all, Environment());
  }

  /// What a run of the program finds in its environment. Looking for leaks at the end of the
  /// program takes as long as most commands, so only those tests do it that run every command.
  [[nodiscard]] std::vector<std::string> Environment() const {
    return {"PULSE_SERVER=unix:" + Path("no-server"), "LC_ALL=C.UTF-8",
            std::string("ASAN_OPTIONS=detect_leaks=") + (m_looksForLeaks ? "1" : "0")};
  }
  void LookForLeaks() { m_looksForLeaks = true; }

  /// The settings, as another program reaches them.
  [[nodiscard]] std::unique_ptr<platform::Registry> Registry() const {
    return OpenStore(Path("root"));
  }

  [[nodiscard]] std::string Path(const std::string& name) const {
    return (std::filesystem::path(m_folder.Path()) / name).make_preferred().string();
  }

  /// A copy of a sample that a test may trim.
  [[nodiscard]] std::string CopySample(const std::string& name) const {
    const std::string copy = Path(name);
    CopyOver(std::filesystem::path(VOXTREL_SAMPLES_DIR) / name, copy);
    return copy;
  }

  /// Copies a file over another one, which need not be there. The standard library of Windows takes
  /// any two files for one and does not.
  static void CopyOver(const std::filesystem::path& from, const std::filesystem::path& to) {
    std::filesystem::remove(to);
    std::filesystem::copy_file(from, to);
  }

 private:
  support::TempFolder m_folder;
  bool m_looksForLeaks = false;
};
