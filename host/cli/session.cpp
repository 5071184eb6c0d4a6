#include "host/cli/session.h"

#include <iostream>

#include "backends/text/utf.h"
#include "host/cli/system.h"
#include "host/cli/waiting.h"
#include "resources/fault_strings.h"
#include "resources/strings.h"

// What a session has to say, on a terminal or in one JSON value.
namespace cli {
namespace {

void AppendLine(std::string& lines, std::string_view line) {
  lines.append(lines.empty() ? "" : "\n").append(line);
}

}  // namespace

Session::Session(const Options& options)
    : session::Session(options.machine, *this), m_options(options) {}

void Session::ShowFailure(std::string_view sentence) {
  PrintErrorLine(std::string("voxtrel: ").append(sentence));
  AppendLine(m_messages, sentence);
}

void Session::ShowWarning(std::string_view sentence) {
  PrintErrorLine(std::string("voxtrel: ").append(sentence));
}

void Session::ShowMessage(const headless::ShownMessage& message) {
  const std::string caption = text::ToUtf8(message.caption);
  std::string body = text::ToUtf8(message.box.text);
  // A command has no window to close.
  const std::string advice = text::ToUtf8(resources::kOpenAgain);
  if (body.ends_with(advice)) {
    body.replace(body.size() - advice.size(), advice.size(), "Run the command again.");
  }
  const std::string line = caption.empty() ? body : caption + ": " + body;
  PrintErrorLine(line);
  AppendLine(m_messages, line);
}

bool Session::AgreesTo(const platform::MessageBox& question) {
  if (m_options.yes) {
    return true;
  }
  const std::string line = text::ToUtf8(question.caption) + ": " + text::ToUtf8(question.text);
  if (!IsTerminal(Stream::kInput)) {
    PrintErrorLine(line + " (there is no terminal to ask on; --yes agrees)");
    return false;
  }
  PrintErrorLine(line + " [y/N]");
  std::string answer;
  // Anything but a clear yes is a no, an input that ends too.
  std::getline(std::cin, answer);
  return answer == "y" || answer == "Y" || answer == "yes";
}

void Session::WatchReinit(headless::HeadlessDialog& window) { cli::WatchReinit(window); }

std::string Session::Advise(session::Matter matter) const {
  using session::Matter;
  switch (matter) {
    case Matter::kNoRoot:
      return "; name one with --root DIR";
    case Matter::kNoDesktopBooks:
      return "; choose a vCard file with --contacts FILE";
    case Matter::kUnreadableAddressBook:
      return "; choose another one with --contacts eds or --contacts FILE";
    case Matter::kNoContacts:
      return ". Put your contacts there as vCards, or choose them with --contacts FILE";
  }
  return {};
}

void Session::PrintOutcome() const {
  if (!m_options.json) {
    return;
  }
  std::optional<Json> json = m_json;
  // A list stays a list: scripts that read one look at the exit code.
  if (GetExitCode() != 0 && (!json || json->is_object())) {
    (json ? *json : json.emplace(Json::object())).update(ErrorToJson(GetExitCode(), m_messages));
  }
  if (json) {
    PrintJson(*json);
  }
}

}  // namespace cli
