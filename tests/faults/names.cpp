#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "tests/faults/calls.h"

namespace {

using faults::Do;
using faults::kDescriptors;
using faults::Kind;
using faults::Make;
using faults::Path;

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
  struct stat status {};
  const bool isFile = full.IsCounted() && Do(SYS_newfstatat, folder, path, &status, 0) == 0;
  return Make(full.IsCounted(),
              {.kind = Kind::kUnlink, .changes = true, .path = full.Get(), .number = flags}, [&] {
                const int result = Do(SYS_unlinkat, folder, path, flags);
                if (isFile && result == 0) {
                  faults::NoteRoom(status.st_size);
                }
                return result;
              });
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
}  // namespace

// Calls on names.
extern "C" {

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
int chmod(const char* path, mode_t mode) noexcept {
  const Path full(AT_FDCWD, path);
  return Make(full.IsCounted(),
              {.kind = Kind::kRights, .changes = true, .path = full.Get(), .number = mode},
              [&] { return Do(SYS_fchmodat, AT_FDCWD, path, mode); });
}
int fchmodat(int folder, const char* path, mode_t mode, int flags) noexcept {
  if (flags != 0) {
    static const auto next = faults::Next<int (*)(int, const char*, mode_t, int)>("fchmodat");
    return next(folder, path, mode, flags);
  }
  const Path full(folder, path);
  return Make(full.IsCounted(),
              {.kind = Kind::kRights, .changes = true, .path = full.Get(), .number = mode},
              [&] { return Do(SYS_fchmodat, folder, path, mode); });
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

}  // extern "C"
