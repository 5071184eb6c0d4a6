#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/run_program.h"
#include "tests/support/temp_folder.h"

/// The real program in a folder of its own, without a sound server.
class CommandFixture : public testing::Test {
 protected:
  [[nodiscard]] support::ProgramRun Run(const std::vector<std::string>& arguments) const {
    std::vector<std::string> all{VOXTREL_PROGRAM, "--root", Path("root")};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return support::RunProgram(all, {"PULSE_SERVER=unix:" + Path("no-server"), "LC_ALL=C.UTF-8"});
  }

  /// As Run with "--json"; what is printed must be one JSON object.
  [[nodiscard]] nlohmann::json RunJson(std::vector<std::string> arguments, int exitCode) const {
    arguments.emplace_back("--json");
    const auto run = Run(arguments);
    EXPECT_EQ(run.exitCode, exitCode) << run.err;
    EXPECT_EQ(run.err.empty(), exitCode == 0) << run.err;
    auto json = nlohmann::json::parse(run.out, nullptr, false);
    EXPECT_TRUE(json.is_object()) << run.out;
    return json;
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
    return support::RunProgram(all, {"PULSE_SERVER=unix:" + Path("no-server"), "LC_ALL=C.UTF-8"});
  }

  [[nodiscard]] std::string Path(const std::string& name) const {
    return (std::filesystem::path(m_folder.Path()) / name).string();
  }

  /// A copy of a sample that a test may trim.
  [[nodiscard]] std::string CopySample(const std::string& name) const {
    const std::string copy = Path(name);
    std::filesystem::copy_file(std::filesystem::path(VOXTREL_SAMPLES_DIR) / name, copy,
                               std::filesystem::copy_options::overwrite_existing);
    return copy;
  }

 private:
  support::TempFolder m_folder;
};
