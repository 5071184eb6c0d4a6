#include "backends/headless/headless_system.h"

namespace headless {

void HeadlessProcess::End(int exitCode) {
  const std::lock_guard lock(m_mutex);
  // The first end counts. In a real process nothing would come after it.
  if (!m_exitCode) {
    m_exitCode = exitCode;
  }
}

std::optional<int> HeadlessProcess::GetExitCode() const {
  const std::lock_guard lock(m_mutex);
  return m_exitCode;
}

void HeadlessShell::StartProgram(std::u16string_view program, std::u16string_view commandLine) {
  m_requests.push_back({{}, std::u16string(program), std::u16string(commandLine)});
}

void HeadlessShell::Execute(std::u16string_view verb, std::u16string_view file,
                            std::u16string_view parameters) {
  m_requests.push_back({std::u16string(verb), std::u16string(file), std::u16string(parameters)});
}

}  // namespace headless
