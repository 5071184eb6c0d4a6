#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <utility>
#include <vector>

/// A desktop of a test's own, with a made-up telephone program that notes what it gets.
class PhoneProgram {
 public:
  /// `folder` is made by Put.
  explicit PhoneProgram(std::filesystem::path folder) : m_folder(std::move(folder)) {}

  /// Puts the program onto the desktop. `rest` is what it does after it has noted the address.
  void Put(const std::string& rest = "") const {
    std::filesystem::create_directories(m_folder / "applications");
    const std::string program = (m_folder / "phone").string();
    const std::string called = (m_folder / "called").string();
    std::ofstream(program) << "#!/bin/sh\nprintf '%s\\n' \"$@\" >'" << called << ".new'\nmv '"
                           << called << ".new' '" << called << "'\n"
                           << rest << "\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    std::ofstream(m_folder / "applications" / "phone.desktop")
        << "[Desktop Entry]\nType=Application\nName=Phone\nExec=" << program << " %u\n";
    std::ofstream(m_folder / "mimeapps.list")
        << "[Default Applications]\nx-scheme-handler/tel=phone.desktop\n";
  }

  /// Returns all that the program was given, a line each. Empty before it was called.
  [[nodiscard]] std::string GetCalled() const {
    std::ifstream file(m_folder / "called");
    return {std::istreambuf_iterator<char>(file), {}};
  }

  /// Returns the same as soon as the program has been called. It runs by itself, and nobody waits
  /// for it.
  [[nodiscard]] std::string AwaitCalled() const {
    while (GetCalled().empty()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return GetCalled();
  }

  /// Returns the variables and their values by which programs find this desktop and no other.
  [[nodiscard]] std::vector<std::pair<std::string, std::string>> GetVariables() const {
    std::vector<std::pair<std::string, std::string>> variables;
    for (const char* name :
         {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_DIRS"}) {
      variables.emplace_back(name, m_folder.string());
    }
    return variables;
  }

 private:
  const std::filesystem::path m_folder;
};
