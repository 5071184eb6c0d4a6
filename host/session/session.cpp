#include "host/session/session.h"

#include <fmt/format.h>

#include <filesystem>
#include <system_error>

#include "backends/text/host_path.h"
#include "backends/text/say.h"
#include "backends/text/utf.h"
#include "host/machine/system.h"
#include "storage/registry_file.h"

// A session is a user without a window. It makes the back ends, answers the message boxes of the
// pages, and keeps what went wrong. The pages do not know that nobody sees them.
namespace session {
namespace {

constexpr std::u16string_view kApplicationName = u"Zedra Voxtrel";

bool IsConfirmation(const platform::MessageBox& box) {
  return platform::Has(box.style, platform::MessageStyle::kOkCancel);
}

std::filesystem::path NearestThatExists(std::filesystem::path path) {
  std::error_code ignored;
  // The folder itself need not be there: the first command that changes something makes it.
  while (std::filesystem::status(path, ignored).type() == std::filesystem::file_type::not_found &&
         path.has_relative_path()) {
    path = path.parent_path();
  }
  return path;
}

}  // namespace

void SessionClock::Sleep(std::uint32_t milliseconds) {
  constexpr std::uint32_t kQuicker = 100;
  const std::uint32_t slept = m_isQuick ? milliseconds / kQuicker : milliseconds;
  m_clock.Sleep(slept);
  // So the tick count moves on by the whole time, and names of tags do not collide.
  m_skipped += milliseconds - slept;
}

Session::Session(const machine::Options& options, Outlet& outlet)
    : m_options(options),
      m_outlet(outlet),
      m_backends(options),
      m_clock(m_backends.GetClock()),
      m_ui(std::u16string(kApplicationName)) {
  // The boxes of the pages become lines of the program. Only a confirmation asks, and all others
  // are answered with OK, which is their only button.
  m_ui.SetListener([this](const headless::ShownMessage& shown) {
    if (!IsConfirmation(shown.box)) {
      m_outlet.ShowMessage(shown);
    }
  });
  m_ui.SetAnswerer([this](const platform::MessageBox& box) {
    return !IsConfirmation(box) || m_outlet.AgreesTo(box) ? platform::MessageAnswer::kOk
                                                          : platform::MessageAnswer::kCancel;
  });
}

Session::~Session() = default;

platform::Platform Session::GetPlatform() { return GetPlatform(m_clock); }

platform::Platform Session::GetPlatform(platform::Clock& clock) {
  // A dialog that a worker thread ends is waited for with these.
  m_ui.UseThreads(m_backends.GetThreads());
  return {m_backends.GetFiles(),
          m_microphone != nullptr ? *m_microphone : m_backends.GetWaveIn(),
          clock,
          m_backends.GetThreads(),
          m_process,
          m_ui,
          m_backends.GetRegistry(),
          m_backends.GetContacts(m_backends.GetThreads()),
          m_backends.GetWaveOut(),
          m_shell};
}

// A typing error in --root must not look like an error of some file below it. So the nearest folder
// that exists is looked at, and a link in the place of the settings is named.
bool Session::RequireRoot() {
  if (!m_backends.HasRoot()) {
    Fail(text::Say(resources::kNoRootNamed) + m_outlet.Advise(Matter::kNoRoot));
    return false;
  }
  const std::filesystem::path there = NearestThatExists(m_backends.GetRoot());
  std::error_code error;
  if (!std::filesystem::is_directory(there, error) && !error) {
    Fail(text::Say(resources::kRootIsNoFolder, {text::FromHostPath(there)}));
    return false;
  }
  if (const auto link = machine::FindRegistryLink(GetRoot()); !link.empty()) {
    Fail(ExplainLink(text::FromHostPath(link), resources::kLinkNotUsed));
    return false;
  }
  return true;
}

bool Session::HasRootFolder() const {
  std::error_code ignored;
  return std::filesystem::is_directory(m_backends.GetRoot(), ignored);
}

bool Session::OpenForReading() {
  // Before anything is opened: the back ends choose how they open what they read.
  m_backends.ChangeNothing();
  return RequireRoot();
}

bool Session::OpenForChanging() {
  if (!RequireRoot()) {
    return false;
  }
  // If that fails the settings report that they cannot be reached.
  m_backends.MakeRoot();
  return true;
}

bool Session::AreSameFile(const std::string& a, const std::string& b) {
  std::error_code ignored;
  return std::filesystem::equivalent(text::ToHostPath(a), text::ToHostPath(b), ignored);
}

std::string Session::ExplainLink(const std::string& name, std::u16string_view text) {
  std::error_code error;
  const std::filesystem::path target = std::filesystem::read_symlink(text::ToHostPath(name), error);
  return error ? std::string() : text::Say(text, {name, text::FromHostPath(target)});
}

void Session::Fail(std::string_view message) {
  m_outlet.ShowFailure(message);
  m_hasFailed = true;
  m_failure = message;
}

std::optional<std::string> Session::FindUnusableKey(std::u16string_view start) {
  auto key = storage::FindUnusableKey(GetRegistry(), start);
  if (key) {
    key = text::Say(resources::kUnusableKey, {*key});
  }
  return key;
}

std::string Session::ExplainStore(platform::RegistryError error) {
  return GetRegistryName() + ": " +
         FindUnusableKey().value_or(storage::ExplainRegistryError(error));
}

vcard::AddressBooks& Session::GetContacts() {
  return m_backends.GetContacts(m_backends.GetThreads());
}

}  // namespace session
