// Has the dialer hear what may be at a serial port: any bytes, in pieces of any length, at any
// time, up to its end.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dialer/modem.h"
#include "tests/fuzz/require.h"
#include "tests/machine/simulated_serial_ports.h"
#include "tests/machine/simulation.h"

namespace {

class NobodyStops final : public dialer::Waiter {
 public:
  [[nodiscard]] bool Wait(std::uint32_t /*milliseconds*/) override { return true; }
};

/// The first byte is the length of the pieces, the second the time between them. Bit 7 of the first
/// says that the port vanishes at the end.
std::vector<machine::ModemStep> StepsOf(std::string_view input) {
  const auto first = static_cast<unsigned char>(input[0]);
  const std::size_t piece = 1 + first % 64U;
  const std::uint32_t pause = static_cast<unsigned char>(input[1]) * 20U;
  std::vector<machine::ModemStep> steps;
  std::uint32_t at = 0;
  for (input.remove_prefix(2); !input.empty(); input.remove_prefix(std::min(piece, input.size()))) {
    steps.push_back(
        {.afterMilliseconds = at += pause, .says = std::string(input.substr(0, piece))});
  }
  if ((first & 0x80U) != 0) {
    steps.push_back({.afterMilliseconds = at, .says = "", .vanishes = true});
  }
  return steps;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) {
    return 0;
  }
  const std::string input(reinterpret_cast<const char*>(data), size);
  machine::Simulation clock;
  machine::SimulatedSerialPorts ports(clock);
  machine::SimulatedModem& modem = ports.Plug(u"/dev/modem");
  modem.answer = [&input](std::string_view /*line*/) { return StepsOf(input); };
  const auto number = dialer::MakeNumber(u"+1 202 555 0101");
  const auto port = ports.Open(u"/dev/modem", {});
  NobodyStops waiter;
  const auto result =
      dialer::Modem(**port, clock, dialer::Modem::HangingUp::kUsed).Dial(*number, waiter);
  constexpr std::string_view kDialled = "ATD+12025550101;\r";
  Require(modem.received.starts_with(kDialled), "the number is dialled");
  const std::string_view rest = std::string_view(modem.received).substr(kDialled.size());
  Require(rest.empty() || rest == "ATH\r" || rest == "ATH\rATH\r",
          "a modem is sent nothing else, whatever it says");
  Require(!result || rest.empty(), "a call is not ended at once");
  Require(clock.GetElapsed() < 120'000, "no wait is without a limit");
  return 0;
}
