#pragma once

#include <unistd.h>

#include <cerrno>
#include <new>
#include <utility>

#include "platform/file_system.h"

// What every call of the system needs: an owner of its descriptor, a second try after a signal, and
// the meaning of its error.

namespace posix {

/// An open file descriptor. The destructor closes it.
class Descriptor {
 public:
  static constexpr int kNone = -1;

  explicit Descriptor(int value = kNone) : m_value(value) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor(Descriptor&& other) noexcept : m_value(other.Release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    Reset(other.Release());
    return *this;
  }
  ~Descriptor() { Reset(); }

  [[nodiscard]] int Get() const { return m_value; }
  [[nodiscard]] bool IsOpen() const { return m_value != kNone; }
  [[nodiscard]] int Release() { return std::exchange(m_value, kNone); }

  void Reset(int value = kNone) {
    const int old = std::exchange(m_value, value);
    if (old != kNone) {
      ::close(old);
    }
  }

 private:
  int m_value;
};

/// Returns what a value of errno means to the system.
[[nodiscard]] constexpr platform::FileError ToFileError(int error) {
  using platform::FileError;
  switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ENAMETOOLONG:
      return FileError::kNotFound;
    case EEXIST:
      return FileError::kAlreadyExists;
    case EACCES:
    case EPERM:
    case EISDIR:
    case ENXIO:
      return FileError::kAccessDenied;
    case ETXTBSY:
    case EWOULDBLOCK:
      return FileError::kSharingViolation;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return FileError::kDiskFull;
    case EROFS:
      return FileError::kReadOnly;
    default:
      return FileError::kOther;
  }
}

/// Returns the failure of a call that has just set errno.
[[nodiscard]] inline tl::unexpected<platform::FileError> FailureFromErrno() {
  return platform::Failure(ToFileError(errno));
}

/// Calls again until no signal interrupts the call.
template <typename Call>
[[nodiscard]] auto Retry(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) {
    result = call();
  }
  return result;
}

/// Returns the result of the call. Fails with kOther if there is no memory for it.
template <typename Call>
[[nodiscard]] auto WithMemory(const Call& call) -> decltype(call()) {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    return platform::Failure(platform::FileError::kOther);
  }
}

}  // namespace posix
