#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/registry.h"
#include "platform/result.h"

namespace dialer {

/// How a number is called.
enum class Way : std::uint8_t {
  kTel,     ///< The desktop's program for "tel:" addresses gets it.
  kSerial,  ///< A modem or telephone at the serial port dials it.
  kPrint,   ///< It is only shown.
};

/// A way and the word by which users and the registry name it.
struct WayWord {
  Way way = Way::kTel;
  std::u16string_view word;
};

/// In the order in which they are tried if none was chosen.
inline constexpr std::array<WayWord, 3> kWays{
    {{Way::kTel, u"tel"}, {Way::kSerial, u"serial"}, {Way::kPrint, u"print"}}};

[[nodiscard]] std::u16string_view WordOf(Way way);
/// Returns nothing if no way has that word.
[[nodiscard]] std::optional<Way> FindWay(std::u16string_view word);

/// Holds what the user chose about calls. Set-up and the command line write it.
inline constexpr std::u16string_view kCallsKey = u"Software\\Zedra\\Voxtrel Calls";
/// Text: the word of a way. Missing if none was chosen.
inline constexpr std::u16string_view kWayValue = u"way";

/// Returns the chosen way. Returns nothing if none was chosen, if another program wrote a word that
/// is none, or if the registry cannot be asked: the first way that works is taken then.
[[nodiscard]] std::optional<Way> ReadWay(platform::Registry& registry);

/// Remembers the choice. Takes an earlier one back if `way` is empty.
[[nodiscard]] platform::Result<void, platform::RegistryError> ChooseWay(
    platform::Registry& registry, std::optional<Way> way);

/// How far a call came.
enum class CallState : std::uint8_t {
  kHandedOver,  ///< The desktop's telephone program has the number.
  kDialled,   ///< The modem dialled it ("OK"). Whether anybody answers is heard, and not reported.
  kAnswered,  ///< "CONNECT".
  kShown,     ///< By way of print. Nobody calls.
};

/// Returns whether a modem made the call, so that it can end it.
[[nodiscard]] constexpr bool IsByModem(CallState state) {
  return state == CallState::kDialled || state == CallState::kAnswered;
}

/// Why there is no call.
enum class CallProblem : std::uint8_t {
  // The way cannot be used. Nothing was dialled, so another way may be tried.
  kNoTelephoneProgram,      ///< The desktop has none for "tel:".
  kTelephoneProgramFailed,  ///< It cannot be started, or fails at once.
  kNoPortChosen,            ///< Nobody stored connection settings, nor named a device.
  kPortNotConnected,        ///< The chosen port has no device now.
  kPortMissing,
  kPortDenied,
  kPortInUse,
  kNoSerialPort,  ///< What is there is no serial port.
  kLineSettings,  ///< The port cannot be set as the settings say.
  kPortFailed,

  // The modem was asked, and there is no call.
  kBusy,
  kNoCarrier,
  kNoAnswer,
  kNoDialTone,
  kModemRefused,    ///< "ERROR", and what a modem says if it may not dial.
  kModemSilent,     ///< It says nothing at all.
  kModemGarbled,    ///< What comes is no answer: the speed is wrong, or it is no modem.
  kModemUndecided,  ///< It listened, and did not say what became of the call in all that time.
  kPortLost,
  kStopped,  ///< The user stopped it.

  kHangUpRefused,  ///< The modem does not end the call.
};

/// Why a call was not made, and about what.
struct CallFault {
  CallProblem problem = CallProblem::kPortFailed;
  std::string subject;  ///< Which port or setting, in UTF-8, as "%1" of its sentence.
};

using CallResult = platform::Result<CallState, CallFault>;

/// Returns whether nothing was dialled because the way cannot be used, so that another way may be
/// tried without calling twice.
[[nodiscard]] constexpr bool MayTryAnotherWay(CallProblem problem) {
  return problem <= CallProblem::kPortFailed;
}

/// Returns the same word for a state or a problem in every language, for scripts: "no-answer".
[[nodiscard]] std::string_view CodeOf(CallState state);
[[nodiscard]] std::string_view CodeOf(CallProblem problem);

/// Returns what became of a call in plain words of the user's language: a part of a sentence, which
/// begins with a small letter and has no full stop.
[[nodiscard]] std::string Explain(CallState state);
[[nodiscard]] std::string Explain(const CallFault& fault);

}  // namespace dialer
