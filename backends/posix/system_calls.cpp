#include "backends/posix/system_calls.h"

namespace posix {

using platform::FileError;

FileError ToFileError(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ENAMETOOLONG:
      return FileError::kNotFound;
    case EEXIST:
      return FileError::kAlreadyExists;
    case EACCES:
    case EPERM:
    case EISDIR:
    case ENXIO:
      return FileError::kAccessDenied;
    case ETXTBSY:
    case EWOULDBLOCK:
      return FileError::kSharingViolation;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return FileError::kDiskFull;
    case EROFS:
      return FileError::kReadOnly;
    default:
      return FileError::kOther;
  }
}

}  // namespace posix
