#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/host/cli/tags_fixture.h"

/// Tags as the applet leaves them, of which some are spoiled.
class MaintenanceFixture : public TagsFixture {
 protected:
  /// Every recording and every template.
  [[nodiscard]] std::map<std::string, std::string> GetFiles() const {
    std::map<std::string, std::string> files;
    for (const std::string folder : {"Voxtrel_wav", "Voxtrel_stor"}) {
      for (const std::string& name : support::NamesIn(Folder(folder))) {
        files[name] = Content(Folder(folder) / name);
      }
    }
    return files;
  }
  /// Every file as a reinitialization leaves it: trimmed once more, and the template of all of it.
  [[nodiscard]] std::map<std::string, std::string> GetExpected() const {
    std::map<std::string, std::string> files;
    for (const std::string tag : {"100", "200", "300"}) {
      const std::string wave = Path("expected.wav");
      CopyOver(Wave(tag), wave);
      EXPECT_EQ(Run({"template", "learn", wave, Path("first.st")}).exitCode, 0);
      std::filesystem::remove(Path("second.st"));
      EXPECT_EQ(Run({"template", "process", wave, Path("second.st")}).exitCode, 0);
      files[tag + ".wav"] = Content(wave);
      files[tag + ".st"] = Content(Path("second.st"));
    }
    return files;
  }
  /// The findings as "word tag", with "!" if repaired.
  [[nodiscard]] std::vector<std::string> Check(std::vector<std::string> options,
                                               int exitCode) const {
    options.insert(options.begin(), "check");
    std::vector<std::string> findings;
    const nlohmann::json result = RunJson(options, exitCode);
    for (const nlohmann::json& finding : result["findings"]) {
      findings.push_back(finding["problem"].get<std::string>() + " " +
                         finding["tag"].get<std::string>() +
                         (finding["repaired"].get<bool>() ? "!" : ""));
    }
    return findings;
  }
};
