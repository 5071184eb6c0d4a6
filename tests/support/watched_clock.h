#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/clock.h"

namespace support {

/// The clock of a test. It never waits: it notes each sleep, reports it to a listener, and forwards
/// it to another clock if it stands around one. Around none, sleeping is what makes time pass. May
/// be used by several threads; the settings are made before that.
class WatchedClock final : public platform::Clock {
 public:
  /// Gets the milliseconds of a sleep, before the time passes.
  using Listener = std::function<void(std::uint32_t)>;

  WatchedClock() = default;
  explicit WatchedClock(platform::Clock& inner) : m_inner(&inner) {}

  void SetListener(Listener listener) { m_listener = std::move(listener); }

  /// Gives these tick counts, one for each question. The last one stays.
  void SetTicks(std::vector<std::uint32_t> ticks) { m_ticks = std::move(ticks); }

  /// Milliseconds of each sleep so far.
  [[nodiscard]] std::vector<std::uint32_t> GetSleeps() const {
    const std::lock_guard lock(m_mutex);
    return m_sleeps;
  }

  [[nodiscard]] std::uint32_t GetTickCount() override {
    const std::lock_guard lock(m_mutex);
    if (!m_ticks.empty()) {
      return m_asked + 1 < m_ticks.size() ? m_ticks[m_asked++] : m_ticks.back();
    }
    return m_inner != nullptr ? m_inner->GetTickCount() : m_passed;
  }
  [[nodiscard]] std::int64_t GetUnixTime() override {
    return m_inner != nullptr ? m_inner->GetUnixTime() : 0;
  }
  void Sleep(std::uint32_t milliseconds) override {
    {
      const std::lock_guard lock(m_mutex);
      m_sleeps.push_back(milliseconds);
    }
    if (m_listener) {
      m_listener(milliseconds);
    }
    if (m_inner != nullptr) {
      m_inner->Sleep(milliseconds);
    }
    const std::lock_guard lock(m_mutex);
    m_passed += milliseconds;
  }

 private:
  platform::Clock* const m_inner = nullptr;
  Listener m_listener;
  mutable std::mutex m_mutex;  ///< Of what follows.
  std::vector<std::uint32_t> m_sleeps;
  std::vector<std::uint32_t> m_ticks;
  std::size_t m_asked = 0;
  std::uint32_t m_passed = 0;
};

}  // namespace support
