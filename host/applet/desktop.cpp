#include "host/applet/desktop.h"

#include <cstdlib>
#include <utility>

#include "backends/posix/library.h"
#include "host/machine/places.h"
#include "resources/desktop_strings.h"
#include "resources/pictures.h"
#include "resources/strings.h"
#include "resources/translations.h"

namespace applet {
namespace {

std::string GetVariable(const char* name) {
  const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? std::string() : std::string(value);
}

/// The help is installed with the library or was built with it. Otherwise it is in a folder where
/// the machine's programs keep their data.
std::vector<std::string> FindHelpFolders(const desktop::Environment& environment) {
  const machine::Places places(posix::FindOwnFile());
  std::vector<std::string> folders{(places.GetDataFolder() / "help").native()};
  for (const std::string& data : environment.dataFolders) {
    folders.push_back(data + "/voxtrel/help");
  }
  return folders;
}

std::span<const std::byte> GetPicture(int number) {
  const resources::Picture* const picture = resources::FindPicture(number);
  return picture == nullptr ? std::span<const std::byte>() : picture->svg;
}

}  // namespace

DesktopOptions ReadDesktopOptions() {
  DesktopOptions options;
  options.machine = machine::ReadOptions();
  options.environment = desktop::ReadEnvironment();
  options.runtimeFolder = GetVariable("XDG_RUNTIME_DIR");
  options.activationToken = GetVariable("XDG_ACTIVATION_TOKEN");
  options.isNewcomerWelcomed = !GetVariable("VOXTREL_WELCOMED").empty();
  options.helpFolders = FindHelpFolders(options.environment);
  return options;
}

Desktop::Desktop(DesktopOptions options)
    : m_options(std::move(options)),
      m_backends(m_options.machine),
      m_module(GetPicture),
      m_plainThreads(m_backends.GetRoot().native(),
                     [this](const platform::CreatedMutex& created) { OnNamedMutex(created); }),
      m_clock(m_thread, m_backends.GetClock()),
      m_threads(m_thread, m_plainThreads),
      m_ui(m_thread, resources::kAppletName, {GetPicture}),
      // The shell's threads wait for programs only, and the windows need not know of that.
      m_shell(m_plainThreads, GetShellOptions()),
      m_library(GetParts()) {}

LibraryParts Desktop::GetParts() {
  return {m_backends,
          {m_backends.GetFiles(), m_backends.GetWaveIn(), m_clock, m_threads, m_process, m_ui,
           m_backends.GetRegistry(), m_backends.GetContacts(m_threads), m_backends.GetWaveOut(),
           m_shell},
          m_module,
          WriteRecord<NewCplInfo>,
          qt::CanShowWindows,
          !m_options.isNewcomerWelcomed,
          [] { qt::BringWindowsForward({}); }};
}

desktop::DesktopShell::Options Desktop::GetShellOptions() {
  return {m_options.environment, m_options.helpFolders, [this](std::u16string_view text) {
            m_ui.ShowMessage(platform::ApplicationBox(std::u16string(text)));
          }};
}

// The page's mutex decides who has the tags: a second instance finds that it exists, and ends. For
// the user it is the same window, so the second instance first rings at the first one, which brings
// its window to the front. The bell hangs only while the mutex is held, and a new mutex takes the
// old bell down.
void Desktop::OnNamedMutex(const platform::CreatedMutex& created) {
  const std::string bell =
      posix::Doorbell::PathFor(m_options.runtimeFolder, m_backends.GetRoot().native());
  if (created == platform::Failure(platform::ThreadError::kHeld)) {
    // If nobody has hung a bell, it is a command that has the tags.
    const auto rung = posix::Doorbell::Ring(bell, m_options.activationToken);
    ReportOnStandardError(rung ? resources::Say(resources::kAppletIsOpen)
                               : resources::Say(resources::kTagsInUse));
    return;
  }
  m_bellWatch.reset();
  if (created && m_bell.Hang(bell)) {
    m_bellWatch.emplace(m_bell.GetDescriptor(), [this] { OnRing(); });
  }
}

void Desktop::OnRing() {
  while (const auto token = m_bell.Answer()) {
    qt::BringWindowsForward(*token);
  }
}

}  // namespace applet
