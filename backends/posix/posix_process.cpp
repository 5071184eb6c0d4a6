#include "backends/posix/posix_process.h"

#include <unistd.h>

#include <cstdio>

namespace posix {

void PosixProcess::End(int exitCode) {
  // Not every stream: another thread may hold the lock of one that it reads from.
  std::fflush(stdout);
  std::fflush(stderr);
  ::_exit(exitCode);
}

}  // namespace posix
