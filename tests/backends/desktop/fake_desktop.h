#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "backends/desktop/environment.h"
#include "tests/support/temp_folder.h"

/// A desktop in a folder of its own: small programs that note how they were called, and desktop
/// files.
class FakeDesktop : public testing::Test {
 protected:
  FakeDesktop() {
    std::filesystem::create_directories(Path("bin"));
    std::filesystem::create_directories(Path("share/applications"));
    m_environment.programFolders = {Path("bin")};
    m_environment.dataFolders = {Path("share")};
  }

  [[nodiscard]] std::string Path(const std::string& name) const {
    return (m_folder.Path() / name).string();
  }

  void Write(const std::string& name, const std::string& content) const {
    const std::filesystem::path path = Path(name);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
  }

  /// A program that notes its arguments and then does `rest`.
  void PutProgram(const std::string& name, const std::string& rest = "") const {
    // Noted elsewhere and moved, so that whoever sees the note sees all of it.
    Write("bin/" + name,
          "#!/bin/sh\n{ for a in \"$0\" \"$@\"; do printf '%s\\n' \"$a\"; done; } >'" +
              Path(name + ".new") + "'\n/bin/mv '" + Path(name + ".new") + "' '" +
              Path(name + ".called") + "'\n" + rest + "\n");
    std::filesystem::permissions(Path("bin/" + name), std::filesystem::perms::owner_all);
  }

  /// A program that answers a question.
  void PutAnswer(const std::string& name, const std::string& answer) const {
    PutProgram(name, "printf '%s\\n' '" + answer + "'");
  }

  void PutEntry(const std::string& name, const std::string& lines) const {
    Write("share/applications/" + name, "[Desktop Entry]\nType=Application\n" + lines);
  }

  /// With what a program was called last, its own name left out; nothing where it was not.
  [[nodiscard]] std::vector<std::string> CallOf(const std::string& name) const {
    std::ifstream file(Path(name + ".called"));
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
      lines.push_back(line);
    }
    if (!lines.empty()) {
      lines.erase(lines.begin());
    }
    return lines;
  }
  [[nodiscard]] bool WasCalled(const std::string& name) const {
    return std::filesystem::exists(Path(name + ".called"));
  }

  support::TempFolder m_folder;
  xdg::Environment m_environment;
};
