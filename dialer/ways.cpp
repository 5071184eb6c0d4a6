#include "dialer/ways.h"

#include <algorithm>
#include <cstddef>

#include "backends/text/registry_text.h"
#include "backends/text/say.h"
#include "backends/text/utf.h"
#include "resources/calling_strings.h"

// The words for every outcome of a call: one for scripts, which never changes, and one for people.
namespace dialer {
namespace {

struct CallWords {
  std::string_view code;
  std::u16string_view sentence;
};

/// In the order of CallState.
constexpr std::array<CallWords, 4> kStateWords{{
    {"handed-over", resources::kCallHandedOver},
    {"dialled", resources::kCallDialled},
    {"answered", resources::kCallAnswered},
    {"shown", resources::kCallShown},
}};
static_assert(kStateWords.size() == static_cast<std::size_t>(CallState::kShown) + 1);

/// In the order of CallProblem.
constexpr std::array<CallWords, 21> kProblemWords{{
    {"no-telephone-program", resources::kNoTelephoneProgram},
    {"telephone-program-failed", resources::kTelephoneProgramFailed},
    {"no-port-chosen", resources::kNoPortChosen},
    {"port-not-connected", resources::kChosenPortNotConnected},
    {"port-missing", resources::kPortMissing},
    {"port-denied", resources::kPortDenied},
    {"port-in-use", resources::kPortHasUser},
    {"no-serial-port", resources::kNoSerialPort},
    {"line-settings", resources::kLineSettingsRefused},
    {"port-failed", resources::kPortFailed},
    {"busy", resources::kLineIsBusy},
    {"no-carrier", resources::kNoCarrier},
    {"no-answer", resources::kNobodyAnswers},
    {"no-dial-tone", resources::kNoDialTone},
    {"refused", resources::kModemRefused},
    {"silent", resources::kModemSilent},
    {"garbled", resources::kModemGarbled},
    {"undecided", resources::kModemUndecided},
    {"port-lost", resources::kPortLost},
    {"stopped", resources::kCallStopped},
    {"hang-up-refused", resources::kHangUpRefused},
}};
static_assert(kProblemWords.size() == static_cast<std::size_t>(CallProblem::kHangUpRefused) + 1);

const CallWords& WordsOf(CallState state) { return kStateWords[static_cast<std::size_t>(state)]; }
const CallWords& WordsOf(CallProblem problem) {
  return kProblemWords[static_cast<std::size_t>(problem)];
}

}  // namespace

std::u16string_view WordOf(Way way) { return std::ranges::find(kWays, way, &WayWord::way)->word; }

std::optional<Way> FindWay(std::u16string_view word) {
  const auto found = std::ranges::find(kWays, word, &WayWord::word);
  return found == kWays.end() ? std::nullopt : std::optional(found->way);
}

std::optional<Way> ReadWay(platform::Registry& registry) {
  return FindWay(text::ReadText(registry.OpenKey(kCallsKey), kWayValue));
}

platform::Result<void, platform::RegistryError> ChooseWay(platform::Registry& registry,
                                                          std::optional<Way> way) {
  const platform::OpenedKey key = registry.CreateKey(kCallsKey);
  if (!key) {
    return platform::Failure(key.error());
  }
  return way ? text::SetText(**key, kWayValue, WordOf(*way))
             : platform::AcceptMissing((*key)->DeleteValue(kWayValue));
}

std::string_view CodeOf(CallState state) { return WordsOf(state).code; }
std::string_view CodeOf(CallProblem problem) { return WordsOf(problem).code; }

std::string Explain(CallState state) { return text::Say(WordsOf(state).sentence); }

std::string Explain(const CallFault& fault) {
  return text::Say(WordsOf(fault.problem).sentence, {fault.subject});
}

}  // namespace dialer
