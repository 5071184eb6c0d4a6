#pragma once

#include <QLockFile>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "backends/posix/doorbell.h"
#include "backends/qt/application.h"

namespace home {

/// Sees to it that there is one window for each root folder. A second program rings at the first
/// one, which shows its window, and ends.
class OnlyWindow {
 public:
  /// `runtimeFolder` is $XDG_RUNTIME_DIR.
  OnlyWindow(const std::string& runtimeFolder, const std::string& root);

  /// Returns whether this program may show its window. If it may not, the other one has got the
  /// message. If nobody can say, it may.
  [[nodiscard]] bool Claim(const std::string& message);

  /// From now on calls `answer` on the event loop with the message of each program that came later.
  /// Needs the application object.
  void OnCall(std::function<void(const std::string& message)> answer);

 private:
  const std::string m_path;
  QLockFile m_lock;
  posix::Doorbell m_bell;
  std::function<void(const std::string& message)> m_answer;
  std::optional<qt::DescriptorWatch> m_watch;
};

}  // namespace home
