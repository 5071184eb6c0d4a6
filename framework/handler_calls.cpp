#include "framework/handler_calls.h"

#include <utility>

namespace framework {

void HandlerCalls::Make(const std::function<void()>& call) {
  ++m_depth;
  call();
  --m_depth;
  if (m_depth == 0 && !m_posted.empty()) {
    m_wake();
  }
}

// An empty call: if nothing else goes on, its end has the command delivered.
void HandlerCalls::Post(int id) {
  m_posted.push_back(id);
  Make([] {});
}

void HandlerCalls::Deliver() {
  if (m_depth > 0) {
    return;
  }
  while (!m_posted.empty() && !m_result) {
    const int id = m_posted.front();
    m_posted.pop_front();
    ++m_depth;
    m_handler.OnCommand(id, platform::CommandEvent::kPosted);
    --m_depth;
  }
}

bool HandlerCalls::End(int result) {
  if (m_result) {
    return false;
  }
  m_result = result;
  return true;
}

}  // namespace framework
