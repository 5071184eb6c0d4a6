#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>

// What the library does to the program that it is loaded into. Environment variables choose it:
//
//   VOXTREL_FAULT_FOLDER  calls on files below this folder are counted, no others
//   VOXTREL_FAULT_LOG     file that every counted call is written to; none if it is not set
//   VOXTREL_FAULT_TIME    seconds that have passed on the program's clocks when it begins
//   VOXTREL_FAULT         ACTION:N[:ERRNO]
//
//   kill        the process ends before the N-th call that changes a file
//   tear        the N-th such call, a write, does the first half of its work; then the process ends
//   once, ever  of the calls that can fail with ERRNO the N-th, or each from the N-th on, does; a
//               disk that is full from there on has room again as far as files go
//   memory-once, memory-ever  the N-th allocation after the beginning of main, or each from it on,
//               fails
//
// N begins with 1. Nothing in this library allocates.
namespace faults {

enum class Kind : std::uint8_t {
  kOpen,
  kRead,
  kWrite,
  kTruncate,
  kSync,
  kRename,
  kLink,
  kSymlink,
  kUnlink,
  kMakeFolder,
  kRights,
  kLook,  ///< stat, access, readlink.
  kList,  ///< opendir, readdir.
  kLock,
  kMap,  ///< mmap of a file.
  kClose,
  kDup,     ///< Only in the log.
  kMemory,  ///< Only in the log: how many allocations there were.
};

/// One call as the log reports it. Paths are absolute.
struct Call {
  Kind kind;
  bool changes = false;  ///< Whether it changes a file, or which names there are.
  const char* path = "";
  const char* other = "";   ///< The second path of a renaming or a link.
  int descriptor = -1;      ///< Of an opening: filled in after it.
  std::int64_t number = 0;  ///< Offset, length, flags or mode.
  const void* data = nullptr;
  std::size_t size = 0;
};

enum class Verdict : std::uint8_t {
  kDo,
  kFail,  ///< errno is set.
  kTear,  ///< Do half of it, then call Die.
};

/// Counts the call and says what becomes of it. Does not return if the process ends here.
[[nodiscard]] Verdict Judge(const Call& call);
/// Notes that so many bytes of the medium have become free: on a full disk others can be written.
void NoteRoom(std::int64_t bytes);
/// Notes a call after it was done.
void Log(const Call& call, bool succeeded);
[[noreturn]] void Die();

/// Whether the file is one of those that are counted.
[[nodiscard]] bool IsCounted(const char* path);

/// The path that a descriptor was opened with; empty if it is not counted.
[[nodiscard]] const char* PathOf(int descriptor);
void SetPath(int descriptor, const char* path);

/// Whether this allocation fails.
[[nodiscard]] bool FailsToAllocate();

/// Keeps errno as it was.
class ErrnoKept {
 public:
  ErrnoKept();
  ErrnoKept(const ErrnoKept&) = delete;
  ErrnoKept& operator=(const ErrnoKept&) = delete;
  ~ErrnoKept();

 private:
  int m_errno;
};

/// The next definition of a function, which is the system's.
void* NextFunction(const char* name);

}  // namespace faults
