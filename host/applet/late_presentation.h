#pragma once

#include <memory>

#include "host/applet/presentation.h"

namespace applet {

/// A presentation that is made when something is first to be shown: a control panel that only asks
/// for name and icon needs no window system for that. Until then time and threads are the plain
/// ones.
class LatePresentation final : public platform::Ui,
                               public platform::Clock,
                               public platform::Threads {
 public:
  /// `clock` and `threads` outlive this.
  LatePresentation(PresentationMaker make, platform::Clock& clock, platform::Threads& threads);

  /// Makes it where it is not there yet.
  [[nodiscard]] Presentation& Get();

  platform::MessageAnswer ShowMessage(const platform::MessageBox& box) override;
  void Beep(platform::Sound sound) override;
  void SetCursor(platform::Cursor cursor) override;
  [[nodiscard]] int RunDialog(const resources::DialogTemplate& dialog,
                              platform::DialogHandler& handler) override;
  [[nodiscard]] bool RunSheet(std::u16string_view caption,
                              std::span<const platform::SheetPage> pages,
                              platform::SheetHandler& handler) override;

  [[nodiscard]] std::uint32_t GetTickCount() override;
  [[nodiscard]] std::int64_t GetUnixTime() override;
  void Sleep(std::uint32_t milliseconds) override;

  [[nodiscard]] std::unique_ptr<platform::Thread> Start(std::function<void()> body,
                                                        platform::ThreadStart start) override;
  [[nodiscard]] std::unique_ptr<platform::Event> CreateManualResetEvent() override;
  [[nodiscard]] platform::CreatedMutex CreateNamedMutex(std::u16string_view name) override;

 private:
  [[nodiscard]] platform::Threads& GetThreads();

  const PresentationMaker m_make;
  platform::Clock& m_plainClock;
  platform::Threads& m_plainThreads;
  /// Made on the user-interface thread before there is another one that could use it.
  std::unique_ptr<Presentation> m_presentation;
};

}  // namespace applet
