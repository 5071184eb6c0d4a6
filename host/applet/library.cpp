#include "host/applet/library.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include "backends/text/printable.h"
#include "backends/text/utf.h"
#include "resources/desktop_strings.h"
#include "resources/translations.h"

namespace applet {
namespace {

constexpr std::u16string_view kNoScreen =
    u"There is no display to open a window on. Without one, the command line does the same work: "
    u"voxtrel --help";

}  // namespace

void ReportOnStandardError(std::u16string_view text) {
  std::string line = "voxtrel.cpl: " + text::ToUtf8(text);
  std::ranges::replace(line, '\n', ' ');
  line += '\n';
  // A message that standard error does not take changes nothing.
  static_cast<void>(std::fputs(text::Printable(line).c_str(), stderr));
}

Library::Library(LibraryParts parts)
    : m_parts(std::move(parts)), m_app(m_parts.platform, m_parts.module, m_parts.writeRecord) {
  if (m_parts.welcomesNewcomers) {
    m_parts.backends.OnNoContacts([this] { WelcomeNewcomer(); });
  }
}

void Library::WelcomeNewcomer() {
  constexpr std::u16string_view kPlace = u"%1";
  std::u16string text(resources::Say(resources::kNoContacts));
  text.replace(text.find(kPlace), kPlace.size(),
               text::FromHostName(m_parts.backends.GetDefaultContacts()));
  m_parts.platform.ui.ShowMessage(platform::ApplicationBox(std::move(text)));
}

// A control panel shows nothing of what a library reports, so what hinders the applet is said here:
// in a box if there is a screen, otherwise on standard error.
bool Library::CanOpen() {
  const bool hasScreen = m_parts.hasScreen();
  if (!m_parts.backends.HasRoot()) {
    if (hasScreen) {
      m_parts.platform.ui.ShowMessage(
          platform::ApplicationBox(std::u16string(resources::Say(resources::kNoTagFolder))));
    } else {
      ReportOnStandardError(resources::Say(resources::kNoTagFolder));
    }
    return false;
  }
  m_parts.backends.MakeRoot();
  if (!hasScreen) {
    ReportOnStandardError(kNoScreen);
  }
  return hasScreen;
}

std::int32_t Library::Answer(std::uint32_t message, std::intptr_t lParam1, std::intptr_t lParam2) {
  if (!m_isStarted) {
    m_isStarted = true;
    m_app.InitInstance();
  }
  const bool isOpening = message == static_cast<std::uint32_t>(CplMessage::kDblClk);
  if (isOpening && m_app.IsOpen()) {
    m_parts.bringForward();
  } else if (isOpening && !CanOpen()) {
    // As after a sheet that was closed.
    return m_app.Answer(static_cast<std::uint32_t>(CplMessage::kStop), lParam1, lParam2);
  }
  return m_app.Answer(message, lParam1, lParam2);
}

}  // namespace applet
