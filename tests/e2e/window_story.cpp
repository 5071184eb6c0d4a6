#include "tests/e2e/window_story.h"

#include <algorithm>
#include <fstream>
#include <thread>

#include "backends/qt/look.h"
#include "platform/dialog.h"
#include "tests/e2e/speech.h"
#include "tests/e2e/text_file.h"

namespace e2e {
namespace {

using std::chrono::steady_clock;

constexpr const char* kCards =
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:a\r\nN:Lee;Ann;;;\r\nFN:Ann Lee\r\n"
    "TEL;TYPE=CELL:5551234\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:b\r\nN:Ray;Bob;;;\r\nFN:Bob Ray\r\n"
    "TEL;TYPE=HOME:5550001\r\nTEL;TYPE=CELL:5550002\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:c\r\nN:Stone;Carla;;;\r\nFN:Carla Stone\r\n"
    "TEL;TYPE=WORK:5550003\r\nEND:VCARD\r\n";

const std::vector<std::byte> kHum{std::byte{9}, std::byte{0}, std::byte{246}, std::byte{255}};

}  // namespace

bool Await(std::chrono::milliseconds limit, const std::function<bool()>& holds) {
  const auto deadline = steady_clock::now() + limit;
  while (!holds()) {
    if (steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return true;
}

void WindowStory::SetUp() {
  std::ofstream(Contacts()) << kCards;
  m_screen = Screen::Start(m_session);
  m_server = PulseServer::Start(m_session, {.input = PulseInput::kPipeBesideMonitor});
  ASSERT_TRUE(m_screen && m_server);
  m_microphone = std::make_unique<PipeMicrophone>(m_server->Pipe(), 11025, 1, kHum);
  m_session.SetVariable("VOXTREL_ROOT", Root());
  m_session.SetVariable("VOXTREL_CONTACTS", Contacts());
}

std::filesystem::path WindowStory::Installed(const std::filesystem::path& name) const {
  return std::filesystem::path(Root()) / "Program Files/Zedra Tech./Zedra Voxtrel" / name;
}

std::vector<std::string> WindowStory::NamesIn(const char* folder) const {
  std::vector<std::string> names;
  std::error_code none;
  for (const auto& entry : std::filesystem::directory_iterator(Installed(folder), none)) {
    names.push_back(entry.path().stem());
  }
  std::ranges::sort(names);
  return names;
}

std::size_t WindowStory::GetEntryCount() const {
  const std::string database = Root() + "/registry.db";
  const auto run =
      support::RunProgram({"sqlite3", "-readonly", "-cmd", ".timeout 5000", database,
                           "SELECT count(*) FROM registry_value WHERE name = 'phone type'"});
  return run.out.empty() ? 0 : std::stoul(run.out);
}

support::ProgramRun WindowStory::Voxtrel(const std::vector<std::string>& arguments) const {
  std::vector<std::string> all{VOXTREL_PROGRAM, "--root", Root(), "--contacts", Contacts()};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return support::RunProgram(all);
}

void WindowStory::Start(const std::vector<std::string>& program) {
  m_panel = std::make_unique<BackgroundProgram>(program, Log());
}

void WindowStory::Shoot(const std::string& name) const {
  m_screen->Shoot(std::filesystem::path(VOXTREL_SCREENS_DIR) / (name + ".png"));
}

void WindowStory::OpenFromThePanel() {
  Start({VOXTREL_PANEL, VOXTREL_APPLET});
  ASSERT_FALSE(m_screen->AwaitWindow("Control Panel").id.empty());
  // The applet is asked for its name and icon before it is there to be opened.
  ASSERT_TRUE(Await(std::chrono::seconds(120), [this] {
    m_screen->Press({"Home", "Return"});
    return Await(std::chrono::seconds(3), [this] { return m_screen->HasWindow("Property"); });
  })) << ReadText(Log());
  m_sheet = m_screen->AwaitWindow("Property");
}

/// The middle of a place of the Learning page, on the screen.
QPoint WindowStory::ToScreen(const resources::DialogRect& place) const {
  const auto& dialog = resources::kLearningDialog;
  const QRect rect = qt::ToDesktop(platform::ToPixels(place));
  const QRect page = qt::ToDesktop(platform::ToPixels({0, 0, dialog.width, dialog.height}));
  // The page stands in the middle of the sheet, above the row of its button.
  constexpr int kBelowPage = 53;
  const int left = m_sheet.left + (m_sheet.width - page.width()) / 2;
  const int top = m_sheet.top + m_sheet.height - kBelowPage - page.height();
  return QPoint(left, top) + rect.center();
}

/// From the press of Record until the name was heard again the page shows a bar, and takes no
/// input.
bool WindowStory::IsBarShown() const {
  const QPoint bar = ToScreen({100, 48, 4, 13});
  const QPoint blank = ToScreen({100, 152, 4, 8});
  return m_screen->GetColor(bar.x(), bar.y()) != m_screen->GetColor(blank.x(), blank.y());
}

void WindowStory::ClickOn(int id) {
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

void WindowStory::ChooseContact(int index) {
  ClickOn(resources::kContactComboId);
  std::vector<std::string> keys{"Home"};
  keys.insert(keys.end(), static_cast<std::size_t>(index), "Down");
  keys.emplace_back("Return");
  m_screen->Press(keys);
}

void WindowStory::Learn(const std::string& words) {
  const auto sound = Speak(m_session.Folder(), words, 11025, 1);
  const std::size_t before = NamesIn("Voxtrel_wav").size();
  ASSERT_TRUE(Await(std::chrono::seconds(120), [&] {
    ClickOn(resources::kRecordButtonId);
    // The recording itself has no name before it is whole.
    return Await(std::chrono::seconds(2), [this] { return IsBarShown(); });
  }));
  m_microphone->Hear(sound);
  ASSERT_TRUE(Await(std::chrono::seconds(120), [&] {
    return NamesIn("Voxtrel_stor").size() > before && GetEntryCount() > before;
  }));
  ASSERT_TRUE(Await(std::chrono::seconds(120), [this] { return !IsBarShown(); }));
}

}  // namespace e2e
