#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "backends/win32/windows.h"

// What becomes of each call of a program of Windows (windows_calls.h).
namespace faults {

/// Stands between the errors of the system and those of wave devices, which are small numbers, too.
inline constexpr DWORD kWaveErrors = 10'000;

/// Reads the environment.
void ReadPlan();

/// From now on calls are counted, or are not.
void SetActive(bool isActive);

enum class Verdict : std::uint8_t { kDo, kFail, kTear };

/// Counts a call and says what becomes of it. `errors` are the letters of those that it can have,
/// `data` how many bytes it writes. Does not return if the process ends here. The last error is
/// set after kFail.
[[nodiscard]] Verdict Judge(const char* name, bool changes, const char* errors, DWORD data = 0);

/// The error of calls that fail.
[[nodiscard]] DWORD PlannedError();

/// Whether wave devices give no header back any more.
[[nodiscard]] bool DevicesKeepHeaders();

/// Milliseconds of each recording after which the microphone delivers nothing more.
[[nodiscard]] DWORD MostThatIsHeard();

[[noreturn]] void Die();

/// A name as an argument of a template.
template <std::size_t kSize>
struct Name {
  constexpr Name(const char (&text)[kSize]) { std::copy_n(text, kSize, value); }  // NOLINT
  char value[kSize] = {};
};

/// What a call gives that failed.
enum class Sign : std::uint8_t { kZero, kMinusOne, kError, kWaveError };

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
      return static_cast<Result>(PlannedError());
    } else if constexpr (kSign == Sign::kWaveError) {
      return static_cast<Result>(PlannedError() - kWaveErrors);
    } else if constexpr (std::is_pointer_v<Result>) {
      return kSign == Sign::kZero ? nullptr : INVALID_HANDLE_VALUE;
    } else {
      return kSign == Sign::kZero ? Result{} : static_cast<Result>(-1);
    }
  }
};

/// What stands in for a call that the program imports.
struct Import {
  const char* name;
  void* replacement;
  void** original;  ///< Null if the replacement never calls it.
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
/// `own` takes the place of the system's.
template <Name kName, Sign kSign, Name kErrorLetters, typename Function>
Import StandIn(Function /*system*/, Function own) {
  using Taken = Call<kName, kSign, false, kErrorLetters, Function>;
  Taken::original = own;
  return {kName.value, reinterpret_cast<void*>(&Taken::Do), nullptr};
}

}  // namespace faults
