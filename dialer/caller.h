#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dialer/modem.h"
#include "dialer/number.h"
#include "dialer/stored_line.h"
#include "dialer/ways.h"
#include "platform/clock.h"
#include "platform/registry.h"
#include "platform/serial_port.h"

namespace dialer {

/// What a caller asks of the machine. All of it outlives the caller.
struct CallerParts {
  platform::Registry& registry;  ///< The settings, which are only read.
  platform::SerialPorts& serialPorts;
  platform::Clock& clock;
  /// Returns whether the desktop has a program for telephone calls.
  std::function<bool()> hasTelephoneProgram;
  /// Hands a "tel:" URI to it.
  std::function<CallResult(const std::string& uri)> handOver;
  /// Returns the device that is known as this port now, such as "/dev/ttyUSB0" for "COM2:". Returns
  /// an empty text if the port is not connected.
  std::function<std::u16string(std::u16string_view port)> findDevice;
};

/// What a user wants for one call.
struct CallWish {
  std::optional<Way> way{};  ///< Nothing: the stored way, or the first one that works.
  std::u16string modem{};    ///< A serial device in the place of the stored port. Empty: none.
};

/// A way that was not taken, since it cannot be used.
struct PassedOverWay {
  Way way = Way::kTel;
  CallFault fault;
};

/// Calls numbers by the way that the user wants. If the user chose none, it tries the ways in the
/// order of kWays and takes the first one that works. A wish that names a modem means the serial
/// port. Used by one thread.
class Caller {
 public:
  Caller(const CallerParts& parts, CallWish wish);

  /// Calls, and waits until it is known what became of the call.
  [[nodiscard]] CallResult Call(const Number& number, Waiter& waiter);

  /// Returns the way that the latest call took, or tried last.
  [[nodiscard]] Way GetWay() const { return m_way; }
  /// Returns the ways that the latest call could not take before.
  [[nodiscard]] const std::vector<PassedOverWay>& GetPassedOver() const { return m_passedOver; }

  /// Returns why this way cannot be used, as far as that is known without trying it. Returns
  /// nothing if it can be.
  [[nodiscard]] std::optional<CallFault> FindObstacle(Way way) const;
  /// Returns the ways that a call tries, in their order.
  [[nodiscard]] std::vector<Way> GetWays() const;

  /// Returns whether the settings allow to hang up.
  [[nodiscard]] bool MayHangUp() const;
  /// Ends the call of the modem.
  [[nodiscard]] platform::Result<void, CallFault> HangUp();

 private:
  /// A device, and how to talk with what is there.
  struct Device {
    std::u16string name;
    StoredLine stored;
  };

  [[nodiscard]] CallResult CallBy(Way way, const Number& number, Waiter& waiter);
  [[nodiscard]] CallResult CallByModem(const Number& number, Waiter& waiter);
  [[nodiscard]] platform::Result<Device, CallFault> FindDevice() const;
  [[nodiscard]] platform::Result<std::unique_ptr<platform::SerialPort>, CallFault> Open(
      const Device& device);

  const CallerParts& m_parts;
  const CallWish m_wish;
  Way m_way = Way::kPrint;
  std::vector<PassedOverWay> m_passedOver;
};

}  // namespace dialer
