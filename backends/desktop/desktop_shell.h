#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "backends/desktop/programs.h"
#include "platform/shell.h"
#include "platform/threads.h"

namespace desktop {

/// A help page on the disk, and a place within it.
struct HelpPage {
  std::string path;
  std::string anchor;  ///< Empty: the page's beginning.

  /// Returns the page's address for a browser.
  [[nodiscard]] std::string GetUrl() const;
};

/// The folders with help pages, best first. Pages in another language than the program's own lie in
/// a folder below, which is named by the language.
struct HelpFolders {
  std::vector<std::string> folders;
  std::vector<std::string> languages;  ///< Of the user, best first.

  /// Returns the page that a help viewer's "file:NAME#anchor" means. If there is no such page,
  /// returns the one that should be there.
  [[nodiscard]] HelpPage Find(std::string_view address) const;
};

/// Opens `url` in the user's browser. Fails if none takes it. Tries in this order:
/// 1. the desktop's default for sites, else for pages, started by its own command. xdg-open loses
///    the place within a page of the disk on some desktops, and so does GIO for some browsers;
/// 2. xdg-open;
/// 3. each command of $BROWSER.
///
/// Each may take `patience`. May be called from any thread.
[[nodiscard]] platform::Result<void, StartError> OpenInBrowser(const Environment& environment,
                                                               const std::string& url,
                                                               std::chrono::milliseconds patience);

/// Says something to the user in a few words. Called on a thread of the shell.
using Report = std::function<void(std::u16string_view text)>;

/// The device's help viewer and browser on a Linux desktop. Both are the user's browser, which gets
/// the place within the page, too. What may take a moment is done on threads of the shell's own,
/// and the destructor waits for them.
class DesktopShell final : public platform::Shell {
 public:
  struct Options {
    Environment environment;
    std::vector<std::string> helpFolders;  ///< Best first.
    Report report;
    /// How long a program is watched for a failure.
    std::chrono::milliseconds patience{2000};
  };

  /// `threads` outlives this.
  DesktopShell(platform::Threads& threads, Options options);

  void StartProgram(std::u16string_view program, std::u16string_view commandLine) override;
  void Execute(std::u16string_view verb, std::u16string_view file,
               std::u16string_view parameters) override;

 private:
  void Open(std::string url, std::string shownName);
  void OpenNow(const std::string& url, const std::string& shownName) const;

  platform::Threads& m_threads;
  const Options m_options;
  const HelpFolders m_help;
  std::vector<std::unique_ptr<platform::Thread>> m_running;
};

}  // namespace desktop
