#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "tests/support/fault_plan.h"

namespace support {

/// What was done to files and devices, one step after the other.
using Steps = std::vector<std::string>;

/// The files of a test: every call goes on to other files. A plan lets the n-th call fail. Calls of
/// the file system, of its files, replacements and searches are counted together, those of
/// destructors not at all. Steps are noted if a test wants them. A test that changes what a call
/// does overrides it.
///
/// A failed Write writes the first half of its bytes, as on a disk that fills up. A failed Flush or
/// Close fails after it was done. Any other failed call does nothing, but a search that fails again
/// and again comes to its end.
class WatchedFileSystem : public platform::FileSystem {
 public:
  explicit WatchedFileSystem(platform::FileSystem& inner) : m_inner(inner) {}
  /// Notes in `steps` what is opened, written, flushed, published, closed and deleted.
  WatchedFileSystem(platform::FileSystem& inner, Steps& steps) : m_inner(inner), m_steps(&steps) {}

  /// Lets call `number` (from 1, counted from now on) fail with `error`.
  void FailCall(std::size_t number, Failing failing,
                platform::FileError error = platform::FileError::kOther) {
    m_error = error;
    m_plan.FailCall(number, failing);
  }
  [[nodiscard]] std::size_t CountCalls() const { return m_plan.CountCalls(); }
  [[nodiscard]] bool HasFailed() const { return m_plan.HasFailed(); }

  [[nodiscard]] platform::Result<std::unique_ptr<platform::File>, platform::FileError> Open(
      std::u16string_view path, const platform::OpenMode& mode) override;
  [[nodiscard]] platform::Result<std::unique_ptr<platform::Replacement>, platform::FileError>
  OpenReplacement(std::u16string_view path) override;
  [[nodiscard]] platform::Result<void, platform::FileError> Delete(
      std::u16string_view path) override;
  [[nodiscard]] platform::Result<void, platform::FileError> CreateFolder(
      std::u16string_view path) override;
  [[nodiscard]] platform::Result<void, platform::FileError> FlushFolder(
      std::u16string_view path) override;
  [[nodiscard]] platform::Result<std::unique_ptr<platform::FileSearch>, platform::FileError> Find(
      std::u16string_view pattern) override;

 private:
  class WatchedFile;
  class WatchedReplacement;
  class WatchedSearch;

  void Note(std::string step);
  /// Counts one call. Fails if the plan says so.
  [[nodiscard]] platform::Result<void, platform::FileError> Count();

  platform::FileSystem& m_inner;
  Steps* const m_steps = nullptr;  ///< Null if nobody wants them.
  FaultPlan m_plan;
  platform::FileError m_error = platform::FileError::kOther;
};

}  // namespace support
