#pragma once

#include <string>

#include "platform/file_system.h"

namespace cli {

/// Why a file was not opened, made or written, in words that go on after its name and a colon.
/// `error` is not kNone.
[[nodiscard]] std::string ExplainFileError(platform::FileError error);

}  // namespace cli
