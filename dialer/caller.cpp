#include "dialer/caller.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "backends/text/utf.h"

// The rule that all of this keeps: no number is dialled twice. Another way is tried only as long as
// nothing can have been dialled.
namespace dialer {
namespace {

CallProblem ToCallProblem(platform::SerialError error) {
  using platform::SerialError;
  switch (error) {
    case SerialError::kMissing:
    case SerialError::kLost:
      return CallProblem::kPortMissing;
    case SerialError::kDenied:
      return CallProblem::kPortDenied;
    case SerialError::kInUse:
      return CallProblem::kPortInUse;
    case SerialError::kNoPort:
      return CallProblem::kNoSerialPort;
    case SerialError::kUnsupported:
      return CallProblem::kLineSettings;
    case SerialError::kFailed:
      break;
  }
  return CallProblem::kPortFailed;
}

}  // namespace

Caller::Caller(const CallerParts& parts, CallWish wish) : m_parts(parts), m_wish(std::move(wish)) {}

std::vector<Way> Caller::GetWays() const {
  if (m_wish.way) {
    return {*m_wish.way};
  }
  if (!m_wish.modem.empty()) {
    return {Way::kSerial};
  }
  if (const auto stored = ReadWay(m_parts.registry)) {
    return {*stored};
  }
  std::vector<Way> ways;
  std::ranges::transform(kWays, std::back_inserter(ways), &WayWord::way);
  return ways;
}

CallResult Caller::Call(const Number& number, Waiter& waiter) {
  m_passedOver.clear();
  const std::vector<Way> ways = GetWays();
  for (const Way way : ways) {
    m_way = way;
    CallResult result = CallBy(way, number, waiter);
    // A modem that was asked may have called, whatever it says. Another way would call twice.
    if (result || way == ways.back() || !MayTryAnotherWay(result.error().problem)) {
      return result;
    }
    m_passedOver.push_back({way, std::move(result.error())});
  }
  return CallState::kShown;  // There is always a way.
}

CallResult Caller::CallBy(Way way, const Number& number, Waiter& waiter) {
  switch (way) {
    case Way::kTel:
      return m_parts.handOver(number.ToUri());
    case Way::kSerial:
      return CallByModem(number, waiter);
    case Way::kPrint:
      break;
  }
  return CallState::kShown;
}

CallResult Caller::CallByModem(const Number& number, Waiter& waiter) {
  const auto device = FindDevice();
  if (!device) {
    return platform::Failure(device.error());
  }
  const auto port = Open(*device);
  if (!port) {
    return platform::Failure(port.error());
  }
  return Modem(**port, m_parts.clock, device->stored.hangingUp).Dial(number, waiter);
}

platform::Result<Caller::Device, CallFault> Caller::FindDevice() const {
  auto stored = ReadStoredLine(m_parts.registry);
  if (!stored) {
    return platform::Failure(stored.error());
  }
  if (!m_wish.modem.empty()) {
    return Device{m_wish.modem, std::move(*stored)};
  }
  // The dialog would show a port all the same. But nobody wants a number to be sent to whatever is
  // at a port that nobody chose.
  if (stored->port.empty()) {
    return platform::Failure(CallFault{CallProblem::kNoPortChosen, {}});
  }
  std::u16string name = m_parts.findDevice(stored->port);
  if (name.empty()) {
    return platform::Failure(CallFault{CallProblem::kPortNotConnected, text::ToUtf8(stored->port)});
  }
  return Device{std::move(name), std::move(*stored)};
}

platform::Result<std::unique_ptr<platform::SerialPort>, CallFault> Caller::Open(
    const Device& device) {
  auto port = m_parts.serialPorts.Open(device.name, device.stored.line);
  if (!port) {
    const CallProblem problem = ToCallProblem(port.error());
    return platform::Failure(CallFault{problem, problem == CallProblem::kLineSettings
                                                    ? Describe(device.stored.line)
                                                    : text::ToUtf8(device.name)});
  }
  return std::move(*port);
}

std::optional<CallFault> Caller::FindObstacle(Way way) const {
  if (way == Way::kTel && !m_parts.hasTelephoneProgram()) {
    return CallFault{CallProblem::kNoTelephoneProgram, {}};
  }
  if (way == Way::kSerial) {
    const auto device = FindDevice();
    return device ? std::nullopt : std::optional(device.error());
  }
  return std::nullopt;
}

bool Caller::MayHangUp() const {
  // Settings that cannot be read forbid nothing.
  const auto stored = ReadStoredLine(m_parts.registry);
  return !stored || stored->hangingUp == Modem::HangingUp::kUsed;
}

platform::Result<void, CallFault> Caller::HangUp() {
  const auto device = FindDevice();
  if (!device) {
    return platform::Failure(device.error());
  }
  const auto port = Open(*device);
  if (!port) {
    return platform::Failure(port.error());
  }
  const auto ended = Modem(**port, m_parts.clock, device->stored.hangingUp).HangUp();
  return ended ? platform::Result<void, CallFault>()
               : platform::Failure(CallFault{ended.error(), {}});
}

}  // namespace dialer
