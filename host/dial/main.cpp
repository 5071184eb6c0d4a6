// voxtrel-dial: hears a name and calls that person. `voxtrel dial` starts it.

#include "host/cli/linux_program.h"
#include "host/dial/commands.h"

int main(int argc, char** argv) { return cli::RunProgram(argc, argv, dial::RunDialLine); }
