#include "host/applet/windows_desktop.h"

#include <cpl.h>

#include <type_traits>

#include "host/machine/places.h"
#include "host/machine/system.h"
#include "resources/desktop_strings.h"
#include "resources/strings.h"
#include "resources/translations.h"

namespace applet {

static_assert(sizeof(WindowsNewCplInfo) == sizeof(NEWCPLINFOW));
static_assert(offsetof(WindowsNewCplInfo, lData) == offsetof(NEWCPLINFOW, lData));
static_assert(offsetof(WindowsNewCplInfo, hIcon) == offsetof(NEWCPLINFOW, hIcon));
static_assert(offsetof(WindowsNewCplInfo, szName) == offsetof(NEWCPLINFOW, szName));
static_assert(static_cast<UINT>(CplMessage::kNewInquire) == CPL_NEWINQUIRE);
static_assert(static_cast<UINT>(CplMessage::kDblClk) == CPL_DBLCLK);
static_assert(static_cast<UINT>(CplMessage::kExit) == CPL_EXIT);

WindowsDesktop::WindowsDesktop(HINSTANCE module)
    : m_root(machine::ToName(m_backends.GetRoot().lexically_normal())),
      m_module(module),
      m_plainThreads(m_root,
                     [this](const platform::CreatedMutex& created) { OnNamedMutex(created); }),
      m_clock(m_thread, m_backends.GetClock()),
      m_threads(m_thread, m_plainThreads),
      m_ui(m_thread, resources::kAppletName, module),
      m_shell(machine::Places(machine::FindOwnFile()).GetDataFolder() / "help",
              [this](std::u16string_view text) {
                m_ui.ShowMessage(platform::ApplicationBox(std::u16string(text)));
              }),
      m_library(GetParts()) {
  m_ui.SetMark(m_mark);
}

LibraryParts WindowsDesktop::GetParts() {
  return {m_backends,
          {m_backends.GetFiles(), m_backends.GetWaveIn(), m_clock, m_threads, m_process, m_ui,
           m_backends.GetRegistry(), m_backends.GetContacts(m_threads), m_backends.GetWaveOut(),
           m_shell},
          m_module,
          WriteRecord<WindowsNewCplInfo>,
          [] { return true; },
          true,
          [this] { m_ui.BringForward(); }};
}

std::int32_t WindowsDesktop::Answer(HWND parent, std::uint32_t message, std::intptr_t lParam1,
                                    std::intptr_t lParam2) {
  // The control panel that shows several applets is one process, which a second instance would end
  // with itself. So another process's sheet is looked for first.
  if (message == static_cast<std::uint32_t>(CplMessage::kDblClk) &&
      win32::Win32Ui::BringMarkedForward(m_mark)) {
    return m_library.Answer(static_cast<std::uint32_t>(CplMessage::kStop), lParam1, lParam2);
  }
  m_ui.SetOwner(parent);
  return m_library.Answer(message, lParam1, lParam2);
}

// A second instance that has come past the look for the sheet is refused the mutex, and its process
// ends. The command line has the mutex and no sheet: then a box says why.
void WindowsDesktop::OnNamedMutex(const platform::CreatedMutex& created) {
  if (created == platform::Failure(platform::ThreadError::kHeld) &&
      !win32::Win32Ui::BringMarkedForward(m_mark)) {
    m_ui.ShowMessage(
        platform::ApplicationBox(std::u16string(resources::Say(resources::kTagsInUse))));
  }
}

}  // namespace applet
