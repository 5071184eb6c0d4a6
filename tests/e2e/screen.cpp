#include "tests/e2e/screen.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <sstream>
#include <thread>

#include "tests/e2e/text_file.h"
#include "tests/support/run_program.h"

namespace e2e {
namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds kScreenLimit(120);
constexpr std::chrono::milliseconds kScreenPollInterval(50);

std::string FirstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

support::ProgramRun Drive(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "xdotool");
  return support::RunProgram(arguments);
}

/// `name`'s value in lines of the form NAME=value; 0 for none.
int ValueOf(const std::string& lines, const std::string& name) {
  std::istringstream stream(lines);
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with(name + "=")) return std::stoi(line.substr(name.size() + 1));
  }
  return 0;
}

std::string FindWindow(const std::string& title) {
  return FirstLine(Drive({"search", "--onlyvisible", "--name", "^" + title + "$"}).out);
}

}  // namespace

Screen::Screen(SoundSession& session, const std::filesystem::path& numberFile)
    // The server writes the number of the display that it chose, once it answers.
    : m_server(std::make_unique<BackgroundProgram>(
          std::vector<std::string>{
              "sh", "-c",
              "exec Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>'" +
                  numberFile.string() + "'"},
          session.Folder() / "screen.log")) {}

std::unique_ptr<Screen> Screen::Start(SoundSession& session) {
  const auto numberFile = session.Folder() / "display";
  std::unique_ptr<Screen> screen(new Screen(session, numberFile));
  const auto deadline = steady_clock::now() + kScreenLimit;
  while (steady_clock::now() < deadline && !screen->m_server->HasEnded()) {
    const std::string number = ReadText(numberFile);
    if (number.ends_with('\n')) {
      session.SetVariable("DISPLAY", ":" + FirstLine(number));
      session.SetVariable("QT_QPA_PLATFORM", "xcb");
      for (const char* const name : {"WAYLAND_DISPLAY", "QT_SCALE_FACTOR", "QT_STYLE_OVERRIDE"}) {
        session.SetVariable(name, std::nullopt);
      }
      return screen;
    }
    std::this_thread::sleep_for(kScreenPollInterval);
  }
  ADD_FAILURE() << "The display does not come up:\n" << ReadText(session.Folder() / "screen.log");
  return nullptr;
}

WindowPlace Screen::AwaitWindow(const std::string& title) const {
  WindowPlace place;
  const auto deadline = steady_clock::now() + kScreenLimit;
  while (steady_clock::now() < deadline) {
    place.id = FindWindow(title);
    if (!place.id.empty()) {
      const std::string geometry = Drive({"getwindowgeometry", "--shell", place.id}).out;
      place.left = ValueOf(geometry, "X");
      place.top = ValueOf(geometry, "Y");
      place.width = ValueOf(geometry, "WIDTH");
      place.height = ValueOf(geometry, "HEIGHT");
      // There is no window manager here to do it.
      Drive({"windowfocus", "--sync", place.id});
      return place;
    }
    std::this_thread::sleep_for(kScreenPollInterval);
  }
  ADD_FAILURE() << "No window '" << title << "' came.";
  return place;
}

bool Screen::HasWindow(const std::string& title) const { return !FindWindow(title).empty(); }

void Screen::Click(int x, int y, int times) const {
  Drive({"mousemove", "--sync", std::to_string(x), std::to_string(y), "click", "--repeat",
         std::to_string(times), "--delay", "60", "1"});
}

void Screen::Press(const std::vector<std::string>& keys) const {
  std::vector<std::string> arguments{"key", "--delay", "40"};
  arguments.insert(arguments.end(), keys.begin(), keys.end());
  Drive(std::move(arguments));
}

std::string Screen::GetColor(int x, int y) const {
  const std::string place = "1x1+" + std::to_string(x) + "+" + std::to_string(y);
  return support::RunProgram({"import", "-window", "root", "-crop", place, "-depth", "8", "rgb:-"})
      .out;
}

void Screen::Shoot(const std::filesystem::path& file) const {
  std::filesystem::create_directories(file.parent_path());
  EXPECT_EQ(support::RunProgram({"import", "-window", "root", file.string()}).exitCode, 0);
}

}  // namespace e2e
