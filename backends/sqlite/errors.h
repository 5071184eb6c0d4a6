#pragma once

#include "platform/registry.h"

namespace sqlite {

/// The registry's word for a result code of the library; kNone for those of success.
[[nodiscard]] platform::RegistryError ToRegistryError(int resultCode);

}  // namespace sqlite
