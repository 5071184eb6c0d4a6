#include <windows.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include "backends/text/host_path.h"
#include "tests/support/run_program.h"
#include "tests/support/temp_folder.h"

namespace support {
namespace {

constexpr int kNoSuchProgram = 127;  ///< As a shell answers.

std::wstring ToWide(const std::string& utf8) { return text::ToHostPath(utf8).wstring(); }

/// Every argument in quotation marks. A program takes a backslash for itself, unless quotation
/// marks follow it.
std::wstring JoinArguments(const std::vector<std::string>& arguments) {
  std::wstring line;
  for (const std::string& argument : arguments) {
    std::size_t backslashes = 0;
    line += line.empty() ? L"\"" : L" \"";
    for (const wchar_t unit : ToWide(argument)) {
      if (unit == L'"') {
        line.append(backslashes + 1, L'\\');
      }
      backslashes = unit == L'\\' ? backslashes + 1 : 0;
      line += unit;
    }
    line.append(backslashes, L'\\').append(1, L'"');
  }
  return line;
}

/// This program's environment and `added`. Of a name that occurs again the last value counts.
std::wstring EnvironmentWith(const std::vector<std::string>& added) {
  std::map<std::wstring, std::wstring> values;
  const auto add = [&values](const std::wstring& entry) {
    values[entry.substr(0, entry.find(L'=', 1))] = entry;
  };
  wchar_t* const own = ::GetEnvironmentStringsW();
  for (const wchar_t* entry = own; *entry != L'\0'; entry += std::wstring(entry).size() + 1) {
    add(entry);
  }
  ::FreeEnvironmentStringsW(own);
  for (const std::string& entry : added) {
    add(ToWide(entry));
  }
  std::wstring block;
  for (const auto& [name, entry] : values) {
    block.append(entry).append(1, L'\0');
  }
  return block.append(1, L'\0');
}

/// A file that another program may inherit and write.
HANDLE OpenFor(const std::filesystem::path& path, DWORD access) {
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  return ::CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                       access == GENERIC_READ ? OPEN_EXISTING : CREATE_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

std::string ReadAll(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

ProgramRun RunProgram(const std::vector<std::string>& arguments,
                      const std::vector<std::string>& environment) {
  const TempFolder folder;
  const std::filesystem::path out = folder.Path() / "out";
  const std::filesystem::path err = folder.Path() / "err";
  STARTUPINFOW start{};
  start.cb = sizeof(start);
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = OpenFor("NUL", GENERIC_READ);
  start.hStdOutput = OpenFor(out, GENERIC_WRITE);
  start.hStdError = OpenFor(err, GENERIC_WRITE);
  std::wstring line = JoinArguments(arguments);
  std::wstring block = EnvironmentWith(environment);
  PROCESS_INFORMATION made{};
  ProgramRun run;
  // Wine at times fails to start one of many programs, and calls that an internal error.
  constexpr int kTries = 10;
  BOOL isStarted = FALSE;
  DWORD error = ERROR_INTERNAL_ERROR;
  for (int i = 0; i < kTries && isStarted == FALSE && error == ERROR_INTERNAL_ERROR; ++i) {
    isStarted = ::CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE,
                                 CREATE_UNICODE_ENVIRONMENT, block.data(), nullptr, &start, &made);
    error = ::GetLastError();
  }
  for (const HANDLE stream : {start.hStdInput, start.hStdOutput, start.hStdError}) {
    ::CloseHandle(stream);
  }
  if (isStarted == FALSE) {
    run.exitCode = kNoSuchProgram;
    run.err = "the program cannot be started: error " + std::to_string(error);
    return run;
  }
  ::WaitForSingleObject(made.hProcess, INFINITE);
  DWORD exitCode = 0;
  ::GetExitCodeProcess(made.hProcess, &exitCode);
  run.exitCode = static_cast<int>(exitCode);
  ::CloseHandle(made.hThread);
  ::CloseHandle(made.hProcess);
  run.out = ReadAll(out);
  run.err = ReadAll(err);
  return run;
}

}  // namespace support
