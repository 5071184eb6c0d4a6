#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/clock.h"
#include "platform/threads.h"

namespace posix {

/// The time of a Linux system. The tick count goes on while the machine is suspended.
class PosixClock final : public platform::Clock {
 public:
  [[nodiscard]] std::uint32_t GetTickCount() override;
  [[nodiscard]] std::int64_t GetUnixTime() override;
  void Sleep(std::uint32_t milliseconds) override;
};

/// Threads and events of the C++ library. A named mutex is a lock on a file. So it goes with the
/// process that holds it, however that process ends.
class PosixThreads final : public platform::Threads {
 public:
  /// `lockFolder` is the folder of the host in which the lock files lie. Processes with the same
  /// folder know the same names. It is made when it is first needed. `onNamedMutex` is called with
  /// the result of each call of CreateNamedMutex, before the caller has it.
  explicit PosixThreads(
      std::string lockFolder = {},
      std::function<void(const platform::CreatedMutex& created)> onNamedMutex = nullptr)
      : m_lockFolder(std::move(lockFolder)), m_onNamedMutex(std::move(onNamedMutex)) {}

  [[nodiscard]] platform::StartedThread Start(std::function<void()> body,
                                              platform::ThreadStart start) override;
  [[nodiscard]] platform::CreatedEvent CreateManualResetEvent() override;
  [[nodiscard]] platform::CreatedMutex CreateNamedMutex(std::u16string_view name) override;

  /// Returns the name in the lock folder of the file that is locked for the mutex of that name.
  [[nodiscard]] static std::string LockName(std::u16string_view name);

  /// Returns whether the mutex of that name was ever made. If not, nobody holds it. Makes nothing.
  [[nodiscard]] static bool WasNamedMutexMade(const std::string& lockFolder,
                                              std::u16string_view name);

 private:
  [[nodiscard]] platform::CreatedMutex Lock(std::u16string_view name) const;

  const std::string m_lockFolder;
  const std::function<void(const platform::CreatedMutex& created)> m_onNamedMutex;
};

}  // namespace posix
