#include "backends/headless/headless_ui.h"

#include <utility>

#include "framework/dialog.h"

// Windows without a screen. A story stands for the user: it is called when a dialog or a sheet is
// open, presses buttons, and its return closes what is still open.
namespace headless {

using platform::MessageAnswer;
using platform::MessageBox;
using platform::MessageCaption;

HeadlessSheet::HeadlessSheet(std::u16string caption, std::span<const platform::SheetPage> pages,
                             platform::SheetHandler& handler, platform::Threads* threads)
    : m_caption(std::move(caption)),
      m_pages(pages.begin(), pages.end()),
      m_handler(handler),
      m_threads(threads),
      m_shown(pages.size()) {
  for (const platform::SheetPage& page : m_pages) {
    m_tabs.emplace_back(page.dialog.caption);
  }
}

HeadlessDialog* HeadlessSheet::ShowPage(std::size_t page) {
  if (page >= m_pages.size()) {
    return nullptr;
  }
  auto& shown = m_shown[page];
  if (!shown) {
    shown =
        std::make_unique<HeadlessDialog>(m_pages[page].dialog, m_pages[page].handler, m_threads);
    // A page is set up when it is first shown, as in a window.
    m_pages[page].handler.OnInitDialog();
    shown->DeliverPosted();
  }
  return shown.get();
}

void HeadlessSheet::AskForHelp() { m_handler.OnHelp(); }

void HeadlessSheet::PressOk() {
  // A page that was never shown was never set up, so it has nothing to take over.
  for (std::size_t page = 0; page < m_pages.size(); ++page) {
    if (m_shown[page]) {
      m_pages[page].handler.OnOK();
    }
  }
  m_isClosed = true;
  m_wasAccepted = true;
}

void HeadlessSheet::Close() { m_isClosed = true; }

void HeadlessSheet::SetTabText(std::size_t tab, std::u16string_view text) {
  if (tab < m_tabs.size()) {
    m_tabs[tab] = text;
  }
}

HeadlessUi::HeadlessUi(std::u16string applicationName, platform::Threads* threads)
    : m_applicationName(std::move(applicationName)), m_threads(threads) {}

MessageAnswer HeadlessUi::ShowMessage(const MessageBox& box) {
  Answerer answerer;
  Listener listener;
  {
    const std::lock_guard lock(m_mutex);
    answerer = m_answerer;
    listener = m_listener;
  }
  // Neither is called with the lock held, since each may show a box itself.
  ShownMessage shown{box, {}, MessageAnswer::kOk};
  if (box.captionKind == MessageCaption::kText) {
    shown.caption = box.caption;
  } else if (box.captionKind == MessageCaption::kApplication) {
    shown.caption = m_applicationName;
  }
  if (answerer) {
    shown.answer = answerer(box);
  }
  {
    const std::lock_guard lock(m_mutex);
    m_messages.push_back(shown);
  }
  if (listener) {
    listener(shown);
  }
  return shown.answer;
}

void HeadlessUi::SetAnswerer(Answerer answerer) {
  const std::lock_guard lock(m_mutex);
  m_answerer = std::move(answerer);
}

void HeadlessUi::SetListener(Listener listener) {
  const std::lock_guard lock(m_mutex);
  m_listener = std::move(listener);
}

std::vector<ShownMessage> HeadlessUi::GetMessages() const {
  const std::lock_guard lock(m_mutex);
  return m_messages;
}

void HeadlessUi::Beep(platform::Sound /*sound*/) {
  const std::lock_guard lock(m_mutex);
  ++m_beeps;
}

void HeadlessUi::SetCursor(platform::Cursor cursor) {
  const std::lock_guard lock(m_mutex);
  m_cursor = cursor;
}

// A modal dialog, from its set-up to its end. Whatever the story leaves undone, the dialog does not
// stay open: a user who does nothing more closes it in the end.
int HeadlessUi::RunDialog(const resources::DialogTemplate& dialog,
                          platform::DialogHandler& handler) {
  HeadlessDialog window(dialog, handler, m_threads);
  handler.OnInitDialog();
  window.DeliverPosted();
  // The story does what a user would do. A dialog without one is waited for: it ends by itself, by
  // its threads.
  const auto story = m_dialogStories.find(dialog.id);
  if (story != m_dialogStories.end() && !window.GetResult()) {
    story->second(window);
  } else {
    static_cast<void>(window.WaitForEnd());
  }
  if (!window.GetResult()) {
    window.Close();
  }
  return window.GetResult().value_or(framework::kIdCancel);
}

bool HeadlessUi::RunSheet(std::u16string_view caption, std::span<const platform::SheetPage> pages,
                          platform::SheetHandler& handler) {
  HeadlessSheet sheet(std::u16string(caption), pages, handler, m_threads);
  handler.OnInitSheet(sheet);
  sheet.ShowPage(0);
  if (m_sheetStory) {
    m_sheetStory(sheet);
  }
  if (!sheet.IsClosed()) {
    sheet.Close();
  }
  return sheet.WasAccepted();
}

void HeadlessUi::SetDialogStory(int dialog, DialogStory story) {
  m_dialogStories[dialog] = std::move(story);
}

void HeadlessUi::SetSheetStory(SheetStory story) { m_sheetStory = std::move(story); }

int HeadlessUi::CountBeeps() const {
  const std::lock_guard lock(m_mutex);
  return m_beeps;
}

platform::Cursor HeadlessUi::GetCursor() const {
  const std::lock_guard lock(m_mutex);
  return m_cursor;
}

}  // namespace headless
