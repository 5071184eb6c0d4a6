#pragma once

#include <cerrno>
#include <new>

#include "platform/file_system.h"

namespace posix {

/// What a value of errno means to the system.
[[nodiscard]] platform::FileError ToFileError(int error);

/// How a call of the system failed that has just set errno.
[[nodiscard]] inline tl::unexpected<platform::FileError> FailureFromErrno() {
  return platform::Failure(ToFileError(errno));
}

/// Calls until the call was not interrupted by a signal.
template <typename Call>
[[nodiscard]] auto Retry(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) {
    result = call();
  }
  return result;
}

/// The result of the call, or kOther if there was no memory for it.
template <typename Call>
[[nodiscard]] auto WithMemory(const Call& call) -> decltype(call()) {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    return platform::Failure(platform::FileError::kOther);
  }
}

}  // namespace posix
