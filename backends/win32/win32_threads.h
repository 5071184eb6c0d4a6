#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/clock.h"
#include "platform/threads.h"

namespace win32 {

/// The time of a Windows system. The tick count goes on while the machine is suspended.
class Win32Clock final : public platform::Clock {
 public:
  [[nodiscard]] std::uint32_t GetTickCount() override;
  [[nodiscard]] std::int64_t GetUnixTime() override;
  void Sleep(std::uint32_t milliseconds) override;
};

/// Threads, events and named mutexes of the system.
class Win32Threads final : public platform::Threads {
 public:
  /// Processes with the same `scope`, which is the root folder of the device, know the same names
  /// of mutexes, in whatever session of the machine they run. `onNamedMutex` is called with the
  /// result of each call of CreateNamedMutex, before the caller has it.
  explicit Win32Threads(
      std::u16string scope = {},
      std::function<void(const platform::CreatedMutex& created)> onNamedMutex = nullptr)
      : m_scope(std::move(scope)), m_onNamedMutex(std::move(onNamedMutex)) {}

  [[nodiscard]] platform::StartedThread Start(std::function<void()> body,
                                              platform::ThreadStart start) override;
  [[nodiscard]] platform::CreatedEvent CreateManualResetEvent() override;
  [[nodiscard]] platform::CreatedMutex CreateNamedMutex(std::u16string_view name) override;

 private:
  const std::u16string m_scope;
  const std::function<void(const platform::CreatedMutex& created)> m_onNamedMutex;
};

/// Returns the name by which the whole machine knows an object of the system, such as a mutex.
/// `scope` is a path; its letter case counts for nothing.
[[nodiscard]] std::u16string NameOfObject(std::u16string_view scope, std::u16string_view name);

}  // namespace win32
