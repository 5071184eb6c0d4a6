#include "backends/headless/headless_ui.h"

#include <utility>

#include "framework/dialog.h"

namespace headless {

using platform::MessageAnswer;
using platform::MessageBox;
using platform::MessageCaption;

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

int HeadlessUi::RunDialog(const resources::DialogTemplate& dialog,
                          platform::DialogHandler& handler) {
  HeadlessDialog window(dialog, handler, m_threads);
  handler.OnInitDialog();
  window.DeliverPosted();
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
