#include "host/cli/file_reason.h"

namespace cli {

std::string ExplainFileError(platform::FileError error) {
  using platform::FileError;
  switch (error) {
    case FileError::kNotFound:
      return "there is no such folder";
    case FileError::kAlreadyExists:
      return "there is a file already";
    case FileError::kAccessDenied:
      return "it is protected, or is no file";
    case FileError::kSharingViolation:
      return "another program has it open";
    case FileError::kDiskFull:
      return "the disk is full";
    case FileError::kReadOnly:
      return "the disk takes no writes";
    case FileError::kLink:
      return "it is a symbolic link, and nothing is written through one";
    default:
      return "it cannot be read or written";
  }
}

}  // namespace cli
