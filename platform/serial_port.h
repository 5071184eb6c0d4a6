#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "platform/result.h"

namespace platform {

enum class StopBits : std::uint8_t { kOne, kOneAndHalf, kTwo };

/// How both ends keep each other from sending too much.
enum class FlowControl : std::uint8_t {
  kNone,
  kHardware,  ///< The wires RTS and CTS.
  kSoftware,  ///< The characters XON and XOFF.
};

/// How a serial line is set. There is no parity.
struct SerialLine {
  std::uint32_t baudRate = 9600;
  int dataBits = 8;
  StopBits stopBits = StopBits::kOne;
  FlowControl flowControl = FlowControl::kNone;
};

enum class SerialError : std::uint8_t {
  kMissing,      ///< There is no such device.
  kDenied,       ///< The user may not use it.
  kInUse,        ///< Another program has it.
  kNoPort,       ///< It is no serial port.
  kUnsupported,  ///< The port cannot be set so.
  kLost,         ///< It went away while it was open.
  kFailed,
};

/// A serial port that is open, for this program alone. The destructor closes it, without waiting
/// for what was not sent yet. Used by one thread.
class SerialPort {
 public:
  SerialPort() = default;
  SerialPort(const SerialPort&) = delete;
  SerialPort& operator=(const SerialPort&) = delete;
  virtual ~SerialPort() = default;

  /// Takes all of `bytes` to be sent. Waits for at most `milliseconds`, and fails with kFailed if
  /// the other end takes none for so long.
  [[nodiscard]] virtual Result<void, SerialError> Write(std::span<const std::byte> bytes,
                                                        std::uint32_t milliseconds) = 0;

  /// Waits for at most `milliseconds` until something comes, and reads what is there, as much as
  /// `bytes` has room for. Returns how many bytes that were. Returns 0 if nothing came.
  [[nodiscard]] virtual Result<std::size_t, SerialError> Read(std::span<std::byte> bytes,
                                                              std::uint32_t milliseconds) = 0;

  /// From now on, closing the port leaves its line up: a modem goes on with its call. Otherwise it
  /// hangs up, if it watches the line.
  virtual void KeepLineUp() = 0;
};

/// The serial ports of the machine.
class SerialPorts {
 public:
  SerialPorts() = default;
  SerialPorts(const SerialPorts&) = delete;
  SerialPorts& operator=(const SerialPorts&) = delete;
  virtual ~SerialPorts() = default;

  /// Opens a port and sets its line. Does not wait for a carrier. Never null. `device` is the name
  /// by which the machine knows it, such as "/dev/ttyUSB0".
  [[nodiscard]] virtual Result<std::unique_ptr<SerialPort>, SerialError> Open(
      std::u16string_view device, const SerialLine& line) = 0;
};

}  // namespace platform
