#include "host/applet/library.h"

#include <utility>

#include "backends/text/utf.h"
#include "host/applet/no_window.h"
#include "resources/desktop_strings.h"

namespace applet {

Library::Library(LibraryOptions options)
    : m_options(std::move(options)),
      m_backends(m_options.backends),
      m_module(m_options.getPicture),
      m_presentation(m_options.makePresentation, m_backends.GetClock(), m_backends.GetThreads()),
      m_threads(m_presentation, MakeInstanceOptions()),
      // Its threads wait for programs only; the windows need not know of them.
      m_shell(m_backends.GetThreads(), MakeShellOptions()),
      m_app(GetPlatform(), m_module) {
  m_backends.OnNoContacts([this] { TellNewcomer(); });
}

platform::Platform Library::GetPlatform() {
  return {m_backends.GetFiles(),
          m_backends.GetWaveIn(),
          m_presentation,
          m_threads,
          m_process,
          m_presentation,
          m_backends.GetRegistry(),
          m_backends.GetContacts(m_threads),
          m_backends.GetWaveOut(),
          m_shell};
}

InstanceThreads::Options Library::MakeInstanceOptions() {
  return {posix::Doorbell::PathFor(m_options.runtimeFolder, m_backends.GetRoot().native()),
          m_options.activationToken, [this](const posix::Doorbell& bell) { Listen(bell); },
          [](bool isAnswered) {
            TellOnStandardError(isAnswered ? resources::kAppletIsOpen : resources::kTagsInUse);
          }};
}

desktop::DesktopShell::Options Library::MakeShellOptions() {
  return {m_options.environment, m_options.helpFolders, [this](std::u16string_view text) {
            m_presentation.ShowMessage(platform::ApplicationBox(std::u16string(text)));
          }};
}

void Library::TellNewcomer() {
  constexpr std::u16string_view kPlace = u"%1";
  std::u16string said(resources::kNoContacts);
  said.replace(said.find(kPlace), kPlace.size(),
               text::FromHostName((m_backends.GetRoot() / "contacts.vcf").native()));
  m_presentation.ShowMessage(platform::ApplicationBox(std::move(said)));
}

void Library::Listen(const posix::Doorbell& bell) {
  m_presentation.Get().Watch(bell.GetDescriptor(), [this, &bell] {
    while (const auto token = bell.Answer()) {
      m_presentation.Get().BringForward(*token);
    }
  });
}

bool Library::CanOpen() {
  if (m_backends.HasRoot()) {
    m_backends.MakeRoot();
    return true;
  }
  m_presentation.ShowMessage(platform::ApplicationBox(std::u16string(resources::kNoTagFolder)));
  return false;
}

std::int32_t Library::Answer(std::uint32_t message, std::intptr_t lParam1, std::intptr_t lParam2) {
  if (!m_isStarted) {
    m_isStarted = true;
    m_app.InitInstance();
  }
  const bool isOpening = message == static_cast<std::uint32_t>(CplMessage::kDblClk);
  if (isOpening && m_app.IsOpen()) {
    m_presentation.Get().BringForward({});
  } else if (isOpening && !CanOpen()) {
    // As after a sheet that was closed.
    return m_app.Answer(static_cast<std::uint32_t>(CplMessage::kStop), lParam1, lParam2);
  }
  return m_app.Answer(message, lParam1, lParam2);
}

}  // namespace applet
