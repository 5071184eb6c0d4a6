#include "backends/headless/headless_shell.h"

namespace headless {

void HeadlessShell::StartProgram(std::u16string_view program, std::u16string_view commandLine) {
  m_requests.push_back({{}, std::u16string(program), std::u16string(commandLine)});
}

void HeadlessShell::Execute(std::u16string_view verb, std::u16string_view file,
                            std::u16string_view parameters) {
  m_requests.push_back({std::u16string(verb), std::u16string(file), std::u16string(parameters)});
}

}  // namespace headless
