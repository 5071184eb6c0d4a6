#include "tests/faults/windows_calls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

#include "backends/win32/windows.h"

// It builds on the header of the system.
#include <process.h>

namespace faults {
namespace {

enum class Action : std::uint8_t { kNone, kKill, kTear, kOnce, kEver };

struct State {
  Action action = Action::kNone;
  long number = 0;
  DWORD error = 0;
  std::FILE* log = nullptr;
  bool isActive = false;
  volatile LONG changes = 0;
  volatile LONG failable = 0;
  volatile LONG64 milliseconds = 0;  ///< On the program's clocks.
};
State g_state;

/// Letters for the errors that a call can have on a real machine.
///   i  the device, s  no room, a  no right, f  too many files, m  no memory
constexpr std::array kErrors{
    std::pair('i', DWORD{ERROR_IO_DEVICE}), std::pair('s', DWORD{ERROR_DISK_FULL}),
    std::pair('a', DWORD{ERROR_ACCESS_DENIED}), std::pair('f', DWORD{ERROR_TOO_MANY_OPEN_FILES}),
    std::pair('m', DWORD{ERROR_NOT_ENOUGH_MEMORY})};

[[noreturn]] void Die() {
  LeaveCalls();
  SaveRegistry();
  ::TerminateProcess(::GetCurrentProcess(), kExitOfKilled);
  std::abort();
}

enum class Verdict : std::uint8_t { kDo, kFail, kTear };

/// `errors` are the letters of those that the call can have, `data` how many bytes it writes.
Verdict Judge(const char* name, bool changes, const char* errors, DWORD data = 0) {
  if (!g_state.isActive) {
    return Verdict::kDo;
  }
  if (g_state.log != nullptr) {
    const DWORD before = ::GetLastError();
    std::fprintf(g_state.log, "%s %d %s %lu\n", name, changes ? 1 : 0, errors, data);
    std::fflush(g_state.log);
    ::SetLastError(before);
  }
  if (changes && ::InterlockedIncrement(&g_state.changes) == g_state.number) {
    if (g_state.action == Action::kTear && data > 1) {
      return Verdict::kTear;
    }
    if (g_state.action == Action::kKill || g_state.action == Action::kTear) {
      Die();
    }
  }
  for (const auto& [letter, error] : kErrors) {
    if ((g_state.action == Action::kOnce || g_state.action == Action::kEver) &&
        error == g_state.error && std::strchr(errors, letter) != nullptr) {
      const LONG count = ::InterlockedIncrement(&g_state.failable);
      if (count == g_state.number || (count > g_state.number && g_state.action == Action::kEver)) {
        ::SetLastError(error);
        return Verdict::kFail;
      }
    }
  }
  return Verdict::kDo;
}

/// A name as an argument of a template.
template <std::size_t kSize>
struct Name {
  constexpr Name(const char (&text)[kSize]) { std::copy_n(text, kSize, value); }  // NOLINT
  char value[kSize] = {};
};

/// What a call gives that failed.
enum class Sign : std::uint8_t { kZero, kMinusOne, kError };

/// A call that stands in for one of the system's.
template <Name kName, Sign kSign, bool kChanges, Name kErrorLetters, typename Function>
struct Call;
template <Name kName, Sign kSign, bool kChanges, Name kErrorLetters, typename Result,
          typename... Arguments>
struct Call<kName, kSign, kChanges, kErrorLetters, Result(WINAPI*)(Arguments...)> {
  static inline Result(WINAPI* original)(Arguments...) = nullptr;

  static Result WINAPI Do(Arguments... arguments) {
    if (Judge(kName.value, kChanges, kErrorLetters.value) == Verdict::kDo) {
      return original(arguments...);
    }
    if constexpr (kSign == Sign::kError) {
      return static_cast<Result>(g_state.error);
    } else if constexpr (std::is_pointer_v<Result>) {
      return kSign == Sign::kZero ? nullptr : INVALID_HANDLE_VALUE;
    } else {
      return kSign == Sign::kZero ? Result{} : static_cast<Result>(-1);
    }
  }
};

// Those whose arguments say what they do.

decltype(&::CreateFileW) g_createFile = nullptr;
HANDLE WINAPI CreateOrOpen(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES rights,
                           DWORD creation, DWORD flags, HANDLE pattern) {
  const bool changes = creation != OPEN_EXISTING;
  return Judge("CreateFileW", changes, changes ? "isafm" : "iafm") == Verdict::kDo
             ? g_createFile(path, access, share, rights, creation, flags, pattern)
             : INVALID_HANDLE_VALUE;
}

decltype(&::WriteFile) g_writeFile = nullptr;
BOOL WINAPI WriteOrTear(HANDLE file, LPCVOID data, DWORD size, LPDWORD written,
                        LPOVERLAPPED place) {
  // Messages are no files of the program's.
  const Verdict verdict = file == ::GetStdHandle(STD_ERROR_HANDLE)
                              ? Verdict::kDo
                              : Judge("WriteFile", true, "ism", size);
  if (verdict == Verdict::kTear) {
    g_writeFile(file, data, size / 2, written, place);
    Die();
  }
  return verdict == Verdict::kDo ? g_writeFile(file, data, size, written, place) : FALSE;
}

decltype(&::_beginthreadex) g_beginThread = nullptr;
uintptr_t __cdecl BeginThread(void* rights, unsigned stack, unsigned(__stdcall* body)(void*),
                              void* argument, unsigned flags, unsigned* id) {
  if (Judge("_beginthreadex", false, "m") == Verdict::kDo) {
    return g_beginThread(rights, stack, body, argument, flags, id);
  }
  errno = EAGAIN;
  return 0;
}

// The clocks.

void WINAPI SleepAtOnce(DWORD milliseconds) {
  ::InterlockedExchangeAdd64(&g_state.milliseconds, milliseconds);
}
DWORD WINAPI TickCount() { return static_cast<DWORD>(g_state.milliseconds); }
ULONGLONG WINAPI TickCount64() { return static_cast<ULONGLONG>(g_state.milliseconds); }
void WINAPI FileTime(LPFILETIME now) {
  // A day of 2026, in ticks of 100 nanoseconds since 1601.
  constexpr LONG64 kBegin = 134'241'408'000'000'000;
  constexpr LONG64 kTicksPerMillisecond = 10'000;
  const LONG64 ticks = kBegin + g_state.milliseconds * kTicksPerMillisecond;
  now->dwLowDateTime = static_cast<DWORD>(ticks);
  now->dwHighDateTime = static_cast<DWORD>(ticks >> 32);
}

struct Import {
  const char* name;
  void* replacement;
  void** original;
};

template <typename Function>
Import TakeWith(const char* name, Function replacement, Function* original) {
  return {name, reinterpret_cast<void*>(replacement), reinterpret_cast<void**>(original)};
}
template <Name kName, Sign kSign, bool kChanges, Name kErrorLetters, typename Function>
Import Take(Function /*system*/) {
  using Taken = Call<kName, kSign, kChanges, kErrorLetters, Function>;
  return TakeWith(kName.value, &Taken::Do, &Taken::original);
}

/// Made when first asked for, as that is before the objects of this file are made.
const auto& GetImports() {
  static const std::array kImports{
      TakeWith("CreateFileW", &CreateOrOpen, &g_createFile),
      TakeWith("WriteFile", &WriteOrTear, &g_writeFile),
      TakeWith("_beginthreadex", &BeginThread, &g_beginThread),
      Take<"ReadFile", Sign::kZero, false, "im">(&::ReadFile),
      Take<"SetEndOfFile", Sign::kZero, true, "ism">(&::SetEndOfFile),
      Take<"FlushFileBuffers", Sign::kZero, false, "is">(&::FlushFileBuffers),
      Take<"GetFileSizeEx", Sign::kZero, false, "im">(&::GetFileSizeEx),
      Take<"SetFileInformationByHandle", Sign::kZero, true, "isam">(&::SetFileInformationByHandle),
      Take<"GetFileInformationByHandleEx", Sign::kZero, false, "im">(
          &::GetFileInformationByHandleEx),
      Take<"CreateDirectoryW", Sign::kZero, true, "isam">(&::CreateDirectoryW),
      Take<"DeleteFileW", Sign::kZero, true, "iam">(&::DeleteFileW),
      Take<"FindFirstFileExW", Sign::kMinusOne, false, "iafm">(&::FindFirstFileExW),
      Take<"FindNextFileW", Sign::kZero, false, "im">(&::FindNextFileW),
      Take<"GetFileAttributesW", Sign::kMinusOne, false, "iam">(&::GetFileAttributesW),
      Take<"RegOpenKeyExW", Sign::kError, false, "iam">(&::RegOpenKeyExW),
      Take<"RegCreateKeyExW", Sign::kError, true, "isam">(&::RegCreateKeyExW),
      Take<"RegEnumKeyExW", Sign::kError, false, "iam">(&::RegEnumKeyExW),
      Take<"RegEnumValueW", Sign::kError, false, "iam">(&::RegEnumValueW),
      Take<"RegQueryValueExW", Sign::kError, false, "iam">(&::RegQueryValueExW),
      Take<"RegSetValueExW", Sign::kError, true, "isam">(&::RegSetValueExW),
      Take<"RegDeleteValueW", Sign::kError, true, "iam">(&::RegDeleteValueW),
      Take<"RegDeleteTreeW", Sign::kError, true, "iam">(&::RegDeleteTreeW),
      Take<"RegFlushKey", Sign::kError, false, "is">(&::RegFlushKey),
      Take<"CreateEventW", Sign::kZero, false, "m">(&::CreateEventW),
      Take<"CreateMutexW", Sign::kZero, false, "am">(&::CreateMutexW),
  };
  return kImports;
}

void* ClockFor(const char* name) {
  const std::string_view wanted = name;
  return wanted == "Sleep"                     ? reinterpret_cast<void*>(&SleepAtOnce)
         : wanted == "GetTickCount"            ? reinterpret_cast<void*>(&TickCount)
         : wanted == "GetTickCount64"          ? reinterpret_cast<void*>(&TickCount64)
         : wanted == "GetSystemTimeAsFileTime" ? reinterpret_cast<void*>(&FileTime)
                                               : nullptr;
}

/// Puts a call of ours into the program's table of imports if there is one for that name.
void Replace(const char* name, ULONGLONG& entry) {
  void* replacement = ClockFor(name);
  for (const Import& import : GetImports()) {
    if (std::strcmp(import.name, name) == 0) {
      *import.original = reinterpret_cast<void*>(entry);
      replacement = import.replacement;
    }
  }
  DWORD before = 0;
  if (replacement != nullptr &&
      ::VirtualProtect(&entry, sizeof(entry), PAGE_READWRITE, &before) != FALSE) {
    entry = reinterpret_cast<ULONGLONG>(replacement);
  }
}

void ReadPlan() {
  constexpr LONG64 kMillisecondsPerSecond = 1000;
  constexpr std::array kActions{
      std::pair("kill:", Action::kKill), std::pair("tear:", Action::kTear),
      std::pair("once:", Action::kOnce), std::pair("ever:", Action::kEver)};
  const char* const time = std::getenv("VOXTREL_FAULT_TIME");
  g_state.milliseconds = (time == nullptr ? 0 : std::atoll(time)) * kMillisecondsPerSecond;
  if (const char* const log = std::getenv("VOXTREL_FAULT_LOG")) {
    g_state.log = std::fopen(log, "wb");
  }
  const char* const plan = std::getenv("VOXTREL_FAULT");
  for (const auto& [word, action] : kActions) {
    if (plan != nullptr && std::strncmp(plan, word, std::strlen(word)) == 0) {
      char* end = nullptr;
      g_state.action = action;
      g_state.number = std::strtol(plan + std::strlen(word), &end, 10);
      g_state.error = *end == ':' ? static_cast<DWORD>(std::atol(end + 1)) : 0;
    }
  }
}

}  // namespace

void TakeCalls() {
  ReadPlan();
  auto* const base = reinterpret_cast<BYTE*>(::GetModuleHandleW(nullptr));
  const auto* const header = reinterpret_cast<const IMAGE_NT_HEADERS*>(
      base + reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew);
  const auto& table = header->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  for (auto* library = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + table.VirtualAddress);
       library->Name != 0; ++library) {
    const auto* name =
        reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
    auto* entry = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++entry) {
      if (!IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) {
        Replace(reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData)->Name,
                entry->u1.Function);
      }
    }
  }
  g_state.isActive = true;
}

void LeaveCalls() { g_state.isActive = false; }

}  // namespace faults
