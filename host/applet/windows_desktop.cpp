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
  m_ui.SetMark(win32::NameOfObject(m_root, u"Sheet"));
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
  m_ui.SetOwner(parent);
  return m_library.Answer(message, lParam1, lParam2);
}

// For the user a second instance is the same window. The command line has none: then a box says so.
void WindowsDesktop::OnNamedMutex(const platform::CreatedMutex& created) {
  if (created == platform::Failure(platform::ThreadError::kHeld) &&
      !win32::Win32Ui::BringMarkedForward(win32::NameOfObject(m_root, u"Sheet"))) {
    m_ui.ShowMessage(
        platform::ApplicationBox(std::u16string(resources::Say(resources::kTagsInUse))));
  }
}

}  // namespace applet
