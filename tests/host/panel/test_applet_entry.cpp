// What differs from one applet to the next. All else is compiled once for all of them.

#include "tests/host/panel/test_applet.h"

const char* const test_applet::kFaultOfThisLibrary = TEST_APPLET_FAULT;

extern "C" __attribute__((visibility("default"))) std::int32_t TEST_APPLET_ENTRY(
    void* /*parent*/, std::uint32_t message, std::intptr_t lParam1, std::intptr_t lParam2) {
  return test_applet::Receive(message, lParam1, lParam2);
}
