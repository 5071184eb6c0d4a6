#pragma once

#include <gtest/gtest.h>

#include <QPoint>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "resources/dialogs.h"
#include "tests/e2e/background_program.h"
#include "tests/e2e/pipe_microphone.h"
#include "tests/e2e/pulse_server.h"
#include "tests/e2e/screen.h"
#include "tests/e2e/sound_session.h"
#include "tests/support/run_program.h"

namespace e2e {

/// Whether `holds` came true within a bounded time.
[[nodiscard]] bool Await(std::chrono::milliseconds limit, const std::function<bool()>& holds);

/// The program as a user has it: the control panel on a display, a sound server with a microphone,
/// a file of contacts.
class WindowStory : public testing::Test {
 protected:
  void SetUp() override;

  [[nodiscard]] std::string Root() const { return m_session.Folder() / "device"; }
  [[nodiscard]] std::string Contacts() const { return m_session.Folder() / "contacts.vcf"; }
  /// What the programs that ran in the background said.
  [[nodiscard]] std::string Log() const { return m_session.Folder() / "panel.log"; }
  /// A folder of the applet, or a file in one.
  [[nodiscard]] std::filesystem::path Installed(const std::filesystem::path& name) const;
  /// Names without their ending, in order.
  [[nodiscard]] std::vector<std::string> NamesIn(const char* folder) const;
  /// How many tags the settings' database holds.
  [[nodiscard]] std::size_t GetEntryCount() const;

  [[nodiscard]] support::ProgramRun Voxtrel(const std::vector<std::string>& arguments) const;
  void Start(const std::vector<std::string>& program);
  void OpenFromThePanel();

  /// Keeps a picture of the whole screen.
  void Shoot(const std::string& name) const;
  void ClickOn(int id);
  void ChooseContact(int index);
  /// Presses Record, until the window takes it, and says `words`.
  void Learn(const std::string& words);

  SoundSession m_session;
  std::unique_ptr<Screen> m_screen;
  std::unique_ptr<PulseServer> m_server;
  std::unique_ptr<PipeMicrophone> m_microphone;
  std::unique_ptr<BackgroundProgram> m_panel;
  WindowPlace m_sheet;

 private:
  [[nodiscard]] QPoint ToScreen(const resources::DialogRect& place) const;
  [[nodiscard]] bool IsBarShown() const;
};

}  // namespace e2e
