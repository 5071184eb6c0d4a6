#include "backends/win32/win32_process.h"

#include <cstddef>
#include <cstdio>

#include "backends/text/utf.h"
#include "backends/win32/system_calls.h"

namespace win32 {
namespace {

/// A program takes a backslash for itself, unless quotation marks follow it.
std::u16string Quote(const std::u16string& word) {
  std::u16string quoted = u"\"";
  std::size_t backslashes = 0;
  for (const char16_t unit : word) {
    if (unit == u'"') {
      quoted.append(backslashes + 1, u'\\');
    }
    backslashes = unit == u'\\' ? backslashes + 1 : 0;
    quoted += unit;
  }
  return quoted.append(backslashes, u'\\') + u'"';
}

}  // namespace

void Win32Process::End(int exitCode) {
  std::fflush(stdout);
  std::fflush(stderr);
  // ExitProcess would call every library while other threads may still hold its locks.
  ::TerminateProcess(::GetCurrentProcess(), static_cast<UINT>(exitCode));
}

std::u16string JoinCommandLine(const std::vector<std::u16string>& words) {
  std::u16string line;
  for (const std::u16string& word : words) {
    line += (line.empty() ? u"" : u" ") + Quote(word);
  }
  return line;
}

platform::Result<std::uint32_t, std::uint32_t> RunInForeground(
    const std::filesystem::path& program, const std::vector<std::string>& arguments) {
  std::vector<std::u16string> words{program.u16string()};
  for (const std::string& argument : arguments) {
    words.push_back(text::FromUtf8(argument));
  }
  std::u16string line = JoinCommandLine(words);
  // The program has the standard streams of this one: handles are inherited.
  STARTUPINFOW start{};
  start.cb = sizeof(start);
  PROCESS_INFORMATION made{};
  if (::CreateProcessW(program.c_str(), ToWide(line.data()), nullptr, nullptr, TRUE, 0, nullptr,
                       nullptr, &start, &made) == FALSE) {
    return platform::Failure<std::uint32_t>(::GetLastError());
  }
  const Handle thread(made.hThread);
  const Handle process(made.hProcess);
  DWORD exitCode = 0;
  if (::WaitForSingleObject(process.Get(), INFINITE) != WAIT_OBJECT_0 ||
      ::GetExitCodeProcess(process.Get(), &exitCode) == FALSE) {
    return platform::Failure<std::uint32_t>(::GetLastError());
  }
  return exitCode;
}

}  // namespace win32
