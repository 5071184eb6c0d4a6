#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <mutex>
#include <optional>
#include <string_view>

#include "platform/file_system.h"

namespace support {

/// For how long an injected failure lasts.
enum class Failing : std::uint8_t {
  kOnce,         ///< One call fails, the next works again.
  kFromThenOn,   ///< Every later call fails likewise.
  kPowerFailure  ///< From then on nothing reaches the files any more, as if the process was killed
                 ///< in this call.
};

std::ostream& operator<<(std::ostream& stream, Failing failing);

/// Forwards every call to other files and lets the n-th one fail. Calls of the file system, of its
/// files, replacements and searches are counted together, those of destructors not at all.
///
/// A failed Write writes the first half of its bytes, as on a disk that fills up; a failed Flush or
/// Close fails after it was done; any other failed call does nothing, but that a search which fails
/// again and again comes to its end. Tests let call 1, 2, ... fail until a run ends without a
/// failure.
class FailingFileSystem final : public platform::FileSystem {
 public:
  explicit FailingFileSystem(platform::FileSystem& files) : m_files(files) {}

  /// Lets call `number` (from 1, counted from now on) fail with `error`.
  void FailCall(std::size_t number, Failing failing,
                platform::FileError error = platform::FileError::kOther);

  /// Calls since the latest FailCall, or since the start.
  [[nodiscard]] std::size_t CountCalls() const;
  /// Whether a failure was injected since the latest FailCall.
  [[nodiscard]] bool HasFailed() const;

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

  /// What becomes of one call.
  struct Verdict {
    std::optional<platform::FileError> error;
    bool isForwarded = true;  ///< Whether a call that may take effect although it fails does so.

    [[nodiscard]] bool Fails() const { return error.has_value(); }
    /// What a call returns that fails.
    [[nodiscard]] auto Failure() const { return platform::Failure(*error); }
  };

  /// Counts one call. For the files and searches of this file system.
  [[nodiscard]] Verdict CountCall();

 private:
  platform::FileSystem& m_files;
  mutable std::mutex m_mutex;
  std::size_t m_calls = 0;
  std::size_t m_failingCall = 0;
  Failing m_failing = Failing::kOnce;
  platform::FileError m_error = platform::FileError::kOther;
};

}  // namespace support
