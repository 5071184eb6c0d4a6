#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "backends/posix/host_paths.h"
#include "backends/posix/posix_file.h"
#include "platform/file_system.h"

namespace posix {

/// A new file of a PosixFileSystem on its way to its name. Until it is published it has no name at
/// all. If the file system cannot do that, its name is a random one, made by this process alone.
class PosixReplacement final : public platform::Replacement {
 public:
  enum class Making : std::uint8_t { kWithoutName, kWithRandomName };

  [[nodiscard]] static platform::Result<std::unique_ptr<platform::Replacement>, platform::FileError>
  Open(HostPlace place, Others others, Making making = Making::kWithoutName);

  PosixReplacement(HostPlace place, Others others, Descriptor file, std::string temporary);
  PosixReplacement(const PosixReplacement&) = delete;
  PosixReplacement& operator=(const PosixReplacement&) = delete;
  ~PosixReplacement() override;

  [[nodiscard]] platform::File& GetFile() override { return m_file; }
  [[nodiscard]] platform::Result<void, platform::FileError> Publish(
      platform::Durability durability) override;

 private:
  [[nodiscard]] platform::Result<void, platform::FileError> TakePlace();
  /// Makes one attempt. Returns nothing if another process made the file at the path meanwhile.
  [[nodiscard]] std::optional<platform::Result<void, platform::FileError>> TryTakePlace();
  [[nodiscard]] platform::Result<void, platform::FileError> NameTemporarily();

  const HostPlace m_place;
  const Others m_others;
  PosixFile m_file;
  std::string m_temporary;  ///< Path of the random name, "" while there is none.
  bool m_hasPlace = false;
};

}  // namespace posix
