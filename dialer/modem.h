#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "dialer/listening.h"
#include "dialer/modem_answers.h"
#include "dialer/number.h"
#include "dialer/ways.h"
#include "platform/clock.h"
#include "platform/serial_port.h"

namespace dialer {

/// A modem, or a telephone that understands its commands (ITU-T V.250), at an open serial port. It
/// is sent two commands and nothing else: "ATD" with a number and ";", which asks for a call with a
/// voice, and "ATH", which ends it. Used by one thread.
class Modem {
 public:
  /// Whether calls are ended by ATH.
  enum class HangingUp : std::uint8_t { kUsed, kNotUsed };

  /// `port` and `clock` outlive this.
  Modem(platform::SerialPort& port, platform::Clock& clock, HangingUp hangingUp);

  /// Dials, and waits for the modem's answer: for kSilence while it says nothing at all, and for
  /// kLongestDialling once it has repeated the command. The waiter is asked all the while. If there
  /// is no call in the end, the modem hangs up, so that it does not keep the line. If there is one,
  /// it goes on after the port is closed.
  [[nodiscard]] CallResult Dial(const Number& number, Waiter& waiter);

  /// Ends the call. Fails if the modem does not confirm that. Does nothing if hanging up is not
  /// used.
  [[nodiscard]] platform::Result<void, CallProblem> HangUp();

  /// Milliseconds without a byte after which nobody is there.
  static constexpr std::uint32_t kSilence = 20'000;
  /// Milliseconds that a network takes for a call. Pauses in the number come on top.
  static constexpr std::uint32_t kLongestDialling = 90'000;
  /// Milliseconds for one pause in a number, and for one wait for a dial tone.
  static constexpr std::uint32_t kPause = 5'000;

 private:
  using Asked = platform::Result<ModemAnswer, CallProblem>;

  [[nodiscard]] platform::Result<void, CallProblem> Send(std::string_view command);
  /// Waits for an answer. `waiter` is null if nothing stops that.
  [[nodiscard]] Asked Await(std::uint32_t silence, std::uint32_t longest, Waiter* waiter);
  void ForgetWhatWasSaid();

  platform::SerialPort& m_port;
  platform::Clock& m_clock;
  const HangingUp m_hangingUp;
};

}  // namespace dialer
