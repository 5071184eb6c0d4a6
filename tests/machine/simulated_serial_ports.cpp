#include "tests/machine/simulated_serial_ports.h"

#include <algorithm>

namespace machine {
namespace {

using platform::Failure;
using platform::SerialError;

class SimulatedSerialPort final : public platform::SerialPort {
 public:
  SimulatedSerialPort(platform::Clock& clock, SimulatedModem& modem)
      : m_clock(clock), m_modem(modem) {
    ++m_modem.openCount;
    m_modem.isLineUp = false;
    if (!modem.saysAtFirst.empty()) {
      m_coming.push_back({clock.GetTickCount(), {.says = modem.saysAtFirst}});
    }
  }
  ~SimulatedSerialPort() override {
    --m_modem.openCount;
    m_modem.isLineUp = m_keepsLineUp;
  }

  [[nodiscard]] platform::Result<void, SerialError> Write(std::span<const std::byte> bytes,
                                                          std::uint32_t milliseconds) override {
    if (m_isLost) {
      return Failure(SerialError::kLost);
    }
    if (m_modem.takesNothing) {
      m_clock.Sleep(milliseconds);
      return Failure(SerialError::kFailed);
    }
    for (const std::byte byte : bytes) {
      m_modem.received += static_cast<char>(byte);
      if (byte != std::byte{'\r'}) {
        m_line += static_cast<char>(byte);
        continue;
      }
      for (ModemStep& step : m_modem.answer(m_line)) {
        m_coming.push_back({m_clock.GetTickCount() + step.afterMilliseconds, std::move(step)});
      }
      m_line.clear();
    }
    return {};
  }

  [[nodiscard]] platform::Result<std::size_t, SerialError> Read(
      std::span<std::byte> bytes, std::uint32_t milliseconds) override {
    const std::uint32_t end = m_clock.GetTickCount() + milliseconds;
    if (m_coming.empty() || m_coming.front().at > end) {
      m_clock.Sleep(milliseconds);
      return 0;
    }
    if (const std::uint32_t now = m_clock.GetTickCount(); m_coming.front().at > now) {
      m_clock.Sleep(m_coming.front().at - now);
    }
    std::string& says = m_coming.front().step.says;
    if (m_isLost || m_coming.front().step.vanishes) {
      m_isLost = true;
      return Failure(SerialError::kLost);
    }
    const std::size_t count = std::min(bytes.size(), says.size());
    std::ranges::copy_n(std::as_bytes(std::span(says)).begin(), static_cast<std::ptrdiff_t>(count),
                        bytes.begin());
    says.erase(0, count);
    if (says.empty()) {
      m_coming.pop_front();
    }
    return count;
  }

  void KeepLineUp() override { m_keepsLineUp = true; }

 private:
  struct Coming {
    std::uint32_t at;
    ModemStep step;
  };

  platform::Clock& m_clock;
  SimulatedModem& m_modem;
  std::string m_line;
  std::deque<Coming> m_coming;
  bool m_isLost = false;
  bool m_keepsLineUp = false;
};

}  // namespace

SimulatedModem& SimulatedSerialPorts::Plug(std::u16string_view device) {
  return m_modems[std::u16string(device)];
}

void SimulatedSerialPorts::Refuse(std::u16string_view device, SerialError error) {
  m_refused[std::u16string(device)] = error;
}

platform::Result<std::unique_ptr<platform::SerialPort>, SerialError> SimulatedSerialPorts::Open(
    std::u16string_view device, const platform::SerialLine& line) {
  if (const auto refused = m_refused.find(device); refused != m_refused.end()) {
    return Failure(refused->second);
  }
  const auto modem = m_modems.find(device);
  if (modem == m_modems.end()) {
    return Failure(SerialError::kMissing);
  }
  if (modem->second.openCount > 0) {
    return Failure(SerialError::kInUse);
  }
  modem->second.lines.push_back(line);
  return std::make_unique<SimulatedSerialPort>(m_clock, modem->second);
}

}  // namespace machine
