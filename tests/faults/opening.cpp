#include <dirent.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tests/faults/calls.h"

namespace faults {

Path::Path(int folder, const char* path) {
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

void Path::Append(const char* text) {
  const std::size_t length = std::strlen(m_text);
  std::strncpy(m_text + length, text, sizeof m_text - 1 - length);
}

bool IsThere(int folder, const char* path) {
  const ErrnoKept kept;
  struct stat status {};
  return Do(SYS_newfstatat, folder, path, &status, AT_SYMLINK_NOFOLLOW) == 0;
}

}  // namespace faults

namespace {

using faults::Call;
using faults::Do;
using faults::IsCounted;
using faults::IsThere;
using faults::Kind;
using faults::Next;
using faults::Path;
using faults::PathOf;
using faults::SetPath;
using faults::Verdict;

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

mode_t ModeOf(int flags, va_list arguments) {
  const bool has = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
  return has ? va_arg(arguments, mode_t) : 0;
}
}  // namespace

// Calls that open and close.
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
int open64(const char*, int, ...) __attribute__((alias("open")));
int openat64(int, const char*, int, ...) __attribute__((alias("openat")));
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
  // At the end of the folder, errno says whether the call failed.
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
FILE* fopen64(const char*, const char*) __attribute__((alias("fopen")));
int fclose(FILE* file) {
  static const auto next = Next<int (*)(FILE*)>("fclose");
  const int descriptor = fileno(file);
  if (IsCounted(descriptor)) {
    faults::Log({.kind = Kind::kClose, .path = PathOf(descriptor), .descriptor = descriptor}, true);
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
int mkstemp64(char*) __attribute__((alias("mkstemp")));

}  // extern "C"
