#pragma once

#include <cerrno>
#include <new>

#include "platform/file_system.h"

namespace posix {

/// What a value of errno means to the system.
[[nodiscard]] platform::FileError ToFileError(int error);

/// Calls until the call was not interrupted by a signal.
template <typename Call>
[[nodiscard]] auto Retry(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) {
    result = call();
  }
  return result;
}

/// The result of the call, or `failure` if there was no memory for it.
template <typename Result, typename Call>
Result WithMemory(Result failure, const Call& call) {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    return failure;
  }
}

}  // namespace posix
