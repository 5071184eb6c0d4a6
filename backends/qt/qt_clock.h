#pragma once

#include "backends/qt/ui_thread.h"
#include "platform/clock.h"

namespace qt {

/// A clock whose Sleep leaves the windows alive on the user-interface thread.
class QtClock final : public platform::Clock {
 public:
  QtClock(UiThread& thread, platform::Clock& inner) : m_thread(thread), m_inner(inner) {}

  [[nodiscard]] std::uint32_t GetTickCount() override { return m_inner.GetTickCount(); }
  [[nodiscard]] std::int64_t GetUnixTime() override { return m_inner.GetUnixTime(); }
  void Sleep(std::uint32_t milliseconds) override {
    m_thread.Await([this, milliseconds] { m_inner.Sleep(milliseconds); });
  }

 private:
  UiThread& m_thread;
  platform::Clock& m_inner;
};

}  // namespace qt
