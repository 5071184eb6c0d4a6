#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "tests/faults/plan.h"

// The calls on files that a program or its libraries make. What the C library calls within itself
// does not come by here; fopen and its like are caught as a whole.
namespace {

using faults::Call;
using faults::Kind;
using faults::Log;
using faults::PathOf;
using faults::SetPath;
using faults::Verdict;

/// The absolute path of what a call names; that of the descriptor for "/proc/self/fd/N".
class Path {
 public:
  Path(int folder, const char* path) {
    constexpr std::string_view kDescriptors = "/proc/self/fd/";
    if (path == nullptr || *path == 0) {
      Append(PathOf(folder));
    } else if (std::string_view(path).starts_with(kDescriptors)) {
      Append(PathOf(std::atoi(path + kDescriptors.size())));
    } else if (*path == '/') {
      Append(path);
    } else if (folder == AT_FDCWD) {
      if (syscall(SYS_getcwd, m_text, sizeof m_text) > 0) {
        Append("/");
        Append(path);
      }
    } else {
      Append(PathOf(folder));
      Append("/");
      Append(path);
    }
  }
  [[nodiscard]] const char* Get() const { return m_text; }
  /// The shared memory of the store is no file that lasts: it is made again from its log.
  [[nodiscard]] bool IsCounted() const {
    return faults::IsCounted(m_text) && !std::string_view(m_text).ends_with("-shm");
  }

 private:
  void Append(const char* text) {
    const std::size_t length = std::strlen(m_text);
    std::strncpy(m_text + length, text, sizeof m_text - 1 - length);
  }
  char m_text[PATH_MAX * 2] = "";
};

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

template <typename... Arguments>
int Do(long number, Arguments... arguments) {
  return static_cast<int>(syscall(number, arguments...));
}

bool IsThere(int folder, const char* path) {
  const faults::ErrnoKept kept;
  struct stat status {};
  return Do(SYS_newfstatat, folder, path, &status, AT_SYMLINK_NOFOLLOW) == 0;
}

int Open(int folder, const char* path, int flags, mode_t mode) {
  const Path full(folder, path);
  if (!full.IsCounted()) {
    // The store begins its random numbers with these: the same ones in each run.
    const bool isRandom = std::strcmp(full.Get(), "/dev/urandom") == 0;
    return Do(SYS_openat, folder, isRandom ? "/dev/zero" : path, flags, mode);
  }
  const bool isNameless = (flags & O_TMPFILE) == O_TMPFILE;
  const bool changes =
      isNameless || (flags & O_TRUNC) != 0 || ((flags & O_CREAT) != 0 && !IsThere(folder, path));
  Call call{.kind = Kind::kOpen, .changes = changes, .path = full.Get(), .number = flags};
  if (Judge(call) == Verdict::kFail) {
    return -1;
  }
  const int descriptor = Do(SYS_openat, folder, path, flags, mode);
  if (descriptor >= 0) {
    SetPath(descriptor, full.Get());
  }
  call.descriptor = descriptor;
  Log(call, descriptor >= 0);
  return descriptor;
}

bool IsCounted(int descriptor) { return *PathOf(descriptor) != 0; }

mode_t ModeOf(int flags, va_list arguments) {
  const bool has = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
  return has ? va_arg(arguments, mode_t) : 0;
}

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
            .data = bytes};
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

int Rename(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
  const Path first(fromFolder, from);
  const Path second(toFolder, to);
  return Make(first.IsCounted() || second.IsCounted(),
              {.kind = Kind::kRename,
               .changes = true,
               .path = first.Get(),
               .other = second.Get(),
               .number = flags},
              [&] { return Do(SYS_renameat2, fromFolder, from, toFolder, to, flags); });
}

int Link(int fromFolder, const char* from, int toFolder, const char* to, int flags) {
  const Path first(fromFolder, from);
  const Path second(toFolder, to);
  constexpr std::string_view kDescriptors = "/proc/self/fd/";
  int descriptor = -1;
  if (*from == 0) {
    descriptor = fromFolder;
  } else if (std::string_view(from).starts_with(kDescriptors)) {
    descriptor = std::atoi(from + kDescriptors.size());
  }
  return Make(second.IsCounted(),
              {.kind = Kind::kLink,
               .changes = true,
               .path = first.Get(),
               .other = second.Get(),
               .descriptor = descriptor},
              [&] { return Do(SYS_linkat, fromFolder, from, toFolder, to, flags); });
}

int Unlink(int folder, const char* path, int flags) {
  const Path full(folder, path);
  return Make(full.IsCounted(),
              {.kind = Kind::kUnlink, .changes = true, .path = full.Get(), .number = flags},
              [&] { return Do(SYS_unlinkat, folder, path, flags); });
}

int MakeFolder(int folder, const char* path, mode_t mode) {
  const Path full(folder, path);
  return Make(full.IsCounted(),
              {.kind = Kind::kMakeFolder, .changes = true, .path = full.Get(), .number = mode},
              [&] { return Do(SYS_mkdirat, folder, path, mode); });
}

int Look(int folder, const char* path, struct stat* status, int flags) {
  const Path full(folder, path);
  return Make(full.IsCounted(), {.kind = Kind::kLook, .path = full.Get()},
              [&] { return Do(SYS_newfstatat, folder, path, status, flags); });
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
  return reinterpret_cast<Function>(faults::NextFunction(name));
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = ModeOf(flags, arguments);
  va_end(arguments);
  return Open(AT_FDCWD, path, flags, mode);
}
int openat(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = ModeOf(flags, arguments);
  va_end(arguments);
  return Open(folder, path, flags, mode);
}
int open64(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = ModeOf(flags, arguments);
  va_end(arguments);
  return Open(AT_FDCWD, path, flags, mode);
}
int openat64(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = ModeOf(flags, arguments);
  va_end(arguments);
  return Open(folder, path, flags, mode);
}
int creat(const char* path, mode_t mode) {
  return Open(AT_FDCWD, path, O_CREAT | O_WRONLY | O_TRUNC, mode);
}

int close(int descriptor) {
  if (!IsCounted(descriptor)) {
    return Do(SYS_close, descriptor);
  }
  Call call{.kind = Kind::kClose, .path = PathOf(descriptor), .descriptor = descriptor};
  const Verdict verdict = Judge(call);
  // A descriptor is gone also if closing it fails.
  const int result = Do(SYS_close, descriptor);
  Log(call, true);
  SetPath(descriptor, "");
  if (verdict == Verdict::kFail) {
    errno = EIO;
    return -1;
  }
  return result;
}

ssize_t read(int descriptor, void* into, size_t size) {
  return Make(IsCounted(descriptor), {.kind = Kind::kRead, .path = PathOf(descriptor)},
              [&]() -> ssize_t { return syscall(SYS_read, descriptor, into, size); });
}
ssize_t pread(int descriptor, void* into, size_t size, off_t offset) {
  return Make(IsCounted(descriptor), {.kind = Kind::kRead, .path = PathOf(descriptor)},
              [&]() -> ssize_t { return syscall(SYS_pread64, descriptor, into, size, offset); });
}
ssize_t pread64(int descriptor, void* into, size_t size, off64_t offset) {
  return pread(descriptor, into, size, offset);
}
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
ssize_t pwrite64(int descriptor, const void* bytes, size_t size, off64_t offset) {
  return Write(descriptor, bytes, size, offset, true);
}
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
int ftruncate64(int descriptor, off64_t length) noexcept { return ftruncate(descriptor, length); }
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

int rename(const char* from, const char* to) noexcept {
  return Rename(AT_FDCWD, from, AT_FDCWD, to, 0);
}
int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
  return Rename(fromFolder, from, toFolder, to, 0);
}
int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
              unsigned flags) noexcept {
  return Rename(fromFolder, from, toFolder, to, flags);
}
int link(const char* from, const char* to) noexcept {
  return Link(AT_FDCWD, from, AT_FDCWD, to, 0);
}
int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
  return Link(fromFolder, from, toFolder, to, flags);
}
int symlink(const char* target, const char* path) noexcept {
  const Path full(AT_FDCWD, path);
  return Make(full.IsCounted(),
              {.kind = Kind::kSymlink, .changes = true, .path = full.Get(), .other = target},
              [&] { return Do(SYS_symlinkat, target, AT_FDCWD, path); });
}
int unlink(const char* path) noexcept { return Unlink(AT_FDCWD, path, 0); }
int unlinkat(int folder, const char* path, int flags) noexcept {
  return Unlink(folder, path, flags);
}
int rmdir(const char* path) noexcept { return Unlink(AT_FDCWD, path, AT_REMOVEDIR); }
int remove(const char* path) noexcept {
  const int result = Unlink(AT_FDCWD, path, 0);
  return result != 0 && errno == EISDIR ? Unlink(AT_FDCWD, path, AT_REMOVEDIR) : result;
}
int mkdir(const char* path, mode_t mode) noexcept { return MakeFolder(AT_FDCWD, path, mode); }
int mkdirat(int folder, const char* path, mode_t mode) noexcept {
  return MakeFolder(folder, path, mode);
}

int fchmod(int descriptor, mode_t mode) noexcept {
  return OnDescriptor(Kind::kRights, true, descriptor, mode,
                      [&] { return Do(SYS_fchmod, descriptor, mode); });
}
int chmod(const char* path, mode_t mode) noexcept {
  const Path full(AT_FDCWD, path);
  return Make(full.IsCounted(),
              {.kind = Kind::kRights, .changes = true, .path = full.Get(), .number = mode},
              [&] { return Do(SYS_fchmodat, AT_FDCWD, path, mode); });
}
int fchmodat(int folder, const char* path, mode_t mode, int flags) noexcept {
  if (flags != 0) {
    static const auto next = Next<int (*)(int, const char*, mode_t, int)>("fchmodat");
    return next(folder, path, mode, flags);
  }
  const Path full(folder, path);
  return Make(full.IsCounted(),
              {.kind = Kind::kRights, .changes = true, .path = full.Get(), .number = mode},
              [&] { return Do(SYS_fchmodat, folder, path, mode); });
}
int fchown(int descriptor, uid_t owner, gid_t group) noexcept {
  return OnDescriptor(Kind::kRights, true, descriptor, 0,
                      [&] { return Do(SYS_fchown, descriptor, owner, group); });
}

int stat(const char* path, struct stat* status) noexcept { return Look(AT_FDCWD, path, status, 0); }
int stat64(const char* path, struct stat64* status) noexcept {
  return Look(AT_FDCWD, path, reinterpret_cast<struct stat*>(status), 0);
}
int lstat(const char* path, struct stat* status) noexcept {
  return Look(AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW);
}
int lstat64(const char* path, struct stat64* status) noexcept {
  return Look(AT_FDCWD, path, reinterpret_cast<struct stat*>(status), AT_SYMLINK_NOFOLLOW);
}
int fstat(int descriptor, struct stat* status) noexcept {
  return Look(descriptor, "", status, AT_EMPTY_PATH);
}
int fstat64(int descriptor, struct stat64* status) noexcept {
  return Look(descriptor, "", reinterpret_cast<struct stat*>(status), AT_EMPTY_PATH);
}
int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
  return Look(folder, path, status, flags);
}
int fstatat64(int folder, const char* path, struct stat64* status, int flags) noexcept {
  return Look(folder, path, reinterpret_cast<struct stat*>(status), flags);
}
int statx(int folder, const char* path, int flags, unsigned mask, struct statx* status) noexcept {
  const Path full(folder, path);
  return Make(full.IsCounted(), {.kind = Kind::kLook, .path = full.Get()},
              [&] { return Do(SYS_statx, folder, path, flags, mask, status); });
}
int access(const char* path, int mode) noexcept {
  const Path full(AT_FDCWD, path);
  return Make(full.IsCounted(), {.kind = Kind::kLook, .path = full.Get()},
              [&] { return Do(SYS_faccessat, AT_FDCWD, path, mode); });
}
ssize_t readlink(const char* path, char* into, size_t size) noexcept {
  const Path full(AT_FDCWD, path);
  return Make(full.IsCounted(), {.kind = Kind::kLook, .path = full.Get()},
              [&]() -> ssize_t { return syscall(SYS_readlinkat, AT_FDCWD, path, into, size); });
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
    Log({.kind = Kind::kDup, .path = PathOf(result), .descriptor = descriptor, .number = result},
        true);
  }
  return result;
}
int fcntl64(int descriptor, int command, ...) {
  va_list arguments;
  va_start(arguments, command);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  return fcntl(descriptor, command, argument);
}

void* mmap(void* address, size_t length, int protection, int flags, int descriptor,
           off_t offset) noexcept {
  return reinterpret_cast<void*>(Make(
      IsCounted(descriptor), {.kind = Kind::kMap, .path = PathOf(descriptor)},
      [&] { return syscall(SYS_mmap, address, length, protection, flags, descriptor, offset); }));
}
void* mmap64(void* address, size_t length, int protection, int flags, int descriptor,
             off64_t offset) noexcept {
  return mmap(address, length, protection, flags, descriptor, offset);
}

DIR* opendir(const char* path) {
  static const auto next = Next<DIR* (*)(const char*)>("opendir");
  const Path full(AT_FDCWD, path);
  if (!full.IsCounted()) {
    return next(path);
  }
  const Call call{.kind = Kind::kList, .path = full.Get()};
  if (Judge(call) == Verdict::kFail) {
    return nullptr;
  }
  DIR* const folder = next(path);
  Log(call, folder != nullptr);
  if (folder != nullptr) {
    SetPath(dirfd(folder), full.Get());
  }
  return folder;
}
int closedir(DIR* folder) {
  static const auto next = Next<int (*)(DIR*)>("closedir");
  SetPath(dirfd(folder), "");
  return next(folder);
}
dirent* readdir(DIR* folder) {
  static const auto next = Next<dirent* (*)(DIR*)>("readdir");
  const char* const path = PathOf(dirfd(folder));
  if (*path == 0) {
    return next(folder);
  }
  // At its end errno tells a failure from a folder that has no more.
  const Call call{.kind = Kind::kRead, .path = path};
  if (Judge(call) == Verdict::kFail) {
    return nullptr;
  }
  dirent* const entry = next(folder);
  Log(call, true);
  return entry;
}
dirent64* readdir64(DIR* folder) { return reinterpret_cast<dirent64*>(readdir(folder)); }

FILE* fopen(const char* path, const char* mode) {
  static const auto next = Next<FILE* (*)(const char*, const char*)>("fopen");
  const Path full(AT_FDCWD, path);
  if (!full.IsCounted()) {
    return next(path, mode);
  }
  const bool truncates = *mode == 'w';
  const bool creates = *mode != 'r' && !IsThere(AT_FDCWD, path);
  Call call{.kind = Kind::kOpen,
            .changes = truncates || creates,
            .path = full.Get(),
            .number = (*mode == 'r' ? 0 : O_CREAT) | (truncates ? O_TRUNC : 0)};
  if (Judge(call) == Verdict::kFail) {
    return nullptr;
  }
  FILE* const file = next(path, mode);
  call.descriptor = file == nullptr ? -1 : fileno(file);
  SetPath(call.descriptor, full.Get());
  Log(call, file != nullptr);
  return file;
}
FILE* fopen64(const char* path, const char* mode) { return fopen(path, mode); }
int fclose(FILE* file) {
  static const auto next = Next<int (*)(FILE*)>("fclose");
  const int descriptor = fileno(file);
  if (IsCounted(descriptor)) {
    Log({.kind = Kind::kClose, .path = PathOf(descriptor), .descriptor = descriptor}, true);
    SetPath(descriptor, "");
  }
  return next(file);
}

int mkostemp(char* pattern, int flags) {
  static const auto next = Next<int (*)(char*, int)>("mkostemp");
  const Path full(AT_FDCWD, pattern);
  if (!full.IsCounted()) {
    return next(pattern, flags);
  }
  Call call{.kind = Kind::kOpen,
            .changes = true,
            .path = full.Get(),
            .number = O_CREAT | O_EXCL | O_RDWR};
  if (Judge(call) == Verdict::kFail) {
    return -1;
  }
  call.descriptor = next(pattern, flags);
  const Path made(AT_FDCWD, pattern);
  call.path = made.Get();
  SetPath(call.descriptor, made.Get());
  Log(call, call.descriptor >= 0);
  return call.descriptor;
}
int mkstemp(char* pattern) { return mkostemp(pattern, 0); }
int mkstemp64(char* pattern) { return mkostemp(pattern, 0); }

}  // extern "C"
