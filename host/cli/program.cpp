#include "host/cli/program.h"

#include <new>

#include "host/cli/output.h"
#include "host/cli/system.h"

namespace cli {
namespace {

int RunAndFlush(int argc, const char* const* argv, CommandLine run) {
  const int exitCode = run(argc, argv);
  if (FlushOutput()) {
    return exitCode;
  }
  PrintErrorLine("voxtrel: not all of the output could be written to standard output");
  return exitCode == 0 ? kFailed : exitCode;
}

}  // namespace

int RunGuarded(int argc, const char* const* argv, CommandLine run) {
  try {
    return RunAndFlush(argc, argv, run);
  } catch (const std::bad_alloc&) {
    PrintOutOfMemory();
  }
  return kFailed;
}

void PrintOutOfMemory() { WriteError("voxtrel: there is not enough memory\n"); }

}  // namespace cli
