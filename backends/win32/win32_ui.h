#pragma once

#include <string>
#include <utility>
#include <vector>

#include "backends/win32/gdi.h"
#include "backends/win32/ui_thread.h"
#include "backends/win32/windows.h"
#include "platform/ui.h"

namespace win32 {

/// The user interface by the dialogs, sheets and message boxes of the system.
class Win32Ui final : public platform::Ui {
 public:
  /// `applicationName` is the caption of the framework's plain boxes. `module` holds the pictures,
  /// the icon of the sheets (resources::kAppletIcon) and the description of the controls' look,
  /// each if it is there.
  Win32Ui(UiThread& thread, std::u16string_view applicationName, HMODULE module);

  /// From now on `owner` is the window below all others. It may be null.
  void SetOwner(HWND owner) { m_owner = owner; }
  /// Marks each sheet of this with `mark`, by which BringMarkedForward finds it.
  void SetMark(std::u16string mark) { m_mark = std::move(mark); }
  /// Brings the sheet with that mark of another process in front of all windows. Returns false if
  /// no other one has it open. This process may just be opening its own, which nobody sees yet.
  [[nodiscard]] static bool BringMarkedForward(const std::u16string& mark);
  /// Brings the windows that are open in front of those of other programs.
  void BringForward() const;

  platform::MessageAnswer ShowMessage(const platform::MessageBox& box) override;
  void Beep(platform::Sound sound) override;
  void SetCursor(platform::Cursor cursor) override;
  [[nodiscard]] int RunDialog(const resources::DialogTemplate& dialog,
                              platform::DialogHandler& handler) override;
  [[nodiscard]] bool RunSheet(std::u16string_view caption,
                              std::span<const platform::SheetPage> pages,
                              platform::SheetHandler& handler) override;

 private:
  class Opening;

  [[nodiscard]] HWND GetTop() const { return m_windows.empty() ? m_owner : m_windows.back(); }
  [[nodiscard]] std::u16string CaptionOf(const platform::MessageBox& box) const;

  UiThread& m_thread;
  const std::u16string m_applicationName;
  const HMODULE m_module;
  Pictures m_pictures;
  std::u16string m_mark;
  HWND m_owner = nullptr;
  std::vector<HWND> m_windows;  ///< Those that are open, one above the other.
};

}  // namespace win32
