#include "tests/e2e/sound_session.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <system_error>

namespace e2e {
namespace {

constexpr const char* kRuntimeFolder = "run";

void SetEnvironment(const std::string& name, const std::optional<std::string>& value) {
  if (value) {
    setenv(name.c_str(), value->c_str(), 1);
  } else {
    unsetenv(name.c_str());
  }
}

std::filesystem::path MakeFolder() {
  // Short, since the server's socket has to fit the 108 characters of a socket address.
  std::string name = (std::filesystem::temp_directory_path() / "voxtrel-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) return {};
  return name;
}

}  // namespace

SoundSession::SoundSession() : m_folder(MakeFolder()) {
  if (m_folder.empty()) {
    ADD_FAILURE() << "There is no folder for the session.";
    return;
  }
  for (const char* const name : {kRuntimeFolder, "home"}) {
    std::filesystem::create_directory(m_folder / name);
    std::filesystem::permissions(m_folder / name, std::filesystem::perms::owner_all);
  }
  SetVariable("HOME", m_folder / "home");
  SetVariable("XDG_CONFIG_HOME", m_folder / "home");
  SetVariable("XDG_RUNTIME_DIR", m_folder / kRuntimeFolder);
  // What would lead to another server or other settings than the session's own, or to services of
  // the desktop that the test happens to run on.
  for (const char* const name :
       {"PULSE_SERVER", "PULSE_SOURCE", "PULSE_COOKIE", "PULSE_CLIENTCONFIG", "PULSE_RUNTIME_PATH",
        "PULSE_STATE_PATH", "PULSE_LOG", "PULSE_LOG_SYSLOG", "DISPLAY",
        "DBUS_SESSION_BUS_ADDRESS"}) {
    SetVariable(name, std::nullopt);
  }
}

SoundSession::~SoundSession() {
  for (const auto& [name, value] : m_earlier) SetEnvironment(name, value);
  if (m_folder.empty()) return;
  std::error_code ignored;  // What cannot be removed is left to whoever clears temporary files.
  std::filesystem::remove_all(m_folder, ignored);
}

std::filesystem::path SoundSession::ServerSocket() const {
  return m_folder / kRuntimeFolder / "pulse" / "native";
}

void SoundSession::SetVariable(const std::string& name, const std::optional<std::string>& value) {
  const char* const earlier = getenv(name.c_str());
  m_earlier.try_emplace(name, earlier == nullptr ? std::nullopt : std::optional(earlier));
  SetEnvironment(name, value);
}

}  // namespace e2e
