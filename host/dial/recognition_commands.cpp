#include <fmt/format.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "backends/text/utf.h"
#include "dialer/callee.h"
#include "dialer/recognizer.h"
#include "host/cli/file_arguments.h"
#include "host/cli/output.h"
#include "host/dial/commands.h"
#include "host/dial/step_words.h"

namespace dial {
namespace {

using dialer::Callee;
using dialer::Certainty;

std::string_view ToWord(Certainty certainty) {
  switch (certainty) {
    case Certainty::kSure:
      return "sure";
    case Certainty::kOneOf:
      return "one-of";
    case Certainty::kUnknown:
      break;
  }
  return "unknown";
}

/// Who was heard in a file.
struct HeardFile {
  std::string name;
  Certainty certainty;
  std::vector<Callee> callees;
};

void PrintHeard(const HeardFile& heard, bool asJson) {
  if (asJson) {
    cli::Json candidates = cli::Json::array();
    for (const Callee& callee : heard.callees) {
      candidates.push_back(ToJson(callee));
    }
    cli::PrintJson({{"file", heard.name},
                    {"answer", ToWord(heard.certainty)},
                    {"candidates", std::move(candidates)}});
    return;
  }
  cli::PrintLine(fmt::format("{}: {}", heard.name, ToWord(heard.certainty)));
  for (const Callee& callee : heard.callees) {
    const auto& candidate = callee.candidate;
    cli::PrintLine(fmt::format("  {:3.0f} %  {}  {}  {}  (tag {})", 100 * candidate.score,
                               text::ToUtf8(callee.listedName), text::ToUtf8(callee.number),
                               text::ToUtf8(candidate.phoneKind), text::ToUtf8(candidate.tag)));
  }
}

}  // namespace

void RecognizeFiles(cli::Session& session, const cli::DialOptions& options) {
  if (!session.OpenForReading()) {
    return;
  }
  const std::optional<dialer::TaughtTags> taught = ReadTaught(session);
  if (!taught) {
    return;
  }
  if (taught->tags.empty()) {
    session.Fail("there are no voice tags; `voxtrel tags learn` makes one");
    return;
  }
  platform::ContactsStore* const contacts = OpenContacts(session);
  // One for all files: to make it takes many times as long as to ask it.
  const dialer::Recognizer recognizer(
      taught->tags, options.quick ? dialer::Steps::kTemplatesOnly : dialer::Steps::kBoth);
  for (const std::string& name : options.recognize) {
    const auto file = cli::FileArgument::ForReading(name);
    if (!file) {
      session.Fail(file.error());
      continue;
    }
    const auto take = ReadTake(session.GetFiles(), file->GetPath());
    if (!take) {
      session.Fail(fmt::format("{}: {}", file->GetName(), take.error()));
      continue;
    }
    const dialer::Answer answer = recognizer.Recognize(*take);
    HeardFile heard{file->GetName(), answer.certainty, {}};
    for (const dialer::Candidate& candidate : answer.candidates) {
      heard.callees.push_back(dialer::FindCallee(contacts, candidate));
    }
    PrintHeard(heard, session.GetOptions().json);
  }
}

}  // namespace dial
