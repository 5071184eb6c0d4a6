#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "backends/headless/headless_dialog.h"
#include "backends/headless/headless_sheet.h"
#include "platform/ui.h"

namespace headless {

/// One message box that was shown.
struct ShownMessage {
  platform::MessageBox box;
  std::u16string caption;  ///< As a window would show it, wherever it comes from.
  platform::MessageAnswer answer = platform::MessageAnswer::kOk;
};

/// The user interface without a screen. Message boxes are remembered, told to a listener and
/// answered at once. Dialogs and sheets are played: a story, set for each dialog beforehand, does
/// what a user would.
class HeadlessUi final : public platform::Ui {
 public:
  using Answerer = std::function<platform::MessageAnswer(const platform::MessageBox&)>;
  using Listener = std::function<void(const ShownMessage&)>;

  using DialogStory = std::function<void(HeadlessDialog&)>;
  using SheetStory = std::function<void(HeadlessSheet&)>;

  /// `applicationName` is the caption of the framework's plain boxes. `threads`, where given,
  /// serves dialogs that end by themselves.
  explicit HeadlessUi(std::u16string applicationName = {}, platform::Threads* threads = nullptr);

  platform::MessageAnswer ShowMessage(const platform::MessageBox& box) override;
  void Beep(platform::Sound sound) override;
  void SetCursor(platform::Cursor cursor) override;
  /// Without a story the user only waits for the end of the dialog, and closes it where nothing
  /// can end it.
  [[nodiscard]] int RunDialog(const resources::DialogTemplate& dialog,
                              platform::DialogHandler& handler) override;
  /// Without a story, or where it leaves the sheet open, the user closes the sheet.
  [[nodiscard]] bool RunSheet(std::u16string_view caption,
                              std::span<const platform::SheetPage> pages,
                              platform::SheetHandler& handler) override;

  /// Serves dialogs that end by themselves from now on; outlives them.
  void UseThreads(platform::Threads& threads) { m_threads = &threads; }

  /// What is done with the dialog of that number whenever it is shown, and with any sheet.
  void SetDialogStory(int dialog, DialogStory story);
  void SetSheetStory(SheetStory story);

  /// Both are called on the thread that shows the box, and may themselves show one. Without an
  /// answerer every box is answered with OK.
  void SetAnswerer(Answerer answerer);
  void SetListener(Listener listener);

  /// Every box so far, in the order in which they were answered.
  [[nodiscard]] std::vector<ShownMessage> GetMessages() const;

  [[nodiscard]] int CountBeeps() const;
  [[nodiscard]] platform::Cursor GetCursor() const;

 private:
  const std::u16string m_applicationName;
  mutable std::mutex m_mutex;
  Answerer m_answerer;
  Listener m_listener;
  std::vector<ShownMessage> m_messages;
  int m_beeps = 0;
  platform::Cursor m_cursor = platform::Cursor::kNormal;
  platform::Threads* m_threads;
  std::map<int, DialogStory> m_dialogStories;
  SheetStory m_sheetStory;
};

}  // namespace headless
