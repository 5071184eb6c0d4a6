#include "host/cli/session.h"

#include <cstdlib>
#include <filesystem>

#include "host/cli/output.h"
#include "platform/pulse/pulse_wave_in.h"
#include "platform/pulse/pulse_wave_out.h"
#include "platform/text/utf.h"
#include "platform/wave_file/file_wave_in.h"
#include "platform/wave_file/file_wave_out.h"

namespace cli {
namespace {

constexpr std::u16string_view kApplicationName = u"Zedra Voxtrel";

/// "voxtrel" in the folder where the user's programs keep their data.
std::string GetDefaultRoot() {
  // Read before there is a second thread.
  const char* data = std::getenv("XDG_DATA_HOME");  // NOLINT(concurrency-mt-unsafe)
  if (data != nullptr && data[0] == '/') {
    return std::string(data) + "/voxtrel";
  }
  const char* home = std::getenv("HOME");  // NOLINT(concurrency-mt-unsafe)
  return std::string(home == nullptr ? "" : home) + "/.local/share/voxtrel";
}

void PrintMessage(const headless::ShownMessage& shown) {
  const std::string caption = text::ToUtf8(shown.caption);
  const std::string body = text::ToUtf8(shown.box.text);
  PrintErrorLine(caption.empty() ? body : caption + ": " + body);
}

}  // namespace

Session::Session(const Options& options)
    : m_options(options), m_ui(std::u16string(kApplicationName)) {
  m_ui.SetListener(PrintMessage);
}

Session::~Session() = default;

platform::Platform Session::GetPlatform() {
  return {GetFiles(), GetWaveIn(), m_clock,    m_threads,   m_process,
          m_ui,       m_registry,  m_contacts, GetWaveOut()};
}

std::u16string Session::ToSystemPath(const std::string& name) {
  return text::FromHostName(std::filesystem::absolute(name).native());
}

void Session::Fail(std::string_view message) {
  PrintErrorLine(std::string("voxtrel: ").append(message));
  m_failed = true;
}

int Session::GetExitCode() const { return m_failed || m_process.GetExitCode() ? 1 : 0; }

platform::WaveIn& Session::GetWaveIn() {
  if (!m_waveIn) {
    if (m_options.microphone.empty()) {
      m_waveIn = std::make_unique<pulse::PulseWaveIn>();
    } else {
      m_waveIn =
          std::make_unique<wave_file::FileWaveIn>(GetFiles(), ToSystemPath(m_options.microphone));
    }
  }
  return *m_waveIn;
}

platform::WaveOut& Session::GetWaveOut() {
  if (!m_waveOut) {
    if (m_options.speaker.empty()) {
      m_waveOut = std::make_unique<pulse::PulseWaveOut>();
    } else {
      m_waveOut =
          std::make_unique<wave_file::FileWaveOut>(GetFiles(), ToSystemPath(m_options.speaker));
    }
  }
  return *m_waveOut;
}

posix::PosixFileSystem& Session::GetFiles() {
  if (!m_files) {
    m_files = std::make_unique<posix::PosixFileSystem>(
        ToSystemPath(m_options.root.empty() ? GetDefaultRoot() : m_options.root));
  }
  return *m_files;
}

}  // namespace cli
