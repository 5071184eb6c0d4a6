#pragma once

#include <cstdint>

namespace test_applet {

/// In what way this applet goes wrong; each library has its own.
[[gnu::visibility("hidden")]] extern const char* const kFaultOfThisLibrary;

/// What the entry of an applet does.
[[nodiscard]] std::int32_t Receive(std::uint32_t message, std::intptr_t lParam1,
                                   std::intptr_t lParam2);

}  // namespace test_applet
