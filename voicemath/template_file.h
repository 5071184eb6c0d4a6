#pragma once

#include <cstdint>
#include <string_view>

#include "framework/archive.h"
#include "framework/object.h"
#include "platform/file_system.h"

namespace voicemath {

/// Why a template was not written or read.
enum class TemplateFileError : std::uint8_t {
  kNotCreated,  ///< Writing: the file can neither be opened nor made.
  kNotOpened,
  kTorn,       ///< Reading: the file ends before its template does.
  kBadFormat,  ///< The template contradicts itself.
  kFileFailure,
  kDiskFull,  ///< Writing.
};

/// Writes `object` through a storing archive to the file at `path`, made if it is missing. The
/// file is never shortened: an existing longer one keeps its end, which readers do not look at.
/// After kNotCreated nothing has been written; after a later failure the file is torn.
[[nodiscard]] platform::Result<void, TemplateFileError> WriteTemplateFile(
    platform::FileSystem& files, std::u16string_view path, framework::CObject& object);

/// Does the same as WriteTemplateFile, but the file takes the place of an earlier one in one step,
/// and is as long as its template. Whatever fails, the path holds the earlier file or the new one.
[[nodiscard]] platform::Result<void, platform::FileError> ReplaceTemplateFile(
    platform::FileSystem& files, std::u16string_view path, framework::CObject& object);

/// Reads the file at `path` into `object` through a loading archive.
[[nodiscard]] platform::Result<void, TemplateFileError> ReadTemplateFile(
    platform::FileSystem& files, std::u16string_view path, framework::CObject& object);

}  // namespace voicemath
