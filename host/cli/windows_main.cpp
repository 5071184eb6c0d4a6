#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "backends/text/utf.h"
#include "backends/win32/system_calls.h"
#include "host/cli/command_line.h"
#include "host/cli/program.h"

// It builds on the header of the calls.
#include <shellapi.h>

namespace {

struct FreeLocally {
  void operator()(wchar_t** words) const { ::LocalFree(static_cast<void*>(words)); }
};

/// The program's own arguments are in the code page of the user, which lacks most letters.
std::vector<std::string> ReadArguments() {
  int count = 0;
  const std::unique_ptr<wchar_t*[], FreeLocally> words(
      ::CommandLineToArgvW(::GetCommandLineW(), &count));
  std::vector<std::string> arguments;
  for (int i = 0; words && i < count; ++i) {
    arguments.push_back(text::ToUtf8(win32::FromWide(words[static_cast<std::size_t>(i)])));
  }
  return arguments;
}

/// The console shows UTF-8 while this exists. Other programs share it.
class Utf8Console {
 public:
  Utf8Console() : m_before(::GetConsoleOutputCP()) { ::SetConsoleOutputCP(CP_UTF8); }
  Utf8Console(const Utf8Console&) = delete;
  Utf8Console& operator=(const Utf8Console&) = delete;
  ~Utf8Console() { ::SetConsoleOutputCP(m_before); }

 private:
  const UINT m_before;
};

}  // namespace

// Ctrl+C ends the process at once, as a signal does on other systems. Every command allows for
// that.
int main() {
  for (std::FILE* const stream : {stdin, stdout, stderr}) {
    ::_setmode(::_fileno(stream), _O_BINARY);  // The same bytes as on every system.
  }
  const Utf8Console console;
  const std::vector<std::string> arguments = ReadArguments();
  std::vector<const char*> pointers;
  for (const std::string& argument : arguments) {
    pointers.push_back(argument.c_str());
  }
  pointers.push_back(nullptr);
  return cli::RunGuarded(static_cast<int>(arguments.size()), pointers.data(), cli::RunCommandLine);
}
