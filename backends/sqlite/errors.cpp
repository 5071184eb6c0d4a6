#include "backends/sqlite/errors.h"

#include <sqlite3.h>

namespace sqlite {

using platform::RegistryError;

RegistryError ToRegistryError(int resultCode) {
  // A change below a key that is gone breaks the reference to it.
  if (resultCode == SQLITE_CONSTRAINT_FOREIGNKEY) {
    return RegistryError::kNotFound;
  }
  // Even a reader makes the index beside the log. Where that has no room the library does not speak
  // of a full medium.
  if (resultCode == SQLITE_IOERR_SHMSIZE) {
    return RegistryError::kFull;
  }
  constexpr int kPrimaryCode = 0xFF;
  switch (resultCode & kPrimaryCode) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
      return RegistryError::kBusy;
    case SQLITE_READONLY:
    case SQLITE_PERM:
      return RegistryError::kReadOnly;
    case SQLITE_FULL:
      return RegistryError::kFull;
    case SQLITE_TOOBIG:
      return RegistryError::kInvalid;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_FORMAT:
      return RegistryError::kDamaged;
    default:
      return RegistryError::kOther;
  }
}

platform::Result<void, RegistryError> ToResult(int resultCode) {
  if (resultCode == SQLITE_OK || resultCode == SQLITE_ROW || resultCode == SQLITE_DONE) {
    return {};
  }
  return platform::Failure(ToRegistryError(resultCode));
}

}  // namespace sqlite
