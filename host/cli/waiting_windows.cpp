#include "host/cli/waiting_windows.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <string>
#include <string_view>

#include "resources/dialogs.h"

namespace cli {
namespace {

constexpr std::uint32_t kRedrawMilliseconds = 100;
constexpr int kBarWidth = 30;

/// Not fmt::print, which throws where the terminal is gone.
void DrawWaiting(const std::string& text) {
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
  std::fflush(stderr);
}

void DrawBar(const headless::HeadlessDialog& window, std::string_view what) {
  const auto progress = window.GetProgress(resources::kProgressBarId);
  if (!progress || progress->bar.maximum <= 0) {
    return;
  }
  const int filled = kBarWidth * progress->position / progress->bar.maximum;
  DrawWaiting(fmt::format("\r{}  [{:#<{}}{:.<{}}] {} of {}", what, "", filled, "",
                          kBarWidth - filled, progress->position, progress->bar.maximum));
}

/// Does `whenever` again and again until the window has ended.
void Watch(headless::HeadlessDialog& window, std::string_view what,
           const std::function<void()>& whenever) {
  const bool isTerminal = ::isatty(STDERR_FILENO) == 1;
  if (isTerminal) {
    DrawBar(window, what);
  }
  while (!window.WaitForEnd(kRedrawMilliseconds)) {
    if (isTerminal) {
      DrawBar(window, what);
    }
    whenever();
  }
  if (isTerminal) {
    DrawBar(window, what);
    DrawWaiting("\n");
  }
}

}  // namespace

void WatchReinit(headless::HeadlessDialog& window) {
  // Closing does nothing while the work goes on; once that has failed, nobody else closes it.
  Watch(window, "Computing the voice tags again", [&window] { window.Close(); });
}

void WatchComparison(headless::HeadlessDialog& window) {
  Watch(window, "Comparing the voice tags", [] {});
}

}  // namespace cli
