#include "backends/headless/headless_process.h"

namespace headless {

void HeadlessProcess::End(int exitCode) {
  const std::lock_guard lock(m_mutex);
  if (!m_exitCode) {
    m_exitCode = exitCode;
  }
}

std::optional<int> HeadlessProcess::GetExitCode() const {
  const std::lock_guard lock(m_mutex);
  return m_exitCode;
}

}  // namespace headless
