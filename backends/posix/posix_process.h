#pragma once

#include "platform/process.h"

namespace posix {

/// The process of the program itself, which really ends: the call does not return.
class PosixProcess final : public platform::Process {
 public:
  /// Standard output and standard error are flushed. Nothing else is done, since other threads may
  /// still run: no destructors of static objects, no exit handlers.
  void End(int exitCode) override;
};

}  // namespace posix
