#include "host/cli/session.h"

#include <fmt/format.h>
#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <system_error>

#include "backends/sqlite/connection.h"
#include "backends/text/utf.h"
#include "host/cli/output.h"
#include "resources/fault_strings.h"
#include "resources/strings.h"
#include "storage/registry_file.h"

namespace cli {
namespace {

constexpr std::u16string_view kApplicationName = u"Zedra Voxtrel";

bool IsConfirmation(const platform::MessageBox& box) {
  return platform::Has(box.style, platform::MessageStyle::kOkCancel);
}

std::filesystem::path NearestThatExists(std::filesystem::path path) {
  std::error_code ignored;
  while (std::filesystem::status(path, ignored).type() == std::filesystem::file_type::not_found &&
         path.has_relative_path()) {
    path = path.parent_path();
  }
  return path;
}

void AppendLine(std::string& lines, std::string_view line) {
  lines.append(lines.empty() ? "" : "\n").append(line);
}

}  // namespace

Session::Session(const Options& options)
    : m_options(options),
      m_backends(options.machine),
      m_clock(m_backends.GetClock()),
      m_ui(std::u16string(kApplicationName)) {
  m_ui.SetListener([this](const headless::ShownMessage& shown) { PrintMessage(shown); });
  m_ui.SetAnswerer([this](const platform::MessageBox& box) { return Answer(box); });
}

Session::~Session() = default;

platform::Platform Session::GetPlatform() { return GetPlatform(m_clock); }

platform::Platform Session::GetPlatform(platform::Clock& clock) {
  m_ui.UseThreads(m_backends.GetThreads());
  return {m_backends.GetFiles(),
          m_backends.GetWaveIn(),
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
    Fail("there is no folder for the voice tags, since HOME names none; name one with --root DIR");
    return false;
  }
  const std::filesystem::path there = NearestThatExists(m_backends.GetRoot());
  std::error_code error;
  if (!std::filesystem::is_directory(there, error) && !error) {
    Fail(there.native() + " is no folder, so it cannot hold voice tags");
    return false;
  }
  if (const auto link = sqlite::FindLink(GetRegistryPath()); !link.empty()) {
    Fail(ExplainLink(link.native(), "not used, and neither are the settings"));
    return false;
  }
  return true;
}

bool Session::HasRootFolder() const {
  std::error_code ignored;
  return std::filesystem::is_directory(m_backends.GetRoot(), ignored);
}

bool Session::OpenForReading() {
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
  return std::filesystem::equivalent(a, b, ignored);
}

std::string Session::ExplainLink(const std::string& name, std::string_view consequence) {
  std::error_code error;
  const std::filesystem::path target = std::filesystem::read_symlink(name, error);
  return error ? std::string()
               : fmt::format("{} is a link to {}: {}", name, target.native(), consequence);
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

void Session::PrintMessage(const headless::ShownMessage& shown) {
  if (IsConfirmation(shown.box)) {
    return;  // It was printed as a question.
  }
  const std::string caption = text::ToUtf8(shown.caption);
  std::string body = text::ToUtf8(shown.box.text);
  // A command has no window to close.
  const std::string advice = text::ToUtf8(resources::kOpenAgain);
  if (body.ends_with(advice)) {
    body.replace(body.size() - advice.size(), advice.size(), "Run the command again.");
  }
  const std::string line = caption.empty() ? body : caption + ": " + body;
  PrintErrorLine(line);
  AppendLine(m_messages, line);
}

void Session::Fail(std::string_view message) {
  PrintErrorLine(std::string("voxtrel: ").append(message));
  m_failed = true;
  m_failure = message;
  AppendLine(m_messages, message);
}

int Session::GetExitCode() const { return m_failed || m_process.GetExitCode() ? kFailed : 0; }

void Session::PrintOutcome() const {
  if (!m_options.json) {
    return;
  }
  std::optional<Json> json = m_json;
  if (GetExitCode() != 0 && (!json || json->is_object())) {
    (json ? *json : json.emplace(Json::object())).update(ErrorToJson(GetExitCode(), m_messages));
  }
  if (json) {
    PrintJson(*json);
  }
}

std::optional<std::string> Session::FindUnusableKey(std::u16string_view start) {
  auto key = storage::FindUnusableKey(GetRegistry(), start);
  if (key) {
    key->insert(0, "another program made a key or value that cannot be used: ");
  }
  return key;
}

std::string Session::ExplainStore(platform::RegistryError error) {
  return GetRegistryPath().native() + ": " +
         FindUnusableKey().value_or(storage::ExplainRegistryError(error));
}

vcard::AddressBooks& Session::GetContacts() {
  return m_backends.GetContacts(m_backends.GetThreads());
}

}  // namespace cli
