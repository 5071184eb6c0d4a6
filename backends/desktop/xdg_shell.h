#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "backends/desktop/environment.h"
#include "backends/desktop/help_pages.h"
#include "platform/shell.h"
#include "platform/threads.h"

namespace xdg {

/// Tells the user something in a few words. Called on a thread of the shell.
using Tell = std::function<void(std::u16string_view text)>;

/// The device's help viewer and browser on a Linux desktop: both are the user's browser, which gets
/// the place within a page, too. What may take a moment is done on threads of its own, which end
/// with the shell.
class XdgShell final : public platform::Shell {
 public:
  struct Options {
    Environment environment;
    std::vector<std::string> helpFolders;  ///< Best first.
    Tell tell;
    /// How long a program is watched for a failure.
    std::chrono::milliseconds patience{2000};
  };

  /// `threads` outlives this.
  XdgShell(platform::Threads& threads, Options options);

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

}  // namespace xdg
