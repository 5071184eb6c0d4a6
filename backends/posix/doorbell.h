#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "backends/posix/system_calls.h"

namespace posix {

/// By which one process asks another one on this machine for its attention. It is a socket of this
/// user with a name that both know.
class Doorbell {
 public:
  /// Longest message, in bytes; a longer one does not arrive.
  static constexpr std::size_t kMaxMessage = 4096;

  Doorbell() = default;

  /// Hangs the bell, in the place of one that a process left behind; to be called only by whoever
  /// knows to be the only one. False where that cannot be done.
  [[nodiscard]] bool Hang(const std::string& path);

  /// Can be read, as poll tells, when somebody rang.
  [[nodiscard]] int GetDescriptor() const { return m_socket.Get(); }

  /// The message of who rang first; nothing where nobody did.
  [[nodiscard]] std::optional<std::string> Answer() const;

  /// Rings, without waiting for an answer; false where there is no bell.
  [[nodiscard]] static bool Ring(const std::string& path, std::string_view message);

  /// Where the bell of a device hangs: in the user's folder for such things where there is one,
  /// else in the root folder of the device. `runtimeFolder` is $XDG_RUNTIME_DIR.
  [[nodiscard]] static std::string PathFor(const std::string& runtimeFolder,
                                           const std::string& root);

  Doorbell(const Doorbell&) = delete;
  Doorbell& operator=(const Doorbell&) = delete;
  ~Doorbell();

 private:
  std::string m_path;  ///< Empty while it does not hang.
  Descriptor m_socket;
};

}  // namespace posix
