#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "tests/support/temp_folder.h"

namespace e2e {

/// A user's session of this test alone: an empty folder for what programs keep below the home and
/// the run-time folder, and an environment that leads sound libraries there and nowhere else. Puts
/// the earlier environment back. Made and destroyed while the process has one thread.
class SoundSession {
 public:
  SoundSession();
  SoundSession(const SoundSession&) = delete;
  SoundSession& operator=(const SoundSession&) = delete;
  ~SoundSession();

  [[nodiscard]] const std::filesystem::path& Folder() const { return m_folder.Path(); }

  /// Where the sound server of the session listens, once there is one.
  [[nodiscard]] std::filesystem::path ServerSocket() const;

  /// Sets a variable, or removes it, for as long as the session lasts.
  void SetVariable(const std::string& name, const std::optional<std::string>& value);

 private:
  support::TempFolder m_folder;
  std::map<std::string, std::optional<std::string>> m_earlier;
};

}  // namespace e2e
