#pragma once

#include <optional>

#include "platform/result.h"

namespace support {

/// Why an operation failed; nothing if it worked. `EXPECT_EQ(ErrorOf(file.Close()), std::nullopt)`
/// shows the error of an operation that should have worked.
template <typename Value, typename Error>
[[nodiscard]] std::optional<Error> ErrorOf(const platform::Result<Value, Error>& result) {
  return result.has_value() ? std::nullopt : std::optional<Error>(result.error());
}

}  // namespace support
