#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <climits>
#include <cstdint>
#include <string_view>

#include "tests/faults/plan.h"

// What the calls on files have in common, that this library makes in the place of the C library.
// Calls that the C library makes within itself are not seen here. fopen and its like are seen as a
// whole.
namespace faults {

inline constexpr std::string_view kDescriptors = "/proc/self/fd/";

/// The absolute path of what a call names; that of the descriptor for "/proc/self/fd/N".
class Path {
 public:
  Path(int folder, const char* path);
  [[nodiscard]] const char* Get() const { return m_text; }
  /// The shared memory of the store is no file that lasts: it is made again from its log.
  [[nodiscard]] bool IsCounted() const {
    return faults::IsCounted(m_text) && !std::string_view(m_text).ends_with("-shm");
  }

 private:
  void Append(const char* text);
  char m_text[PATH_MAX * 2] = "";
};

[[nodiscard]] inline bool IsCounted(int descriptor) { return *PathOf(descriptor) != 0; }
[[nodiscard]] bool IsThere(int folder, const char* path);

/// A call of the system that returns an int.
template <typename... Arguments>
int Do(long number, Arguments... arguments) {
  return static_cast<int>(syscall(number, arguments...));
}

/// Makes a call that returns -1 if it fails, and notes it.
template <typename Function>
auto Make(bool isCounted, const Call& call, Function function) -> decltype(function()) {
  if (!isCounted) {
    return function();
  }
  if (Judge(call) != Verdict::kDo) {
    return -1;
  }
  const auto result = function();
  Log(call, result != -1);
  return result;
}

template <typename Function>
int OnDescriptor(Kind kind, bool changes, int descriptor, std::int64_t number, Function function) {
  return Make(IsCounted(descriptor),
              {.kind = kind,
               .changes = changes,
               .path = PathOf(descriptor),
               .descriptor = descriptor,
               .number = number},
              function);
}

template <typename Function>
Function Next(const char* name) {
  return reinterpret_cast<Function>(NextFunction(name));
}

}  // namespace faults
