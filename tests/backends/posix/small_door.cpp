#include <string>

#include "backends/posix/library.h"

extern "C" {
__attribute__((visibility("default"))) int TellFortyTwo();
__attribute__((visibility("default"))) void TellOwnFile(std::string& file);
}

int TellFortyTwo() { return 42; }

void TellOwnFile(std::string& file) { file = posix::FindOwnFile().native(); }
