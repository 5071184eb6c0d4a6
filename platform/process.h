#pragma once

namespace platform {

/// The process that hosts the system.
class Process {
 public:
  Process() = default;
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  virtual ~Process() = default;

  /// Ends the process with `exitCode`. A host that must outlive the applet ends only the applet:
  /// the call then returns, so every caller must leave at once, having changed nothing more. May be
  /// called from any thread.
  virtual void End(int exitCode) = 0;
};

}  // namespace platform
