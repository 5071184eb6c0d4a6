#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "backends/win32/registry_calls.h"
#include "backends/win32/system_calls.h"

// The system's registry knows no groups of changes. So what a group changes is written down before
// each change, in the same registry. A group that fails is undone by the process itself. If that
// process ends within a group, the next one that changes anything undoes it first.

namespace win32 {

/// One change, as what was there before it.
struct UndoStep {
  enum class Kind : std::uint8_t {
    kKeyMade,     ///< There was no key at `path`.
    kKeyDeleted,  ///< At `path` was a key with all that is in `before`.
    kValueSet,    ///< The key at `path` had no value `name`, or the one in `before`.
  };

  Kind kind = Kind::kKeyMade;
  std::u16string path;  ///< Below the hive.
  std::u16string name;
  KeyTree before;
};

/// Undoes one change. One that is undone already stays so.
[[nodiscard]] Done Undo(HKEY hive, const UndoStep& step);

/// Returns the name of a writer: of this process, and of one object of it.
[[nodiscard]] std::u16string NameOfWriter(const void* object);

/// The changes of one group, on the medium. Used by one thread.
class UndoJournal {
 public:
  /// The journals of all writers are below `path`.
  UndoJournal(HKEY hive, std::u16string path, std::u16string writer);

  /// Writes down a change that is about to be made.
  [[nodiscard]] Done Note(const UndoStep& step);

  /// Forgets all of them, in one step.
  [[nodiscard]] Done Clear();

  /// Undoes what writers of other processes left. A caller holds the lock of writers, so that those
  /// are gone.
  [[nodiscard]] Done Recover() const;

 private:
  const HKEY m_hive;
  const std::u16string m_path;
  const std::u16string m_writer;
  std::uint32_t m_count = 0;
};

/// The lock that one writer of a registry holds at a time, among all processes. It belongs to the
/// thread that took it, and is free if its process ends.
class WriterLock {
 public:
  /// `place` names the registry.
  explicit WriterLock(std::u16string_view place);

  /// Waits for `limit` at most. Fails with kBusy after that. If the lock belongs to another user of
  /// the machine, who shares it with nobody, there is none: `IsHeld` stays false.
  [[nodiscard]] Done Take(std::chrono::milliseconds limit);
  void Release();
  [[nodiscard]] bool IsHeld() const { return m_isHeld; }

 private:
  const std::u16string m_name;
  Handle m_mutex;
  bool m_isHeld = false;
};

}  // namespace win32
