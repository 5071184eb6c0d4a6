#include <clocale>

#include "host/cli/command_line.h"

int main(int argc, char** argv) {
  // Only the character set, so that pictures fit the terminal; numbers keep their decimal point.
  std::setlocale(LC_CTYPE, "");
  return cli::RunCommandLine(argc, argv);
}
