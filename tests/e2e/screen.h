#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/e2e/background_program.h"
#include "tests/e2e/sound_session.h"

namespace e2e {

struct WindowPlace {
  std::string id;  ///< Empty for no window.
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
};

/// A display of the session's own, on which the test moves the mouse and presses keys as a user.
class Screen {
 public:
  /// Returns when windows can be opened on it; the session's environment leads there from then on.
  /// Null, and a failure of the test, if it does not come up.
  [[nodiscard]] static std::unique_ptr<Screen> Start(SoundSession& session);

  /// The window with that title, awaited for a bounded time; a failure of the test if none
  /// comes. Takes the keyboard to it.
  [[nodiscard]] WindowPlace AwaitWindow(const std::string& title) const;

  /// Whether there is a window with that title now.
  [[nodiscard]] bool HasWindow(const std::string& title) const;

  /// Clicks `times` times on a point of the screen.
  void Click(int x, int y, int times = 1) const;
  void Press(const std::vector<std::string>& keys) const;

  /// The colour of one pixel, in a form to be compared.
  [[nodiscard]] std::string GetColor(int x, int y) const;

  /// A picture of the whole screen, as PNG.
  void Shoot(const std::filesystem::path& file) const;

 private:
  Screen(SoundSession& session, const std::filesystem::path& numberFile);

  std::unique_ptr<BackgroundProgram> m_server;
};

}  // namespace e2e
