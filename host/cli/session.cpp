#include "host/cli/session.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <system_error>

#include "host/cli/output.h"
#include "platform/pulse/pulse_wave_in.h"
#include "platform/pulse/pulse_wave_out.h"
#include "platform/sqlite/sqlite_registry.h"
#include "platform/text/utf.h"
#include "platform/wave_file/file_wave_in.h"
#include "platform/wave_file/file_wave_out.h"
#include "storage/registry_keys.h"
#include "storage/tag_store.h"
#include "tags/oids_in_use.h"

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

bool IsConfirmation(const platform::MessageBox& box) {
  return platform::Has(box.style, platform::MessageStyle::kOkCancel);
}

void PrintMessage(const headless::ShownMessage& shown) {
  if (IsConfirmation(shown.box)) {
    return;  // Was told when it was asked.
  }
  const std::string caption = text::ToUtf8(shown.caption);
  const std::string body = text::ToUtf8(shown.box.text);
  PrintErrorLine(caption.empty() ? body : caption + ": " + body);
}

}  // namespace

Session::Session(const Options& options)
    : m_options(options), m_ui(std::u16string(kApplicationName)) {
  m_ui.SetListener(PrintMessage);
  m_ui.SetAnswerer([this](const platform::MessageBox& box) { return Answer(box); });
}

Session::~Session() = default;

platform::Platform Session::GetPlatform() { return GetPlatform(m_clock); }

platform::Platform Session::GetPlatform(platform::Clock& clock) {
  return {GetFiles(), GetWaveIn(),    clock,          GetThreads(), m_process,
          m_ui,       MakeRegistry(), MakeContacts(), GetWaveOut(), m_shell};
}

std::u16string Session::ToSystemPath(const std::string& name) {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::absolute(name, error);
  if (!error) {
    return text::FromHostName(path.native());
  }
  // No name, or the current folder was deleted: whoever opens this reports it. The dot keeps a name
  // that begins with a backslash from being a path of the device.
  return name.empty() ? std::u16string() : text::FromHostName("./" + name);
}

bool Session::AreSameFile(const std::string& a, const std::string& b) {
  std::error_code ignored;
  return std::filesystem::equivalent(a, b, ignored);
}

std::string Session::ToHostPath(std::u16string_view devicePath) const {
  std::string path = text::ToHostName(devicePath);
  std::ranges::replace(path, '\\', '/');
  return GetRoot().native() + path;
}

platform::MessageAnswer Session::Answer(const platform::MessageBox& box) const {
  if (!IsConfirmation(box) || m_options.yes) {
    return platform::MessageAnswer::kOk;
  }
  const std::string question = text::ToUtf8(box.caption) + ": " + text::ToUtf8(box.text);
  if (::isatty(STDIN_FILENO) == 0) {
    PrintErrorLine(question + " (there is no terminal to ask on; --yes agrees)");
    return platform::MessageAnswer::kCancel;
  }
  PrintErrorLine(question + " [y/N]");
  std::string answer;
  std::getline(std::cin, answer);
  return answer == "y" || answer == "Y" || answer == "yes" ? platform::MessageAnswer::kOk
                                                           : platform::MessageAnswer::kCancel;
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

platform::FileSystem& Session::GetFiles() {
  if (!m_files) {
    m_files = std::make_unique<posix::PosixFileSystem>(ToSystemPath(GetRoot().native()));
  }
  return *m_files;
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

platform::Threads& Session::GetThreads() {
  if (!m_threads) {
    m_threads = std::make_unique<posix::PosixThreads>(GetRoot().native());
    m_ui.UseThreads(*m_threads);
  }
  return *m_threads;
}

platform::Registry& Session::GetRegistry() {
  // Where that fails the registry itself tells that it cannot be reached.
  std::error_code ignored;
  std::filesystem::create_directories(GetRoot(), ignored);
  return MakeRegistry();
}

platform::Registry& Session::MakeRegistry() {
  if (!m_registry) {
    sqlite::RegistryOptions options;
    options.initialKeys.assign(storage::kInstalledKeys.begin(), storage::kInstalledKeys.end());
    m_registry = std::make_unique<sqlite::SqliteRegistry>(GetRegistryPath(), options);
  }
  return *m_registry;
}

ebook::EbookContacts& Session::GetContacts() {
  static_cast<void>(GetRegistry());
  return MakeContacts();
}

ebook::EbookContacts& Session::MakeContacts() {
  if (!m_contacts) {
    ebook::EbookContacts::Options options;
    if (!m_options.contacts.empty()) {
      options.choice = ebook::ParseChoice(text::FromHostName(m_options.contacts));
    }
    options.oidsInUse = [this] {
      return tags::FindOidsInUse(GetRegistry(), storage::TagStore(GetFiles(), GetRegistry()));
    };
    m_contacts = std::make_unique<ebook::EbookContacts>(GetFiles(), MakeRegistry(), options);
  }
  return *m_contacts;
}

std::filesystem::path Session::GetRegistryPath() const { return GetRoot() / sqlite::kDatabaseName; }

std::filesystem::path Session::GetRoot() const {
  return std::filesystem::absolute(m_options.root.empty() ? GetDefaultRoot() : m_options.root);
}

}  // namespace cli
