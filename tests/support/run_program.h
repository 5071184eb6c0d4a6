#pragma once

#include <string>
#include <vector>

namespace support {

struct ProgramRun {
  int exitCode = -1;  ///< 128 + the signal's number if one ended the program.
  /// The most memory that was resident at one time, in KiB: of the program, or of this one's own
  /// data when it started it, the more of both.
  long peakKiB = 0;
  std::string out;
  std::string err;
};

/// Runs a program with arguments, nothing on its standard input, and `environment` ("NAME=value")
/// added to this program's own, and waits for its end.
[[nodiscard]] ProgramRun RunProgram(const std::vector<std::string>& arguments,
                                    const std::vector<std::string>& environment = {});

}  // namespace support
