#include "platform/headless/headless_ui.h"

#include <utility>

namespace headless {

using platform::MessageAnswer;
using platform::MessageBox;
using platform::MessageCaption;

HeadlessUi::HeadlessUi(std::u16string applicationName)
    : m_applicationName(std::move(applicationName)) {}

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

}  // namespace headless
