#pragma once

#include "platform/registry.h"

namespace sqlite {

/// Returns the registry's word for a result code of the library that is a failure.
[[nodiscard]] platform::RegistryError ToRegistryError(int resultCode);

/// As ToRegistryError, for any result code.
[[nodiscard]] platform::Result<void, platform::RegistryError> ToResult(int resultCode);

}  // namespace sqlite
