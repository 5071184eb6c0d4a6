#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace e2e {

/// A program that runs next to the test, and ends with this object, or with the test program
/// whatever becomes of that.
class BackgroundProgram {
 public:
  /// What it prints goes to `log`.
  BackgroundProgram(std::vector<std::string> arguments, const std::filesystem::path& log);
  BackgroundProgram(const BackgroundProgram&) = delete;
  BackgroundProgram& operator=(const BackgroundProgram&) = delete;
  ~BackgroundProgram();

  [[nodiscard]] bool HasEnded() const;

  /// Ends it without any farewell.
  void Kill();

  /// Stops it for good: what it holds open stays open.
  void Freeze();

 private:
  pid_t m_process;  ///< 0 or below if there is none any more.
};

}  // namespace e2e
