#include "host/cli/command_line.h"
#include "host/cli/linux_program.h"

int main(int argc, char** argv) { return cli::RunProgram(argc, argv, cli::RunCommandLine); }
