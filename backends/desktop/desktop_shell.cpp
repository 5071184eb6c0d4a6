#include "backends/desktop/desktop_shell.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "backends/text/utf.h"
#include "resources/desktop_strings.h"
#include "resources/translations.h"

// The shell of the pages: they ask for the device's help viewer or browser, and get the desktop's
// browser. Anything else that they ask for is refused with a message, so no text of a page can
// start a program.
namespace desktop {
namespace {

// The names of the device's own programs, as the pages call them.
constexpr std::u16string_view kHelpViewer = u"peghelp.exe";
constexpr std::u16string_view kBrowser = u"iexplore.exe";
constexpr std::u16string_view kOpenVerb = u"open";

bool IsFile(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(path, ignored);
}

/// Returns whether an address shows the byte as it is, in a path or after it.
bool IsPlain(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= '0' && byte <= '9') ||
         std::string_view("-._~/").find(byte) != std::string_view::npos;
}

std::string Escape(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string escaped;
  for (const char byte : text) {
    if (IsPlain(byte)) {
      escaped += byte;
    } else {
      const auto value = static_cast<unsigned char>(byte);
      escaped += '%';
      escaped += kDigits[value >> 4U];
      escaped += kDigits[value & 0xFU];
    }
  }
  return escaped;
}

/// Returns whether this is the address of a site. Anything else could be an option of the browser.
bool IsSite(std::string_view address) {
  return address.starts_with("https://") || address.starts_with("http://");
}

/// Returns whether no site of this name can exist: its last part is kept free for examples.
bool IsForExamples(std::string_view address) {
  address.remove_prefix(address.find("//") + 2);
  return address.substr(0, address.find('/')).ends_with(".example");
}

}  // namespace

std::string HelpPage::GetUrl() const {
  return "file://" + Escape(path) + (anchor.empty() ? "" : "#" + Escape(anchor));
}

HelpPage HelpFolders::Find(std::string_view address) const {
  constexpr std::string_view kScheme = "file:";
  if (address.starts_with(kScheme)) {
    address.remove_prefix(kScheme.size());
  }
  const std::size_t hash = address.find('#');
  const std::string name(address.substr(0, hash));
  const std::string anchor(hash == std::string_view::npos ? "" : address.substr(hash + 1));
  for (const std::string& folder : folders) {
    for (const std::string& language : languages) {
      std::string path = folder;
      path.append("/").append(language).append("/").append(name);
      if (IsFile(path)) {
        return {path, anchor};
      }
    }
    if (std::string path = folder + "/" + name; IsFile(path)) {
      return {path, anchor};
    }
  }
  // A page that is not installed keeps its name, so that the message can name it.
  return {folders.empty() ? "/" + name : folders.front() + "/" + name, anchor};
}

DesktopShell::DesktopShell(platform::Threads& threads, Options options)
    : m_threads(threads),
      m_options(std::move(options)),
      m_help{m_options.helpFolders, m_options.environment.languages} {}

void DesktopShell::StartProgram(std::u16string_view program, std::u16string_view commandLine) {
  if (program != kHelpViewer) {
    m_options.report(std::u16string(resources::Say(resources::kNoSuchProgram)).append(program));
    return;
  }
  const HelpPage page = m_help.Find(text::ToHostName(commandLine));
  Open(page.GetUrl(), page.path);
}

void DesktopShell::Execute(std::u16string_view verb, std::u16string_view file,
                           std::u16string_view parameters) {
  std::string address = text::ToUtf8(parameters);
  if (verb != kOpenVerb || file != kBrowser || !IsSite(address) || IsForExamples(address)) {
    m_options.report(std::u16string(resources::Say(resources::kNotOpenedHere)).append(parameters));
    return;
  }
  Open(address, address);
}

void DesktopShell::Open(std::string url, std::string shownName) {
  // Threads that have ended go. The destructor waits for the rest.
  std::erase_if(m_running, [](const std::unique_ptr<platform::Thread>& thread) {
    return thread->Wait(0) == platform::WaitResult::kSignalled;
  });
  auto body = [this, url = std::move(url), shownName = std::move(shownName)] {
    OpenNow(url, shownName);
  };
  // A browser may take seconds to start, or to fail. The page that asked for it does not wait.
  if (auto thread = m_threads.Start(body, platform::ThreadStart::kRunning)) {
    m_running.push_back(std::move(*thread));
  } else {
    body();
  }
}

void DesktopShell::OpenNow(const std::string& url, const std::string& shownName) const {
  if (!OpenInBrowser(m_options.environment, url, m_options.patience)) {
    m_options.report(std::u16string(resources::Say(resources::kNoWebBrowser)) +
                     text::FromHostName(shownName));
  }
}

}  // namespace desktop
