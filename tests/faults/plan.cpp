#include "tests/faults/plan.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace faults {
namespace {

enum class Action : std::uint8_t { kNone, kKill, kTear, kOnce, kEver, kMemoryOnce, kMemoryEver };

// Which failures a call of each kind can have on a real machine. Those of an opening, a truncation
// and a renaming that need room on the medium are in NeedsRoom.
struct Failures {
  Kind kind;
  bool io, access, descriptors, memory;
};
constexpr std::array kFailures{
    Failures{Kind::kOpen, true, true, true, true},
    Failures{Kind::kRead, true, false, false, true},
    Failures{Kind::kWrite, true, false, false, true},
    Failures{Kind::kTruncate, true, false, false, true},
    Failures{Kind::kSync, true, false, false, false},
    Failures{Kind::kRename, true, true, false, true},
    Failures{Kind::kLink, true, true, false, true},
    Failures{Kind::kSymlink, true, true, false, true},
    Failures{Kind::kUnlink, true, true, false, true},
    Failures{Kind::kMakeFolder, true, true, false, true},
    Failures{Kind::kRights, true, true, false, true},
    Failures{Kind::kLook, true, true, false, true},
    Failures{Kind::kList, true, true, true, true},
    Failures{Kind::kLock, false, false, false, true},
    Failures{Kind::kMap, false, true, false, true},
    Failures{Kind::kClose, true, false, false, false},
    Failures{Kind::kDup, false, false, false, false},
    Failures{Kind::kMemory, false, false, false, false},
};

bool NeedsRoom(const Call& call) {
  switch (call.kind) {
    case Kind::kWrite:
    case Kind::kSync:
    case Kind::kRename:
    case Kind::kLink:
    case Kind::kSymlink:
    case Kind::kMakeFolder:
      return true;
    case Kind::kOpen:
      return call.changes;
    case Kind::kTruncate:
      return call.number > 0;
    default:
      return false;
  }
}

bool CanFailWith(const Call& call, int error) {
  const Failures& row = kFailures[static_cast<std::size_t>(call.kind)];
  switch (error) {
    case EIO:
      return row.io;
    case ENOSPC:
      return NeedsRoom(call);
    case EACCES:
      return row.access;
    case EMFILE:
      return row.descriptors;
    case ENOMEM:
      return row.memory;
    default:
      return false;
  }
}

constexpr std::array kErrors{EIO, ENOSPC, EACCES, EMFILE, ENOMEM};
constexpr int kMostDescriptors = 1024;

struct State {
  Action action = Action::kNone;
  std::uint64_t number = 0;
  int error = 0;
  int log = -1;
  const char* folder = nullptr;
  std::size_t folderLength = 0;
  bool isInMain = false;
  std::atomic<std::uint64_t> changes{0};
  std::atomic<std::uint64_t> failable{0};
  std::atomic<std::uint64_t> allocations{0};
  std::atomic<std::int64_t> room{0};
};
// Before any constructor, since other libraries' constructors allocate and open files.
constinit State g_state;
constinit char g_paths[kMostDescriptors][PATH_MAX] = {};

struct Header {
  std::uint32_t dataSize;
  std::uint16_t pathSize, otherSize;
  std::uint8_t kind, changes, errors, succeeded;
  std::int32_t descriptor;
  std::int64_t number;
};
static_assert(sizeof(Header) == 24);

Action ReadAction(const char* text, std::size_t length) {
  constexpr const char* kNames[] = {"kill", "tear", "once", "ever", "memory-once", "memory-ever"};
  for (std::size_t i = 0; i < std::size(kNames); ++i) {
    if (std::strlen(kNames[i]) == length && std::strncmp(text, kNames[i], length) == 0) {
      return static_cast<Action>(i + 1);
    }
  }
  std::abort();
}

[[gnu::constructor]] void ReadPlan() {
  if (const char* folder = std::getenv("VOXTREL_FAULT_FOLDER")) {
    g_state.folder = folder;
    g_state.folderLength = std::strlen(folder);
  }
  if (const char* plan = std::getenv("VOXTREL_FAULT")) {
    const char* number = std::strchr(plan, ':');
    if (number == nullptr) {
      std::abort();
    }
    g_state.action = ReadAction(plan, static_cast<std::size_t>(number - plan));
    char* end = nullptr;
    g_state.number = std::strtoull(number + 1, &end, 10);
    g_state.error = *end == ':' ? std::atoi(end + 1) : 0;
  }
  if (const char* log = std::getenv("VOXTREL_FAULT_LOG")) {
    // Above the descriptors that the program gets, whose numbers stay what they would be.
    const auto opened = static_cast<int>(
        syscall(SYS_openat, AT_FDCWD, log, O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, 0600));
    g_state.log =
        static_cast<int>(syscall(SYS_fcntl, opened, F_DUPFD_CLOEXEC, kMostDescriptors - 1));
    syscall(SYS_close, opened);
  }
}

[[gnu::destructor]] void LogAllocations() {
  Log({.kind = Kind::kMemory, .number = static_cast<std::int64_t>(g_state.allocations.load())},
      true);
}

std::uint8_t ErrorsOf(const Call& call) {
  unsigned mask = 0;
  for (std::size_t i = 0; i < kErrors.size(); ++i) {
    mask |= CanFailWith(call, kErrors[i]) ? 1U << i : 0U;
  }
  return static_cast<std::uint8_t>(mask);
}

using Main = int (*)(int, char**, char**);
Main g_main = nullptr;

int CountedMain(int count, char** arguments, char** environment) {
  g_state.isInMain = true;
  return g_main(count, arguments, environment);
}

/// Whether what has become free on the full disk is enough for the call.
bool FindsRoom(const Call& call) {
  const auto needed = static_cast<std::int64_t>(call.size);
  if (g_state.error != ENOSPC || g_state.room <= needed) {
    return false;
  }
  g_state.room -= needed;
  return true;
}

}  // namespace

ErrnoKept::ErrnoKept() : m_errno(errno) {}
ErrnoKept::~ErrnoKept() { errno = m_errno; }

void* NextFunction(const char* name) {
  void* const function = dlsym(RTLD_NEXT, name);
  if (function == nullptr) {
    std::abort();
  }
  return function;
}

void Die() {
  syscall(SYS_kill, syscall(SYS_getpid), SIGKILL);
  for (;;) {
    syscall(SYS_pause);
  }
}

Verdict Judge(const Call& call) {
  if (call.changes) {
    const std::uint64_t count = ++g_state.changes;
    const bool isIt = count == g_state.number;
    if (isIt && g_state.action == Action::kKill) {
      Die();
    }
    if (isIt && g_state.action == Action::kTear) {
      if (call.kind != Kind::kWrite) {
        Die();
      }
      return Verdict::kTear;
    }
  }
  const bool fails = g_state.action == Action::kOnce || g_state.action == Action::kEver;
  if (fails && CanFailWith(call, g_state.error)) {
    const std::uint64_t count = ++g_state.failable;
    const bool isLater = g_state.action == Action::kEver && count > g_state.number;
    if (count == g_state.number || (isLater && !FindsRoom(call))) {
      errno = g_state.error;
      return Verdict::kFail;
    }
  }
  return Verdict::kDo;
}

void NoteRoom(std::int64_t bytes) {
  if (g_state.failable >= g_state.number) {
    g_state.room += bytes;
  }
}

void Log(const Call& call, bool succeeded) {
  if (g_state.log < 0) {
    return;
  }
  const ErrnoKept kept;
  Header header{static_cast<std::uint32_t>(call.data == nullptr ? 0 : call.size),
                static_cast<std::uint16_t>(std::strlen(call.path)),
                static_cast<std::uint16_t>(std::strlen(call.other)),
                static_cast<std::uint8_t>(call.kind),
                call.changes,
                ErrorsOf(call),
                succeeded,
                call.descriptor,
                call.number};
  const iovec parts[] = {{&header, sizeof header},
                         {const_cast<char*>(call.path), header.pathSize},
                         {const_cast<char*>(call.other), header.otherSize},
                         {const_cast<void*>(call.data), header.dataSize}};
  syscall(SYS_writev, g_state.log, parts, std::size(parts));
}

bool IsCounted(const char* path) {
  const std::size_t length = g_state.folderLength;
  return length > 0 && std::strncmp(path, g_state.folder, length) == 0 &&
         (path[length] == '/' || path[length] == 0);
}

const char* PathOf(int descriptor) {
  return descriptor < 0 || descriptor >= kMostDescriptors ? "" : g_paths[descriptor];
}

void SetPath(int descriptor, const char* path) {
  if (descriptor >= 0 && descriptor < kMostDescriptors) {
    std::strncpy(g_paths[descriptor], path, PATH_MAX - 1);
  }
}

bool FailsToAllocate() {
  if (!g_state.isInMain) {
    return false;
  }
  const std::uint64_t count = ++g_state.allocations;
  return (g_state.action == Action::kMemoryOnce && count == g_state.number) ||
         (g_state.action == Action::kMemoryEver && count >= g_state.number);
}

}  // namespace faults

/// Allocations are counted from the beginning of main on: what libraries need before it belongs to
/// the loader.
extern "C" int __libc_start_main(faults::Main main, int count, char** arguments, void (*init)(),
                                 void (*fini)(), void (*loaderFini)(), void* stackEnd) {
  faults::g_main = main;
  using Start = int (*)(faults::Main, int, char**, void (*)(), void (*)(), void (*)(), void*);
  const auto start = reinterpret_cast<Start>(faults::NextFunction("__libc_start_main"));
  return start(faults::CountedMain, count, arguments, init, fini, loaderFini, stackEnd);
}
