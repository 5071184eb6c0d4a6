#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "backends/win32/win32_dialog.h"
#include "platform/ui.h"

namespace win32 {

/// A property sheet of the system: a tab for each page and an OK button. There is no Cancel, since
/// the pages do at once what the user asks for.
class Win32Sheet final : public platform::SheetWindow {
 public:
  Win32Sheet(std::u16string_view caption, std::span<const platform::SheetPage> pages,
             platform::SheetHandler& handler, UiThread& thread, Pictures& pictures);

  /// `listener` is called when the sheet's window is there, before a page works.
  void OnCreated(std::function<void(HWND)> listener) { m_onCreated = std::move(listener); }

  /// Runs the sheet above `owner`, which may be null. `icon` may be null and outlives the sheet.
  /// Returns true if the user closed the sheet by OK.
  [[nodiscard]] bool Run(HWND owner, HICON icon);

  void SetTabText(std::size_t tab, std::u16string_view text) override;

 private:
  struct Page {
    std::unique_ptr<Win32Dialog> dialog;
    std::vector<std::uint32_t> resource;
    std::u16string title;
  };

  static LRESULT CALLBACK Watch(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                UINT_PTR id, DWORD_PTR self);
  /// Answers a message before the system does. Returns nothing if the system has to.
  [[nodiscard]] std::optional<LRESULT> Answer(UINT message, WPARAM wParam);
  void OnPageCreated(HWND page);
  void Prepare();
  void ShowDefaultButton() const;
  void AskForHelp();
  /// Whether a page is in the middle of its work, so that the sheet must not close.
  [[nodiscard]] bool IsBusy() const;
  /// Returns null if there is none.
  [[nodiscard]] Win32Dialog* GetActivePage() const;
  [[nodiscard]] HWND GetDefaultButton() const;

  const std::u16string m_caption;
  platform::SheetHandler& m_handler;
  UiThread& m_thread;
  std::vector<Page> m_pages;
  std::function<void(HWND)> m_onCreated;
  HWND m_window = nullptr;
  HICON m_icon = nullptr;
  bool m_isPrepared = false;
  bool m_wasAccepted = false;
};

}  // namespace win32
