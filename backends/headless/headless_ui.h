#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "backends/headless/headless_dialog.h"
#include "platform/dialog.h"
#include "platform/ui.h"

namespace headless {

/// A property sheet without a window. A program does to it what a user would do.
class HeadlessSheet final : public platform::SheetWindow {
 public:
  HeadlessSheet(std::u16string caption, std::span<const platform::SheetPage> pages,
                platform::SheetHandler& handler, platform::Threads* threads);

  /// Turns to a page and sets it up if it is shown for the first time. Returns null if there is no
  /// such page.
  HeadlessDialog* ShowPage(std::size_t page);
  void AskForHelp();
  /// Closes the sheet. Every page that was set up gets its OnOK.
  void PressOk();
  void Close();

  [[nodiscard]] const std::u16string& GetCaption() const { return m_caption; }
  [[nodiscard]] const std::vector<std::u16string>& GetTabTexts() const { return m_tabs; }
  [[nodiscard]] bool IsClosed() const { return m_isClosed; }
  [[nodiscard]] bool WasAccepted() const { return m_wasAccepted; }

  void SetTabText(std::size_t tab, std::u16string_view text) override;

 private:
  std::u16string m_caption;
  std::vector<platform::SheetPage> m_pages;
  platform::SheetHandler& m_handler;
  platform::Threads* m_threads;
  std::vector<std::u16string> m_tabs;
  std::vector<std::unique_ptr<HeadlessDialog>> m_shown;  ///< Null if the page is not yet set up.
  bool m_isClosed = false;
  bool m_wasAccepted = false;
};

/// One message box that was shown.
struct ShownMessage {
  platform::MessageBox box;
  std::u16string caption;  ///< As a window would show it.
  platform::MessageAnswer answer = platform::MessageAnswer::kOk;
};

/// The user interface without a screen. It remembers message boxes, reports them to a listener and
/// answers them at once. It plays dialogs and sheets: a story, which is set for each of them before
/// it is shown, does what a user would do. So the command line and the tests run the real pages.
class HeadlessUi final : public platform::Ui {
 public:
  using Answerer = std::function<platform::MessageAnswer(const platform::MessageBox&)>;
  using Listener = std::function<void(const ShownMessage&)>;

  using DialogStory = std::function<void(HeadlessDialog&)>;
  using SheetStory = std::function<void(HeadlessSheet&)>;

  /// `applicationName` is the caption of the framework's plain boxes. `threads` serves
  /// dialogs that end by themselves; null if there are none.
  explicit HeadlessUi(std::u16string applicationName = {}, platform::Threads* threads = nullptr);

  platform::MessageAnswer ShowMessage(const platform::MessageBox& box) override;
  void Beep(platform::Sound sound) override;
  void SetCursor(platform::Cursor cursor) override;
  /// Without a story the user waits for the end of the dialog, and closes it if nothing can end it.
  [[nodiscard]] int RunDialog(const resources::DialogTemplate& dialog,
                              platform::DialogHandler& handler) override;
  /// The user closes the sheet if there is no story, or if it leaves the sheet open.
  [[nodiscard]] bool RunSheet(std::u16string_view caption,
                              std::span<const platform::SheetPage> pages,
                              platform::SheetHandler& handler) override;

  /// From now on `threads` serves dialogs that end by themselves. It outlives this object.
  void UseThreads(platform::Threads& threads) { m_threads = &threads; }

  /// Sets what is done whenever the dialog of that number, or any sheet, is shown.
  void SetDialogStory(int dialog, DialogStory story);
  void SetSheetStory(SheetStory story);

  /// Both are called on the thread that shows the box, and may show a box themselves. Without an
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
