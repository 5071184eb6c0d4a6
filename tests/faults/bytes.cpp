#include <sys/file.h>
#include <sys/mman.h>
#include <sys/uio.h>

#include <cerrno>
#include <cstdarg>

#include "tests/faults/calls.h"

namespace {

using faults::Call;
using faults::Do;
using faults::IsCounted;
using faults::Kind;
using faults::Make;
using faults::OnDescriptor;
using faults::PathOf;
using faults::SetPath;
using faults::Verdict;

off_t PlaceOf(int descriptor) {
  const faults::ErrnoKept kept;
  const bool appends = (Do(SYS_fcntl, descriptor, F_GETFL) & O_APPEND) != 0;
  return syscall(SYS_lseek, descriptor, 0, appends ? SEEK_END : SEEK_CUR);
}

ssize_t Write(int descriptor, const void* bytes, size_t size, off_t offset, bool isPlaced) {
  const auto write = [&](size_t count) -> ssize_t {
    return isPlaced ? syscall(SYS_pwrite64, descriptor, bytes, count, offset)
                    : syscall(SYS_write, descriptor, bytes, count);
  };
  if (!IsCounted(descriptor)) {
    return write(size);
  }
  Call call{.kind = Kind::kWrite,
            .changes = true,
            .path = PathOf(descriptor),
            .descriptor = descriptor,
            .number = isPlaced ? offset : PlaceOf(descriptor),
            .data = bytes,
            .size = size};
  switch (Judge(call)) {
    case Verdict::kFail:
      return -1;
    case Verdict::kTear:
      write(size / 2);
      faults::Die();
    case Verdict::kDo:
      break;
  }
  const ssize_t written = write(size);
  call.size = static_cast<size_t>(written < 0 ? 0 : written);
  Log(call, written >= 0);
  return written;
}

}  // namespace

// Calls on what is open.
extern "C" {

ssize_t read(int descriptor, void* into, size_t size) {
  return Make(IsCounted(descriptor), {.kind = Kind::kRead, .path = PathOf(descriptor)},
              [&]() -> ssize_t { return syscall(SYS_read, descriptor, into, size); });
}
ssize_t pread(int descriptor, void* into, size_t size, off_t offset) {
  return Make(IsCounted(descriptor), {.kind = Kind::kRead, .path = PathOf(descriptor)},
              [&]() -> ssize_t { return syscall(SYS_pread64, descriptor, into, size, offset); });
}
ssize_t pread64(int, void*, size_t, off64_t) __attribute__((alias("pread")));
ssize_t readv(int descriptor, const iovec* parts, int count) {
  return Make(IsCounted(descriptor), {.kind = Kind::kRead, .path = PathOf(descriptor)},
              [&]() -> ssize_t { return syscall(SYS_readv, descriptor, parts, count); });
}
ssize_t write(int descriptor, const void* bytes, size_t size) {
  return Write(descriptor, bytes, size, 0, false);
}
ssize_t pwrite(int descriptor, const void* bytes, size_t size, off_t offset) {
  return Write(descriptor, bytes, size, offset, true);
}
ssize_t pwrite64(int, const void*, size_t, off64_t) __attribute__((alias("pwrite")));
ssize_t writev(int descriptor, const iovec* parts, int count) {
  if (!IsCounted(descriptor)) {
    return syscall(SYS_writev, descriptor, parts, count);
  }
  // As many writes, each of which is a place for a fault.
  ssize_t sum = 0;
  for (int i = 0; i < count; ++i) {
    const ssize_t written = Write(descriptor, parts[i].iov_base, parts[i].iov_len, 0, false);
    if (written < 0) {
      return sum > 0 ? sum : -1;
    }
    sum += written;
  }
  return sum;
}

int ftruncate(int descriptor, off_t length) noexcept {
  return OnDescriptor(Kind::kTruncate, true, descriptor, length,
                      [&] { return Do(SYS_ftruncate, descriptor, length); });
}
int ftruncate64(int, off64_t) noexcept __attribute__((alias("ftruncate")));
int posix_fallocate(int descriptor, off_t offset, off_t length) {
  const faults::ErrnoKept kept;
  const int result = OnDescriptor(Kind::kTruncate, true, descriptor, offset + length,
                                  [&] { return Do(SYS_fallocate, descriptor, 0, offset, length); });
  return result == 0 ? 0 : errno;
}
int fsync(int descriptor) {
  return OnDescriptor(Kind::kSync, true, descriptor, 0, [&] { return 0; });
}
int fdatasync(int descriptor) { return fsync(descriptor); }

int fchmod(int descriptor, mode_t mode) noexcept {
  return OnDescriptor(Kind::kRights, true, descriptor, mode,
                      [&] { return Do(SYS_fchmod, descriptor, mode); });
}
int fchown(int descriptor, uid_t owner, gid_t group) noexcept {
  return OnDescriptor(Kind::kRights, true, descriptor, 0,
                      [&] { return Do(SYS_fchown, descriptor, owner, group); });
}

int flock(int descriptor, int operation) noexcept {
  return OnDescriptor(Kind::kLock, false, descriptor, operation,
                      [&] { return Do(SYS_flock, descriptor, operation); });
}
int fcntl(int descriptor, int command, ...) {
  va_list arguments;
  va_start(arguments, command);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  const auto work = [&] { return Do(SYS_fcntl, descriptor, command, argument); };
  if (command == F_SETLK || command == F_SETLKW || command == F_OFD_SETLK) {
    return OnDescriptor(Kind::kLock, false, descriptor, command, work);
  }
  const int result = work();
  if ((command == F_DUPFD || command == F_DUPFD_CLOEXEC) && result >= 0 && IsCounted(descriptor)) {
    SetPath(result, PathOf(descriptor));
    faults::Log(
        {.kind = Kind::kDup, .path = PathOf(result), .descriptor = descriptor, .number = result},
        true);
  }
  return result;
}
int fcntl64(int, int, ...) __attribute__((alias("fcntl")));

void* mmap(void* address, size_t length, int protection, int flags, int descriptor,
           off_t offset) noexcept {
  return reinterpret_cast<void*>(Make(
      IsCounted(descriptor), {.kind = Kind::kMap, .path = PathOf(descriptor)},
      [&] { return syscall(SYS_mmap, address, length, protection, flags, descriptor, offset); }));
}
void* mmap64(void*, size_t, int, int, int, off64_t) noexcept __attribute__((alias("mmap")));

}  // extern "C"
