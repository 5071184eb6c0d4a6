#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/serial_port.h"

namespace machine {

/// What a simulated modem does after it was sent a line.
struct ModemStep {
  std::uint32_t afterMilliseconds = 0;
  std::string says;
  bool vanishes = false;  ///< It is unplugged then.
};

/// A modem that plays what a test has prepared. Time is that of the test's clock.
struct SimulatedModem {
  /// What it does after the line "ATD…;" or "ATH", without its CR. Later steps count from the line
  /// too.
  std::function<std::vector<ModemStep>(std::string_view line)> answer = [](std::string_view) {
    return std::vector<ModemStep>{};
  };
  std::string saysAtFirst;    ///< What waits to be read when the port is opened.
  bool takesNothing = false;  ///< Its flow control never lets a byte through.

  // What it has seen:
  std::string received;
  std::vector<platform::SerialLine> lines;  ///< With which it was opened.
  int openCount = 0;                        ///< How many have it open now.
  bool isLineUp = false;                    ///< It was left up by whoever closed it last.
};

/// Serial ports of which each leads to a simulated modem, or fails to open.
class SimulatedSerialPorts final : public platform::SerialPorts {
 public:
  explicit SimulatedSerialPorts(platform::Clock& clock) : m_clock(clock) {}

  /// Plugs a modem in, which stays with this.
  SimulatedModem& Plug(std::u16string_view device);
  /// From now on, opening this device fails so.
  void Refuse(std::u16string_view device, platform::SerialError error);

  [[nodiscard]] platform::Result<std::unique_ptr<platform::SerialPort>, platform::SerialError> Open(
      std::u16string_view device, const platform::SerialLine& line) override;

 private:
  platform::Clock& m_clock;
  std::map<std::u16string, SimulatedModem, std::less<>> m_modems;
  std::map<std::u16string, platform::SerialError, std::less<>> m_refused;
};

}  // namespace machine
