#include "tests/faults/windows_plan.h"

// It needs the header of the system.
#include <mmsystem.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "tests/faults/windows_calls.h"

namespace faults {
namespace {

enum class Action : std::uint8_t { kNone, kKill, kTear, kOnce, kEver, kKeep, kLose };

struct State {
  Action action = Action::kNone;
  long number = 0;
  DWORD error = 0;
  std::FILE* log = nullptr;
  bool isActive = false;
  volatile LONG changes = 0;
  volatile LONG failable = 0;
  volatile LONG ofWaveDevices = 0;
};
State g_state;

/// Letters for the errors that a call can have on a real machine.
///   i  the device, s  no room, a  no right, f  too many files, m  no memory
/// and for those of wave devices:
///   d  it went away, t  another program has taken it, n  no memory, b  no such format,
///   p  the header is in use
constexpr std::array kErrors{std::pair('i', DWORD{ERROR_IO_DEVICE}),
                             std::pair('s', DWORD{ERROR_DISK_FULL}),
                             std::pair('a', DWORD{ERROR_ACCESS_DENIED}),
                             std::pair('f', DWORD{ERROR_TOO_MANY_OPEN_FILES}),
                             std::pair('m', DWORD{ERROR_NOT_ENOUGH_MEMORY}),
                             std::pair('d', kWaveErrors + MMSYSERR_NODRIVER),
                             std::pair('t', kWaveErrors + MMSYSERR_ALLOCATED),
                             std::pair('n', kWaveErrors + MMSYSERR_NOMEM),
                             std::pair('b', kWaveErrors + WAVERR_BADFORMAT),
                             std::pair('p', kWaveErrors + WAVERR_STILLPLAYING)};

}  // namespace

void ReadPlan() {
  constexpr std::array kActions{
      std::pair("kill:", Action::kKill), std::pair("tear:", Action::kTear),
      std::pair("once:", Action::kOnce), std::pair("ever:", Action::kEver),
      std::pair("keep:", Action::kKeep), std::pair("lose:", Action::kLose)};
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

void SetActive(bool isActive) { g_state.isActive = isActive; }

DWORD PlannedError() { return g_state.error; }

bool DevicesKeepHeaders() {
  return g_state.action == Action::kKeep && g_state.ofWaveDevices >= g_state.number;
}

DWORD MostThatIsHeard() {
  return g_state.action == Action::kLose ? static_cast<DWORD>(g_state.number) : INFINITE;
}

void Die() {
  LeaveCalls();
  SaveRegistry();
  ::TerminateProcess(::GetCurrentProcess(), kExitOfKilled);
  std::abort();
}

Verdict Judge(const char* name, bool changes, const char* errors, DWORD data) {
  if (!g_state.isActive) {
    return Verdict::kDo;
  }
  if (g_state.log != nullptr) {
    const DWORD before = ::GetLastError();
    std::fprintf(g_state.log, "%s %d %s %lu\n", name, changes ? 1 : 0, errors, data);
    std::fflush(g_state.log);
    ::SetLastError(before);
  }
  if (std::strncmp(name, "wave", 4) == 0) {
    ::InterlockedIncrement(&g_state.ofWaveDevices);
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

}  // namespace faults
