#include <clocale>

#include "host/cli/command_line.h"
#include "host/cli/output.h"

int main(int argc, char** argv) {
  cli::ReserveStandardStreams();
  // Only the character set, so that pictures fit the terminal; numbers keep their decimal point.
  std::setlocale(LC_CTYPE, "");
  return cli::RunCommandLine(argc, argv);
}
