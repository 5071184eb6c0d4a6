#include "backends/desktop/xdg_shell.h"

#include <utility>

#include "backends/desktop/browsers.h"
#include "backends/text/utf.h"
#include "resources/desktop_strings.h"

namespace xdg {
namespace {

// The device's own programs.
constexpr std::u16string_view kHelpViewer = u"peghelp.exe";
constexpr std::u16string_view kBrowser = u"iexplore.exe";
constexpr std::u16string_view kOpenVerb = u"open";

/// Whether this is the address of a site. Anything else could be an option of the browser.
bool IsSite(std::string_view address) {
  return address.starts_with("https://") || address.starts_with("http://");
}

}  // namespace

XdgShell::XdgShell(platform::Threads& threads, Options options)
    : m_threads(threads),
      m_options(std::move(options)),
      m_help{m_options.helpFolders, m_options.environment.languages} {}

void XdgShell::StartProgram(std::u16string_view program, std::u16string_view commandLine) {
  if (program != kHelpViewer) {
    m_options.tell(std::u16string(resources::kNoSuchProgram).append(program));
    return;
  }
  const HelpPage page = m_help.Find(text::ToHostName(commandLine));
  Open(page.GetUrl(), page.path);
}

void XdgShell::Execute(std::u16string_view verb, std::u16string_view file,
                       std::u16string_view parameters) {
  std::string address = text::ToUtf8(parameters);
  if (verb != kOpenVerb || file != kBrowser || !IsSite(address)) {
    m_options.tell(std::u16string(resources::kNotOpenedHere).append(parameters));
    return;
  }
  Open(address, address);
}

void XdgShell::Open(std::string url, std::string shownName) {
  // Those that are done go; who waits for the rest is the destructor.
  std::erase_if(m_running, [](const std::unique_ptr<platform::Thread>& thread) {
    return thread->Wait(0) == platform::WaitResult::kSignalled;
  });
  auto body = [this, url = std::move(url), shownName = std::move(shownName)] {
    OpenNow(url, shownName);
  };
  if (auto thread = m_threads.Start(body, platform::ThreadStart::kRunning)) {
    m_running.push_back(std::move(thread));
  } else {
    body();
  }
}

void XdgShell::OpenNow(const std::string& url, const std::string& shownName) const {
  if (!OpenInBrowser(m_options.environment, url, m_options.patience)) {
    m_options.tell(std::u16string(resources::kNoWebBrowser) + text::FromHostName(shownName));
  }
}

}  // namespace xdg
