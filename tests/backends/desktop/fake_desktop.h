#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "backends/desktop/programs.h"
#include "tests/support/temp_folder.h"

/// A desktop in a folder of its own: small programs that note how they were called, and desktop
/// files.
class FakeDesktop : public testing::Test {
 protected:
  FakeDesktop() {
    std::filesystem::create_directories(Path("bin"));
    std::filesystem::create_directories(Path("share/applications"));
    std::filesystem::create_directories(Path("config"));
    m_environment.programFolders = {Path("bin")};
    m_environment.dataFolders = {Path("share")};
    m_variables = {{"HOME", Path("")},
                   {"PATH", Path("bin")},
                   {"XDG_CONFIG_HOME", Path("config")},
                   {"XDG_CONFIG_DIRS", Path("none")},
                   {"XDG_DATA_HOME", Path("mine")},
                   {"XDG_DATA_DIRS", Path("share")}};
  }

  [[nodiscard]] std::string Path(const std::string& name) const {
    return (m_folder.Path() / name).string();
  }

  void Write(const std::string& name, const std::string& content) const {
    const std::filesystem::path path = Path(name);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
  }

  /// Puts a program there that notes its arguments and then does `rest`.
  void PutProgram(const std::string& name, const std::string& rest = "") const {
    // Noted elsewhere and moved, so that the note is complete once it is there.
    Write("bin/" + name,
          "#!/bin/sh\n{ for a in \"$0\" \"$@\"; do printf '%s\\n' \"$a\"; done; } >'" +
              Path(name + ".new") + "'\n/bin/mv '" + Path(name + ".new") + "' '" +
              Path(name + ".called") + "'\n" + rest + "\n");
    std::filesystem::permissions(Path("bin/" + name), std::filesystem::perms::owner_all);
  }

  void PutEntry(const std::string& name, const std::string& lines) const {
    Write("share/applications/" + name, Entry(lines));
  }
  [[nodiscard]] static std::string Entry(const std::string& lines) {
    return "[Desktop Entry]\nType=Application\nName=Some program\n" + lines;
  }

  /// The user's choice of a desktop file for sites, or for another type.
  void Choose(const std::string& entry, const std::string& type = "x-scheme-handler/https") const {
    Write("config/mimeapps.list", "[Default Applications]\n" + type + "=" + entry + "\n");
  }

  void PutDefaultBrowser() const {
    Choose("fox.desktop");
    PutEntry("fox.desktop", "Exec=fox --new %u\n");
    PutProgram("fox");
  }

  /// Does something in a child process whose environment is this desktop's, since GIO reads the
  /// environment once in the life of a process. Returns whether it ended well and `use` returned
  /// true. Is called while the test has one thread.
  [[nodiscard]] bool InDesktop(const std::function<bool()>& use) const {
    const pid_t child = ::fork();
    if (child == 0) {
      ::clearenv();
      for (const auto& [name, value] : m_variables) {
        ::setenv(name.c_str(), value.c_str(), 1);
      }
      ::_exit(use() ? 0 : 1);
    }
    int status = -1;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }

  /// The arguments that a program was called with last. Empty if it was not called.
  [[nodiscard]] std::vector<std::string> CallOf(const std::string& name) const {
    std::vector<std::string> lines = LinesOf(name + ".called");
    if (!lines.empty()) {
      lines.erase(lines.begin());  // Its own name.
    }
    return lines;
  }
  [[nodiscard]] bool WasCalled(const std::string& name) const {
    return std::filesystem::exists(Path(name + ".called"));
  }
  [[nodiscard]] std::vector<std::string> LinesOf(const std::string& name) const {
    std::ifstream file(Path(name));
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
      lines.push_back(line);
    }
    return lines;
  }

  support::TempFolder m_folder;
  desktop::Environment m_environment;
  std::map<std::string, std::string> m_variables;
};
