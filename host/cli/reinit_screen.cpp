#include "host/cli/reinit_screen.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "resources/dialogs.h"

namespace cli {
namespace {

constexpr std::uint32_t kRedrawMilliseconds = 100;
constexpr int kReinitWidth = 30;

/// Not fmt::print, which throws where the terminal is gone.
void DrawReinit(const std::string& text) {
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
  std::fflush(stderr);
}

void DrawBar(const headless::HeadlessDialog& window) {
  const auto progress = window.GetProgress(resources::kProgressBarId);
  if (!progress || progress->bar.maximum <= 0) {
    return;
  }
  const int filled = kReinitWidth * progress->position / progress->bar.maximum;
  DrawReinit(fmt::format("\rComputing the voice tags anew  [{:#<{}}{:.<{}}] {} of {}", "", filled,
                         "", kReinitWidth - filled, progress->position, progress->bar.maximum));
}

}  // namespace

void WatchReinit(headless::HeadlessDialog& window) {
  const bool isTerminal = ::isatty(STDERR_FILENO) == 1;
  while (!window.WaitForEnd(kRedrawMilliseconds)) {
    if (isTerminal) {
      DrawBar(window);
    }
    // Does nothing while the work goes on; once that has failed, nobody else closes it.
    window.Close();
  }
  if (isTerminal) {
    DrawBar(window);
    DrawReinit("\n");
  }
}

}  // namespace cli
