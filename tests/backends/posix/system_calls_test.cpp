#include "backends/posix/system_calls.h"

#include <gtest/gtest.h>

namespace {

using platform::FileError;
using posix::ToFileError;

TEST(Errors, EachErrorOfTheSystemHasItsMeaning) {
  EXPECT_EQ(ToFileError(ENOENT), FileError::kNotFound);
  EXPECT_EQ(ToFileError(ENOTDIR), FileError::kNotFound);
  EXPECT_EQ(ToFileError(ENAMETOOLONG), FileError::kNotFound);
  EXPECT_EQ(ToFileError(EEXIST), FileError::kAlreadyExists);
  EXPECT_EQ(ToFileError(EACCES), FileError::kAccessDenied);
  EXPECT_EQ(ToFileError(EPERM), FileError::kAccessDenied);
  EXPECT_EQ(ToFileError(EISDIR), FileError::kAccessDenied);
  EXPECT_EQ(ToFileError(ETXTBSY), FileError::kSharingViolation);
  EXPECT_EQ(ToFileError(ENOSPC), FileError::kDiskFull);
  EXPECT_EQ(ToFileError(EDQUOT), FileError::kDiskFull);
  EXPECT_EQ(ToFileError(EFBIG), FileError::kDiskFull);
  EXPECT_EQ(ToFileError(EROFS), FileError::kReadOnly);
  EXPECT_EQ(ToFileError(ELOOP), FileError::kOther) << "Nobody knows what is there.";
  EXPECT_EQ(ToFileError(EIO), FileError::kOther);
}

TEST(Errors, AnInterruptedCallIsMadeAgain) {
  int calls = 0;
  const int result = posix::Retry([&] {
    errno = EINTR;
    return ++calls < 3 ? -1 : 7;
  });
  EXPECT_EQ(result, 7);
  EXPECT_EQ(calls, 3);
}

TEST(Errors, AnotherFailureIsNotTriedAgain) {
  int calls = 0;
  const int result = posix::Retry([&] {
    errno = EIO;
    ++calls;
    return -1;
  });
  EXPECT_EQ(result, -1);
  EXPECT_EQ(calls, 1);
}

}  // namespace
