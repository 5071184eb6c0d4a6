#include "backends/win32/win32_shell.h"

#include <shellapi.h>
#include <shlwapi.h>

#include <array>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "backends/win32/system_calls.h"
#include "resources/desktop_strings.h"
#include "resources/translations.h"

namespace win32 {
namespace {

namespace fs = std::filesystem;

// The names of the device's own programs, as the pages call them.
constexpr std::u16string_view kHelpViewer = u"peghelp.exe";
constexpr std::u16string_view kBrowser = u"iexplore.exe";
constexpr std::u16string_view kOpenVerb = u"open";

/// A result of ShellExecuteW up to this one is a failure.
constexpr INT_PTR kLastFailure = 32;

/// Returns whether this is the address of a site. Anything else could be a program.
[[nodiscard]] bool IsSite(std::u16string_view address) {
  return address.starts_with(u"https://") || address.starts_with(u"http://");
}

/// Returns whether no site of this name can exist: its last part is kept free for examples.
[[nodiscard]] bool IsForExamples(std::u16string_view address) {
  address.remove_prefix(address.find(u"//") + 2);
  return address.substr(0, address.find(u'/')).ends_with(u".example");
}

/// Returns the languages of the user, best first: of each its full name and then the language
/// alone.
[[nodiscard]] std::vector<std::u16string> FindLanguages() {
  ULONG count = 0;
  std::array<wchar_t, 512> names{};
  auto length = static_cast<ULONG>(names.size());
  std::vector<std::u16string> languages;
  if (!::GetUserPreferredUILanguages(MUI_LANGUAGE_NAME, &count, names.data(), &length)) {
    return languages;
  }
  for (const wchar_t* name = names.data(); *name != L'\0';) {
    const std::u16string_view full = FromWide(name);
    languages.emplace_back(full);
    languages.emplace_back(full.substr(0, full.find(u'-')));
    name += full.size() + 1;
  }
  return languages;
}

/// Returns the user's browser. Returns an empty text if the system knows none.
[[nodiscard]] std::u16string FindBrowser() {
  std::array<wchar_t, MAX_PATH> path{};
  auto length = static_cast<DWORD>(path.size());
  const HRESULT result =
      ::AssocQueryStringW(ASSOCF_NONE, ASSOCSTR_EXECUTABLE, L"http", L"open", path.data(), &length);
  return SUCCEEDED(result) ? std::u16string(FromWide(path.data())) : std::u16string();
}

}  // namespace

std::u16string FindHelpPage(const fs::path& folder, const std::vector<std::u16string>& languages,
                            std::u16string_view commandLine) {
  constexpr std::u16string_view kScheme = u"file:";
  if (commandLine.starts_with(kScheme)) {
    commandLine.remove_prefix(kScheme.size());
  }
  const std::size_t hash = std::min(commandLine.find(u'#'), commandLine.size());
  const fs::path name(commandLine.substr(0, hash));
  fs::path found = folder / name;
  for (const std::u16string& language : languages) {
    std::error_code ignored;
    if (const fs::path page = folder / fs::path(language) / name; fs::exists(page, ignored)) {
      found = page;
      break;
    }
  }
  return u"file:///" + found.generic_u16string() + std::u16string(commandLine.substr(hash));
}

Win32Shell::Win32Shell(fs::path helpFolder, std::function<void(std::u16string_view)> report)
    : m_helpFolder(std::move(helpFolder)), m_report(std::move(report)) {}

void Win32Shell::StartProgram(std::u16string_view program, std::u16string_view commandLine) {
  if (program != kHelpViewer) {
    m_report(std::u16string(resources::Say(resources::kNoSuchProgram)).append(program));
    return;
  }
  Open(FindHelpPage(m_helpFolder, FindLanguages(), commandLine));
}

void Win32Shell::Execute(std::u16string_view verb, std::u16string_view file,
                         std::u16string_view parameters) {
  if (verb != kOpenVerb || file != kBrowser || !IsSite(parameters) || IsForExamples(parameters)) {
    m_report(std::u16string(resources::Say(resources::kNotOpenedHere)).append(parameters));
    return;
  }
  Open(std::u16string(parameters));
}

// The system would take a place within a page for a part of its file's name. So the browser itself
// gets the address. If there is none, the system says what it does with pages.
void Win32Shell::Open(const std::u16string& address) const {
  const std::u16string browser = FindBrowser();
  const std::u16string quoted = u'"' + address + u'"';
  const HINSTANCE result =
      browser.empty()
          ? ::ShellExecuteW(nullptr, L"open", ToWide(address), nullptr, nullptr, SW_SHOWNORMAL)
          : ::ShellExecuteW(nullptr, nullptr, ToWide(browser), ToWide(quoted), nullptr,
                            SW_SHOWNORMAL);
  const auto code = reinterpret_cast<INT_PTR>(result);  // A number in the form of a handle.
  if (code == SE_ERR_FNF || code == SE_ERR_PNF) {
    m_report(resources::Say(resources::kHelpNotInstalled));
  } else if (code <= kLastFailure) {
    m_report(std::u16string(resources::Say(resources::kNoWebBrowser)) + address);
  }
}

}  // namespace win32
