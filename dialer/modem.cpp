#include "dialer/modem.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

namespace dialer {
namespace {

using platform::Failure;
using platform::SerialError;

using Chunk = std::array<std::byte, 256>;

/// Milliseconds after which the waiter is asked again.
constexpr std::uint32_t kAskInterval = 50;
/// Milliseconds of quiet after which a line counts as ended.
constexpr std::uint32_t kQuiet = 500;
constexpr std::uint32_t kWriteLimit = 5'000;
constexpr std::uint32_t kHangUpLimit = 2'000;

CallProblem ToProblem(SerialError error) {
  // A modem that takes no byte holds the line of flow control: it is off, or there is none.
  return error == SerialError::kFailed ? CallProblem::kModemSilent : CallProblem::kPortLost;
}

CallResult ToResult(ModemAnswer answer) {
  switch (answer) {
    case ModemAnswer::kOk:
      return CallState::kDialled;
    case ModemAnswer::kConnect:
      return CallState::kAnswered;
    case ModemAnswer::kBusy:
      return Failure(CallFault{CallProblem::kBusy, {}});
    case ModemAnswer::kNoCarrier:
      return Failure(CallFault{CallProblem::kNoCarrier, {}});
    case ModemAnswer::kNoAnswer:
      return Failure(CallFault{CallProblem::kNoAnswer, {}});
    case ModemAnswer::kNoDialTone:
      return Failure(CallFault{CallProblem::kNoDialTone, {}});
    case ModemAnswer::kError:
      break;
  }
  return Failure(CallFault{CallProblem::kModemRefused, {}});
}

/// Returns why no answer came in all that time.
CallProblem JudgeSilence(const AnswerReader& reader) {
  if (!reader.HasHeard()) {
    return CallProblem::kModemSilent;
  }
  return reader.HasNoise() ? CallProblem::kModemGarbled : CallProblem::kModemUndecided;
}

}  // namespace

Modem::Modem(platform::SerialPort& port, platform::Clock& clock, HangingUp hangingUp)
    : m_port(port), m_clock(clock), m_hangingUp(hangingUp) {}

CallResult Modem::Dial(const Number& number, Waiter& waiter) {
  ForgetWhatWasSaid();
  const std::string dialled = number.ToDialString();
  // A modem says nothing while it pauses.
  const auto pauses = std::ranges::count_if(dialled, [](char c) { return c == ',' || c == 'W'; });
  const auto longer = static_cast<std::uint32_t>(pauses) * kPause;
  const auto sent = Send("ATD" + dialled + ";");
  const Asked answer =
      sent ? Await(kSilence + longer, kLongestDialling + longer, &waiter) : Failure(sent.error());
  CallResult result = answer ? ToResult(*answer) : Failure(CallFault{answer.error(), {}});
  if (result) {
    m_port.KeepLineUp();
  } else if (result.error().problem != CallProblem::kPortLost) {
    // Whether the modem confirms that changes nothing about the call, of which is reported.
    static_cast<void>(HangUp());
  }
  return result;
}

platform::Result<void, CallProblem> Modem::HangUp() {
  if (m_hangingUp == HangingUp::kNotUsed) {
    return {};
  }
  // A modem that is dialling takes the first byte for the wish to stop, and the rest for a command
  // that it does not know. So it is asked twice.
  constexpr int kTries = 2;
  CallProblem problem = CallProblem::kModemSilent;
  for (int i = 0; i < kTries; ++i) {
    const auto sent = Send("ATH");
    const Asked answer = sent ? Await(kHangUpLimit, kHangUpLimit, nullptr) : Failure(sent.error());
    if (answer && *answer == ModemAnswer::kOk) {
      return {};
    }
    problem = answer ? CallProblem::kHangUpRefused : answer.error();
    if (problem == CallProblem::kPortLost) {
      break;
    }
  }
  return Failure(problem);
}

platform::Result<void, CallProblem> Modem::Send(std::string_view command) {
  const std::string line = std::string(command) + '\r';
  const auto sent = m_port.Write(std::as_bytes(std::span(line)), kWriteLimit);
  return sent ? platform::Result<void, CallProblem>() : Failure(ToProblem(sent.error()));
}

Modem::Asked Modem::Await(std::uint32_t silence, std::uint32_t longest, Waiter* waiter) {
  AnswerReader reader;
  Chunk chunk{};
  const std::uint32_t start = m_clock.GetTickCount();
  std::uint32_t lastHeard = start;
  while (true) {
    const auto count = m_port.Read(chunk, kAskInterval);
    if (!count) {
      return Failure(CallProblem::kPortLost);
    }
    const std::uint32_t now = m_clock.GetTickCount();
    for (const std::byte byte : std::span(chunk).first(*count)) {
      if (const auto answer = reader.Take(byte)) {
        return *answer;
      }
      lastHeard = now;
    }
    // Some modems end a line late, or not at all.
    if (now - lastHeard >= kQuiet) {
      if (const auto answer = reader.TakeUnendedLine()) {
        return *answer;
      }
    }
    // A modem that repeats the command has understood the speed of the line, and only the network
    // is slow. One that says nothing is switched off.
    if (now - start >= (reader.HasEcho() ? longest : silence)) {
      return Failure(JudgeSilence(reader));
    }
    if (waiter != nullptr && !waiter->Wait(0)) {
      return Failure(CallProblem::kStopped);
    }
  }
}

void Modem::ForgetWhatWasSaid() {
  // A port that never stops talking is no reason to wait for its silence.
  constexpr int kMostChunks = 64;
  Chunk chunk{};
  for (int i = 0; i < kMostChunks; ++i) {
    const auto count = m_port.Read(chunk, 0);
    if (!count || *count == 0) {
      return;
    }
  }
}

}  // namespace dialer
