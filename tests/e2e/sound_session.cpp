#include "tests/e2e/sound_session.h"

#include <stdlib.h>

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

}  // namespace

SoundSession::SoundSession() {
  for (const char* const name : {kRuntimeFolder, "home"}) {
    std::filesystem::create_directory(Folder() / name);
    std::filesystem::permissions(Folder() / name, std::filesystem::perms::owner_all);
  }
  SetVariable("HOME", Folder() / "home");
  SetVariable("XDG_CONFIG_HOME", Folder() / "home");
  SetVariable("XDG_RUNTIME_DIR", Folder() / kRuntimeFolder);
  // What would lead to another server or other settings than the session's own, or to services of
  // the desktop that the test happens to run on.
  for (const char* const name :
       {"PULSE_SERVER", "PULSE_SOURCE", "PULSE_COOKIE", "PULSE_CLIENTCONFIG", "PULSE_RUNTIME_PATH",
        "PULSE_STATE_PATH", "PULSE_LOG", "PULSE_LOG_SYSLOG", "DISPLAY"}) {
    SetVariable(name, std::nullopt);
  }
  // If there is no address at all, windows try to start a bus of their own.
  SetVariable("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + (Folder() / "no-bus").string());
}

SoundSession::~SoundSession() {
  for (const auto& [name, value] : m_earlier) SetEnvironment(name, value);
}

std::filesystem::path SoundSession::ServerSocket() const {
  return Folder() / kRuntimeFolder / "pulse" / "native";
}

void SoundSession::SetVariable(const std::string& name, const std::optional<std::string>& value) {
  const char* const earlier = getenv(name.c_str());
  m_earlier.try_emplace(name, earlier == nullptr ? std::nullopt : std::optional(earlier));
  SetEnvironment(name, value);
}

}  // namespace e2e
