#pragma once

#include <functional>
#include <string_view>

#include "host/applet/presentation.h"

namespace applet {

/// The presentation of a machine without a display: says on standard error, in lines that begin
/// with the library's name, what would have been shown. Asks nothing and opens nothing.
class NoWindow final : public Presentation, private platform::Ui {
 public:
  NoWindow(platform::Clock& clock, platform::Threads& threads)
      : m_clock(clock), m_threads(threads) {}

  [[nodiscard]] platform::Ui& GetUi() override { return *this; }
  [[nodiscard]] platform::Clock& GetClock() override { return m_clock; }
  [[nodiscard]] platform::Threads& GetThreads() override { return m_threads; }
  void Watch(int /*descriptor*/, std::function<void()> /*onReadable*/) override {}
  void BringForward(std::string_view /*activationToken*/) override {}

 private:
  platform::MessageAnswer ShowMessage(const platform::MessageBox& box) override;
  void Beep(platform::Sound /*sound*/) override {}
  void SetCursor(platform::Cursor /*cursor*/) override {}
  [[nodiscard]] int RunDialog(const resources::DialogTemplate& dialog,
                              platform::DialogHandler& handler) override;
  [[nodiscard]] bool RunSheet(std::u16string_view caption,
                              std::span<const platform::SheetPage> pages,
                              platform::SheetHandler& handler) override;

  platform::Clock& m_clock;
  platform::Threads& m_threads;
};

/// One line for the user on standard error, by which a control panel knows what to pass on.
void TellOnStandardError(std::u16string_view text);

}  // namespace applet
