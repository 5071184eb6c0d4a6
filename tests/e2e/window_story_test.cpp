#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "platform/dialog_units.h"
#include "platform/qt/scale.h"
#include "resources/dialogs.h"
#include "tests/e2e/background_program.h"
#include "tests/e2e/pipe_microphone.h"
#include "tests/e2e/pulse_server.h"
#include "tests/e2e/screen.h"
#include "tests/e2e/sound_session.h"
#include "tests/e2e/speech.h"
#include "tests/e2e/text_file.h"
#include "tests/support/run_program.h"

namespace {

using e2e::BackgroundProgram;
using e2e::PipeMicrophone;
using e2e::PulseInput;
using e2e::PulseServer;
using e2e::Screen;
using e2e::WindowPlace;
using std::chrono::steady_clock;
using testing::ElementsAre;

constexpr const char* kCards =
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:a\r\nN:Lee;Ann;;;\r\nFN:Ann Lee\r\n"
    "TEL;TYPE=CELL:5551234\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:b\r\nN:Ray;Bob;;;\r\nFN:Bob Ray\r\n"
    "TEL;TYPE=HOME:5550001\r\nTEL;TYPE=CELL:5550002\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:c\r\nN:Stone;Carla;;;\r\nFN:Carla Stone\r\n"
    "TEL;TYPE=WORK:5550003\r\nEND:VCARD\r\n";

const std::vector<std::byte> kHum{std::byte{9}, std::byte{0}, std::byte{246}, std::byte{255}};

/// Whether `holds` came true within a bounded time.
bool Await(std::chrono::milliseconds limit, const std::function<bool()>& holds) {
  const auto deadline = steady_clock::now() + limit;
  while (!holds()) {
    if (steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return true;
}

/// The program as a user has it: the control panel on a display, a sound server with a microphone,
/// a file of contacts.
class WindowStory : public testing::Test {
 protected:
  void SetUp() override {
    std::ofstream(Contacts()) << kCards;
    m_screen = Screen::Start(m_session);
    m_server = PulseServer::Start(m_session, {.input = PulseInput::kPipeBesideMonitor});
    ASSERT_TRUE(m_screen && m_server);
    m_microphone = std::make_unique<PipeMicrophone>(m_server->Pipe(), 11025, 1, kHum);
    m_session.SetVariable("VOXTREL_ROOT", Root());
    m_session.SetVariable("VOXTREL_CONTACTS", Contacts());
  }

  [[nodiscard]] std::string Root() const { return m_session.Folder() / "device"; }
  [[nodiscard]] std::string Contacts() const { return m_session.Folder() / "contacts.vcf"; }

  [[nodiscard]] std::filesystem::path Installed(const char* folder) const {
    return std::filesystem::path(Root()) / "Program Files/Zedra Tech./Zedra Voxtrel" / folder;
  }

  /// Names without their ending, in order.
  [[nodiscard]] std::vector<std::string> NamesIn(const char* folder) const {
    std::vector<std::string> names;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(Installed(folder), none)) {
      names.push_back(entry.path().stem());
    }
    std::ranges::sort(names);
    return names;
  }

  void Shoot(const std::string& name) const {
    m_screen->Shoot(std::filesystem::path(VOXTREL_SCREENS_DIR) / (name + ".png"));
  }

  void OpenFromThePanel() {
    m_panel = std::make_unique<BackgroundProgram>(
        std::vector<std::string>{VOXTREL_PANEL, VOXTREL_APPLET}, m_session.Folder() / "panel.log");
    ASSERT_FALSE(m_screen->AwaitWindow("Control Panel").id.empty());
    // The applet is asked for its name and icon before it is there to be opened.
    ASSERT_TRUE(Await(std::chrono::seconds(30), [this] {
      m_screen->Press({"Home", "Return"});
      return Await(std::chrono::seconds(3), [this] { return m_screen->HasWindow("Property"); });
    })) << e2e::ReadText(m_session.Folder() / "panel.log");
    m_sheet = m_screen->AwaitWindow("Property");
  }

  /// The middle of a place of the Learning page, on the screen.
  [[nodiscard]] QPoint ToScreen(const resources::DialogRect& place) const {
    const auto& dialog = resources::kLearningDialog;
    const QRect rect = qt::ToDesktop(platform::ToPixels(place));
    const QRect page = qt::ToDesktop(platform::ToPixels({0, 0, dialog.width, dialog.height}));
    // The page stands in the middle of the sheet, above the row of its button.
    constexpr int kBelowPage = 53;
    const int left = m_sheet.left + (m_sheet.width - page.width()) / 2;
    const int top = m_sheet.top + m_sheet.height - kBelowPage - page.height();
    return QPoint(left, top) + rect.center();
  }

  void ClickOn(int id) {
    const auto& controls = resources::kLearningDialog.controls;
    const auto control = std::ranges::find(controls, id, &resources::ControlTemplate::id);
    ASSERT_NE(control, controls.end());
    resources::DialogRect place = control->rect;
    if (control->kind == resources::ControlKind::kComboBox ||
        control->kind == resources::ControlKind::kSortedComboBox) {
      place.height = 12;  // Closed.
    }
    const QPoint point = ToScreen(place);
    m_screen->Click(point.x(), point.y());
  }

  /// From the press of Record until the name was heard again the page shows a bar, and takes no
  /// input.
  [[nodiscard]] bool IsBarShown() const {
    const QPoint bar = ToScreen({100, 48, 4, 13});
    const QPoint blank = ToScreen({100, 152, 4, 8});
    return m_screen->GetColor(bar.x(), bar.y()) != m_screen->GetColor(blank.x(), blank.y());
  }

  void ChooseContact(int index) {
    ClickOn(resources::kContactComboId);
    std::vector<std::string> keys{"Home"};
    keys.insert(keys.end(), static_cast<std::size_t>(index), "Down");
    keys.emplace_back("Return");
    m_screen->Press(keys);
  }

  /// Presses Record, until the window takes it, and says `words`.
  void Learn(const std::string& words) {
    const auto sound = e2e::Speak(m_session.Folder(), words, 11025, 1);
    const std::size_t before = NamesIn("Voxtrel_wav").size();
    ASSERT_TRUE(Await(std::chrono::seconds(60), [&] {
      ClickOn(resources::kRecordButtonId);
      return Await(std::chrono::seconds(2), [&] { return NamesIn("Voxtrel_wav").size() > before; });
    }));
    m_microphone->Hear(sound);
    ASSERT_TRUE(Await(std::chrono::seconds(60), [&] {
      return NamesIn("Voxtrel_stor").size() > before && GetEntryCount() > before;
    }));
    ASSERT_TRUE(Await(std::chrono::seconds(60), [this] { return !IsBarShown(); }));
  }

  [[nodiscard]] support::ProgramRun Voxtrel(const std::vector<std::string>& arguments) const {
    std::vector<std::string> all{VOXTREL_PROGRAM, "--root", Root(), "--contacts", Contacts()};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return support::RunProgram(all);
  }

  /// How many tags the settings' database holds.
  [[nodiscard]] std::size_t GetEntryCount() const {
    const std::string database = Root() + "/registry.db";
    const auto run =
        support::RunProgram({"sqlite3", "-readonly", "-cmd", ".timeout 5000", database,
                             "SELECT count(*) FROM registry_value WHERE name = 'phone type'"});
    return run.out.empty() ? 0 : std::stoul(run.out);
  }

  e2e::SoundSession m_session;
  std::unique_ptr<Screen> m_screen;
  std::unique_ptr<PulseServer> m_server;
  std::unique_ptr<PipeMicrophone> m_microphone;
  std::unique_ptr<BackgroundProgram> m_panel;
  WindowPlace m_sheet;
};

TEST_F(WindowStory, ThreeNamesAreLearnedByClicksOnTheRealWindow) {
  OpenFromThePanel();
  if (HasFatalFailure()) return;
  Shoot("opened");
  const std::vector<std::string> words = {"Ann Lee", "Robert Ray", "Carla Stone"};
  for (std::size_t i = 0; i < words.size(); ++i) {
    ChooseContact(static_cast<int>(i));
    Learn(words[i]);
    if (HasFatalFailure()) {
      Shoot("failed");
      return;
    }
  }
  Shoot("learned");

  const auto names = NamesIn("Voxtrel_wav");
  EXPECT_EQ(names.size(), 3U);
  EXPECT_EQ(NamesIn("Voxtrel_stor"), names);
  EXPECT_EQ(GetEntryCount(), 3U);

  // Closing the sheet lets others have the tags.
  ASSERT_TRUE(Await(std::chrono::seconds(60), [this] {
    m_screen->Press({"Escape"});
    return Await(std::chrono::seconds(2), [this] { return !m_screen->HasWindow("Property"); });
  }));
  const auto list = Voxtrel({"--json", "tags", "list"});
  ASSERT_EQ(list.exitCode, 0) << list.err;
  std::vector<std::string> texts;
  for (const auto& tag : nlohmann::json::parse(list.out)) {
    texts.push_back(tag.at("text").get<std::string>());
    // Recordings are trimmed to the name: shorter than the three seconds.
    EXPECT_LT(std::filesystem::file_size(tag.at("wave").get<std::string>()), 66'194U);
  }
  EXPECT_THAT(texts,
              ElementsAre("Ann Lee 5551234 M", "Bob Ray 5550001 H", "Carla Stone 5550003 B"));
}

TEST_F(WindowStory, TheConnectionSettingsHaveASheetOfTheirOwnWhoseOkStoresThem) {
  m_panel = std::make_unique<BackgroundProgram>(
      std::vector<std::string>{VOXTREL_PROGRAM, "--root", Root(), "connection"},
      m_session.Folder() / "panel.log");
  m_sheet = m_screen->AwaitWindow("Property");
  ASSERT_FALSE(m_sheet.id.empty()) << e2e::ReadText(m_session.Folder() / "panel.log");
  Shoot("connection");
  // OK stands in the lower right corner.
  m_screen->Click(m_sheet.left + m_sheet.width - 50, m_sheet.top + m_sheet.height - 25);
  ASSERT_TRUE(Await(std::chrono::seconds(30), [this] { return m_panel->HasEnded(); }));
  const auto stored = support::RunProgram(
      {"sqlite3", "-readonly", Root() + "/registry.db",
       "SELECT name FROM registry_value WHERE name IN ('Bound_rate', 'Data_bit', 'Stop_bit', "
       "'Flow_control') ORDER BY name"});
  EXPECT_EQ(stored.out, "Bound_rate\nData_bit\nFlow_control\nStop_bit\n") << stored.err;
}

TEST_F(WindowStory, AnOtherMathematicsComputesAllTemplatesAnewBeforeTheEyesOfTheUser) {
  for (const std::string name : {"anna", "robert", "sophie"}) {
    const auto run = support::RunProgram(
        {VOXTREL_PROGRAM, "--root", Root(), "--contacts", VOXTREL_SAMPLES_DIR "/contacts.vcf",
         "--microphone", VOXTREL_SAMPLES_DIR "/" + name + "_1.wav", "--speaker",
         m_session.Folder() / "heard.wav", "tags", "learn", "--contact", name});
    ASSERT_EQ(run.exitCode, 0) << run.err;
  }
  m_session.SetVariable("VOXTREL_CONTACTS", VOXTREL_SAMPLES_DIR "/contacts.vcf");
  const auto templates = NamesIn("Voxtrel_stor");
  ASSERT_EQ(templates.size(), 3U);
  std::filesystem::remove(Installed("Voxtrel_stor") / (templates[1] + ".st"));
  const auto other = support::RunProgram(
      {"sqlite3", Root() + "/registry.db",
       "UPDATE registry_value SET data = x'32000000' WHERE name = 'Version_Math'"});
  ASSERT_EQ(other.exitCode, 0) << other.err;

  m_panel = std::make_unique<BackgroundProgram>(
      std::vector<std::string>{VOXTREL_PANEL, "--open", VOXTREL_APPLET},
      m_session.Folder() / "panel.log");
  ASSERT_FALSE(m_screen->AwaitWindow("Reinitialization").id.empty());
  ASSERT_TRUE(Await(std::chrono::seconds(30), [&] {
    return std::filesystem::exists(Installed("Voxtrel_stor") / (templates[0] + ".st"));
  }));
  Shoot("reinitialization");
  ASSERT_TRUE(
      Await(std::chrono::seconds(60), [this] { return !m_screen->HasWindow("Reinitialization"); }));
  EXPECT_EQ(NamesIn("Voxtrel_stor"), templates);
  m_sheet = m_screen->AwaitWindow("Property");
  ClickOn(resources::kTestButtonId);
  ASSERT_FALSE(m_screen->AwaitWindow("Test").id.empty());
  Shoot("test");
}

}  // namespace
