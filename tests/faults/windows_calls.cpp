#include "tests/faults/windows_calls.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string_view>

#include "tests/faults/windows_plan.h"
#include "tests/faults/windows_sound.h"

// It builds on the header of the system.
#include <process.h>

namespace faults {
namespace {

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

volatile LONG64 g_milliseconds = 0;

void WINAPI SleepAtOnce(DWORD milliseconds) {
  ::InterlockedExchangeAdd64(&g_milliseconds, milliseconds);
  LetDevicesWork(milliseconds);
}
DWORD WINAPI TickCount() { return static_cast<DWORD>(g_milliseconds); }
ULONGLONG WINAPI TickCount64() { return static_cast<ULONGLONG>(g_milliseconds); }
void WINAPI FileTime(LPFILETIME now) {
  // A day of 2026, in ticks of 100 nanoseconds since 1601.
  constexpr LONG64 kBegin = 134'241'408'000'000'000;
  constexpr LONG64 kTicksPerMillisecond = 10'000;
  const LONG64 ticks = kBegin + g_milliseconds * kTicksPerMillisecond;
  now->dwLowDateTime = static_cast<DWORD>(ticks);
  now->dwHighDateTime = static_cast<DWORD>(ticks >> 32);
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
  for (const std::span<const Import> imports :
       {std::span<const Import>(GetImports()), SoundCalls()}) {
    for (const Import& import : imports) {
      if (std::strcmp(import.name, name) == 0) {
        if (import.original != nullptr) {
          *import.original = reinterpret_cast<void*>(entry);
        }
        replacement = import.replacement;
      }
    }
  }
  DWORD before = 0;
  if (replacement != nullptr &&
      ::VirtualProtect(&entry, sizeof(entry), PAGE_READWRITE, &before) != FALSE) {
    entry = reinterpret_cast<ULONGLONG>(replacement);
  }
}

}  // namespace

void TakeCalls() {
  constexpr LONG64 kMillisecondsPerSecond = 1000;
  const char* const time = std::getenv("VOXTREL_FAULT_TIME");
  g_milliseconds = (time == nullptr ? 0 : std::atoll(time)) * kMillisecondsPerSecond;
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
  SetActive(true);
}

void LeaveCalls() { SetActive(false); }

}  // namespace faults
