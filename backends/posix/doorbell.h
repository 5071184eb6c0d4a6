#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "backends/posix/system_calls.h"
#include "platform/result.h"

namespace posix {

enum class DoorbellError : std::uint8_t {
  kBadPath,         ///< The path is empty, or too long for a socket.
  kMessageTooLong,  ///< It has more than Doorbell::kMaxMessage bytes.
  kNoBell,          ///< Nobody has hung a bell there, or it takes no more messages now.
  kFailed,          ///< The system gives no socket, or none at this path.
};

/// With this one process asks another one on this machine to come forward. It is a socket of this
/// user, and both know its name.
class Doorbell {
 public:
  /// In bytes.
  static constexpr std::size_t kMaxMessage = 4096;

  Doorbell() = default;

  /// Hangs the bell, in the place of one that an ended process left there. Only a process that
  /// knows that it is the only one may call this.
  [[nodiscard]] platform::Result<void, DoorbellError> Hang(const std::string& path);

  /// Returns the descriptor that poll reports as readable after somebody rang.
  [[nodiscard]] int GetDescriptor() const { return m_socket.Get(); }

  /// Returns the first message that was not answered yet. Returns nothing if nobody rang.
  [[nodiscard]] std::optional<std::string> Answer() const;

  /// Rings, without waiting for an answer.
  [[nodiscard]] static platform::Result<void, DoorbellError> Ring(const std::string& path,
                                                                  std::string_view message);

  /// Returns the path of a device's bell. It is in the user's folder for such things, or in the
  /// root folder of the device if there is no such folder. `runtimeFolder` is $XDG_RUNTIME_DIR.
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
