#include "maintenance/test_dialog.h"

#include <cstdint>
#include <optional>
#include <utility>

#include "framework/dialog.h"
#include "maintenance/comparison_dialog.h"
#include "maintenance/maintenance_dialog.h"
#include "resources/dialogs.h"
#include "resources/fault_strings.h"
#include "resources/strings.h"
#include "resources/translations.h"

namespace maintenance {
namespace {

constexpr int kFirstExtent = 100;
constexpr int kExtentAfterLine = 20;  ///< Room to the right of the longest line.

constexpr std::u16string_view kHelpViewer = u"peghelp.exe";
constexpr std::u16string_view kHelpCommandLine = u"file:ZedraVoxtrelPE_help.htm#test";

/// After so long a wait a box says what the user waits for.
constexpr std::uint32_t kQuietMilliseconds = 1000;

/// Stops a search after a second. What it has found by then is thrown away: a search that goes on
/// takes many times as long.
voicemath::SearchWatch ForASecond(platform::Clock& clock) {
  return [&clock, begin = clock.GetTickCount()](double) {
    return clock.GetTickCount() - begin < kQuietMilliseconds;
  };
}

}  // namespace

TestDialog::TestDialog(const platform::Platform& platform, language::Texts texts)
    : CDialog(resources::kTestResultsDialog, platform.ui), m_platform(platform), m_texts(texts) {}

bool TestDialog::OnInitDialog() {
  CDialog::OnInitDialog();
  // The dialog belongs to the page and is shown again and again.
  m_lines.clear();
  m_isComplete = true;
  const std::u16string message = Compare();
  if (!message.empty()) {
    m_isComplete = false;
    m_platform.ui.ShowMessage(platform::ApplicationBox(message));
  }
  return true;
}

// Tags of usual lengths are compared before the user could notice, so the search runs right here
// for a second. Only if it takes longer does it begin again on a thread, while a box shows a bar.
std::u16string TestDialog::Compare() {
  std::optional<framework::WaitCursor> wait(std::in_place, m_platform.ui);
  if (m_page == nullptr || m_page->GetTags().tagCount < 2) {
    return {};
  }
  GetWindow().SetHorizontalExtent(resources::kTestListId, kFirstExtent);
  const storage::TagTable& tags = m_page->GetTags();
  voicemath::CVoiceMathematics& mathematics = m_page->GetMathematics();
  TemplateLoader loader(m_platform, m_texts, mathematics);
  const auto loaded = loader.Load(tags);
  if (!loaded) {
    return {};  // The process has ended.
  }
  const auto count = static_cast<std::int32_t>(loaded->tags.size());
  FoundNeighbours found = FindNearest(mathematics, count, ForASecond(m_platform.clock));
  if (!found) {
    // The box is the user's to press, so the cursor must not say "wait" above it.
    wait.reset();
    ComparisonDialog box(m_platform, mathematics, count);
    if (box.DoModal() != framework::kIdOk) {
      return std::u16string(resources::Say(resources::kTestCancelled));
    }
    wait.emplace(m_platform.ui);
    found = box.GetFound();
  }
  m_lines = ToTestLines(tags, *loaded, *found);
  ShowLines();
  return UnreadTagsMessage(tags, *loaded);
}

void TestDialog::ShowLines() {
  platform::DialogWindow& window = GetWindow();
  int extent = kFirstExtent;
  for (const TestLine& line : m_lines) {
    // The list scrolls sideways as far as its longest line and a little more.
    const int width = window.GetTextWidth(resources::kTestListId, line.text);
    if (width > extent) {
      extent = width + kExtentAfterLine;
      window.SetHorizontalExtent(resources::kTestListId, extent);
    }
    window.AddItem(resources::kTestListId, line.text);
  }
}

void TestDialog::OnCommand(int id, platform::CommandEvent event) {
  if (id == resources::kTestHelpId && event == platform::CommandEvent::kClick) {
    OnHelp();
  }
}

bool TestDialog::OnHelp() {
  m_platform.shell.StartProgram(kHelpViewer, kHelpCommandLine);
  return true;
}

void TestDialog::OnPaint(platform::Canvas& canvas) {
  PaintHeader(canvas, m_texts(resources::kTestTitle));
}

}  // namespace maintenance
