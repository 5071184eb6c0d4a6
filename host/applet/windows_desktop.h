#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "applet/control_panel.h"
#include "backends/win32/library.h"
#include "backends/win32/ui_thread.h"
#include "backends/win32/win32_process.h"
#include "backends/win32/win32_shell.h"
#include "backends/win32/win32_threads.h"
#include "backends/win32/win32_ui.h"
#include "framework/served_waits.h"
#include "host/applet/library.h"
#include "host/machine/backends.h"

namespace applet {

#pragma pack(push, 1)
/// The record of a Windows control panel: NEWCPLINFOW without gaps between its fields.
struct WindowsNewCplInfo {
  std::uint32_t dwSize;
  std::uint32_t dwFlags;
  std::uint32_t dwHelpContext;
  std::intptr_t lData;
  std::uintptr_t hIcon;
  std::array<char16_t, 32> szName;
  std::array<char16_t, 64> szInfo;
  std::array<char16_t, 128> szHelpFile;
};
#pragma pack(pop)

static_assert(sizeof(WindowsNewCplInfo) == (sizeof(void*) == 8 ? 476 : 468));
static_assert(offsetof(WindowsNewCplInfo, lData) == 12);
static_assert(offsetof(WindowsNewCplInfo, hIcon) == 12 + sizeof(void*));
static_assert(offsetof(WindowsNewCplInfo, szName) == 12 + 2 * sizeof(void*));
static_assert(offsetof(WindowsNewCplInfo, szInfo) == 76 + 2 * sizeof(void*));
static_assert(offsetof(WindowsNewCplInfo, szHelpFile) == 204 + 2 * sizeof(void*));

/// The applet in a Windows control panel, with windows of the system.
///
/// There is one sheet for each root folder. A double-click while it is open, in any process, brings
/// it forward. Instances know each other by the named mutex that the Learning page takes: one that
/// is refused it ends.
class WindowsDesktop {
 public:
  /// `module` is the library itself.
  explicit WindowsDesktop(HINSTANCE module);

  /// `parent` is the panel's window, which owns the sheet.
  [[nodiscard]] std::int32_t Answer(HWND parent, std::uint32_t message, std::intptr_t lParam1,
                                    std::intptr_t lParam2);

 private:
  [[nodiscard]] LibraryParts GetParts();
  void OnNamedMutex(const platform::CreatedMutex& created);

  const machine::Options m_options = machine::ReadOptions();
  machine::Backends m_backends{m_options};
  const std::u16string m_root;
  const std::u16string m_mark = win32::NameOfObject(m_root, u"Sheet");  ///< Of the sheet's window.
  win32::Win32Module m_module;
  win32::Win32Process m_process;
  win32::Win32Threads m_plainThreads;
  win32::UiThread m_thread;
  framework::ServedClock m_clock;
  framework::ServedThreads m_threads;
  win32::Win32Ui m_ui;
  win32::Win32Shell m_shell;
  Library m_library;
};

}  // namespace applet
