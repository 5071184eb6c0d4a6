#include "host/dial/step_words.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include "backends/text/say.h"
#include "backends/text/utf.h"
#include "host/session/explanations.h"
#include "resources/report_strings.h"

namespace dial {
namespace {

using dialer::Callee;
using dialer::NotHeard;
using dialer::Step;

/// In the order of Step. Scripts go by these words, so they are never translated.
constexpr std::array<std::string_view, 23> kStepWords{
    "speak",          "no-speech",      "unknown",    "sure",   "one-of",       "instead",
    "calling",        "dialling",       "offer",      "kept",   "not-kept",     "in-call",
    "not-hung-up",    "nothing-taught", "not-heard",  "silent", "nobody-asked", "cannot-call",
    "not-understood", "stopped",        "not-called", "called", "hung-up"};
static_assert(kStepWords.size() == static_cast<std::size_t>(Step::kHungUp) + 1);

}  // namespace

cli::Json ToJson(const Callee& callee) {
  return {{"contact", text::ToUtf8(callee.listedName)},
          {"number", text::ToUtf8(callee.number)},
          {"kind", text::ToUtf8(callee.candidate.phoneKind)},
          {"tag", text::ToUtf8(callee.candidate.tag)},
          {"distance", callee.candidate.distance},
          {"score", callee.candidate.score}};
}

cli::Json ToJson(const dialer::StepShown& shown) {
  cli::Json json{{"step", kStepWords[static_cast<std::size_t>(shown.step)]}};
  if (!shown.callees.empty()) {
    cli::Json candidates = cli::Json::array();
    for (const Callee& callee : shown.callees) {
      candidates.push_back(ToJson(callee));
    }
    json["candidates"] = std::move(candidates);
  }
  if (shown.call != nullptr) {
    json["result"] =
        *shown.call ? dialer::CodeOf(**shown.call) : dialer::CodeOf(shown.call->error().problem);
  }
  if (shown.step == Step::kCannotCall) {
    json["reason"] = shown.callees[0].fault;
  } else if (shown.step == Step::kNotKept) {
    json["reason"] = shown.whyNotKept;
  }
  return json;
}

std::string Describe(const Callee& callee) {
  std::string line = text::ToUtf8(callee.name);
  if (!callee.number.empty()) {
    line += fmt::format(", {} {}", text::ToUtf8(callee.candidate.phoneKind),
                        text::ToUtf8(callee.number));
  }
  return line;
}

std::string NameMicrophone(session::Session& session) {
  const std::string& file = session.GetMachineOptions().microphone;
  if (!file.empty()) {
    return file;
  }
  if (const auto inputs = session.GetWaveInputs().List()) {
    const auto used = std::ranges::find(*inputs, true, &platform::WaveInput::isUsed);
    if (used != inputs->end()) {
      return fmt::format("the microphone \"{}\"", text::ToUtf8(used->description));
    }
  }
  return "the microphone";
}

std::string ExplainNotHeard(session::Session& session, NotHeard reason) {
  const std::string& file = session.GetMachineOptions().microphone;
  switch (reason) {
    case NotHeard::kStopped:
      break;
    case NotHeard::kNoMicrophone:
      return file.empty() ? "there is no microphone, or no sound server; plug a microphone in, or "
                            "take a recording with --microphone FILE"
                          : file + ": " +
                                session::ExplainUnread(session.GetFiles(),
                                                       session::Session::ToSystemPath(file));
    case NotHeard::kWrongFormat:
      return text::Say(resources::kMicrophoneFileOtherFormat, {file});
    case NotHeard::kRefused:
      return NameMicrophone(session) + " gives nothing; another program may have it";
    case NotHeard::kLost:
      return file.empty() ? text::Say(resources::kMicrophoneLost)
                          : text::Say(resources::kMicrophoneFileNotRead, {file});
  }
  return "it was stopped";
}

}  // namespace dial
