#include "applet/library.h"

#include <utility>

#include "applet/no_window.h"
#include "resources/strings.h"

namespace applet {

Library::Library(LibraryOptions options)
    : m_options(std::move(options)),
      m_backends(m_options.backends),
      m_module(m_options.getPicture),
      m_presentation(m_options.makePresentation, m_backends.GetClock(), m_backends.GetThreads()),
      m_threads(m_presentation, MakeInstanceOptions()),
      // Its threads wait for programs only; the windows need not know of them.
      m_shell(m_backends.GetThreads(), MakeShellOptions()),
      m_app(GetPlatform(), m_module) {}

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
            TellOnStandardError(
                isAnswered ? u"Zedra Voxtrel is open already; its window was brought forward."
                           : u"The voice tags are in use by another program, such as the command "
                             u"line. Try again when it has ended.");
          }};
}

xdg::XdgShell::Options Library::MakeShellOptions() {
  return {m_options.environment, m_options.helpFolders, [this](std::u16string_view text) {
            m_presentation.ShowMessage(platform::ApplicationBox(std::u16string(text)));
          }};
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
  m_presentation.ShowMessage(platform::ApplicationBox(
      u"There is no folder for the voice tags: HOME names none. Set it, or name a folder by "
      u"VOXTREL_ROOT."));
  return false;
}

std::int32_t Library::Answer(std::uint32_t message, std::intptr_t lParam1, std::intptr_t lParam2) {
  if (!m_isStarted) {
    m_isStarted = true;
    m_app.InitInstance();
  }
  const bool isOpening = message == static_cast<std::uint32_t>(CplMessage::kDblClk);
  if (isOpening && !CanOpen()) {
    // As after a sheet that was closed.
    return m_app.Answer(static_cast<std::uint32_t>(CplMessage::kStop), lParam1, lParam2);
  }
  return m_app.Answer(message, lParam1, lParam2);
}

}  // namespace applet
