#include "host/dial/terminal_face.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "backends/text/utf.h"
#include "host/dial/step_words.h"
#include "platform/threads.h"

namespace dial {
namespace {

using dialer::Reply;
using dialer::Step;

constexpr int kLevelCells = 20;
constexpr double kQuietestDb = -60;  ///< The level of an empty bar.

}  // namespace

TerminalFace::TerminalFace(cli::Session& session, Terminal* terminal, dialer::Manner manner)
    : m_session(session),
      m_terminal(terminal),
      m_manner(manner),
      m_showsLevel(::isatty(STDERR_FILENO) == 1 && !session.GetOptions().json) {}

void TerminalFace::Show(const dialer::StepShown& shown) {
  ClearLevel();
  m_step = shown.step;
  m_choices = shown.callees.size();
  m_isSure = m_isSure || shown.step == Step::kSure;
  // A key that was pressed before a question is no answer to it. But it stops a call.
  const bool asks =
      shown.step == Step::kOneOf || shown.step == Step::kInstead || shown.step == Step::kOffer;
  if (m_terminal != nullptr && asks) {
    m_terminal->ForgetKeys();
  }
  if (m_session.GetOptions().json) {
    cli::PrintJson(ToJson(shown));
  } else {
    PrintStep(shown);
  }
  // A program that reads this through a pipe waits for it now. A lost line is reported at the end.
  static_cast<void>(cli::FlushOutput());
  ReportFailure(shown);
}

void TerminalFace::PrintStep(const dialer::StepShown& shown) {
  switch (shown.step) {
    case Step::kSpeak:
      if (!m_session.HearsFile()) {
        cli::PrintLine(m_hasAsked ? "Say the name again after the tone."
                                  : "Say a name after the tone.");
      }
      m_hasAsked = true;
      return;
    case Step::kNoSpeech:
      return cli::PrintLine("I heard nobody.");
    case Step::kUnknown:
      return cli::PrintLine("I do not know that name, or I did not hear it well.");
    case Step::kSure:
      cli::PrintLine(Describe(shown.callees[0]) + ".");
      if (m_manner.waits && m_manner.asks && shown.callees[0].fault.empty()) {
        cli::PrintLine("The call begins in two seconds. Press any key to stop it.");
      }
      return;
    case Step::kOneOf:
    case Step::kInstead:
      return PrintChoice(shown);
    case Step::kCalling:
      return cli::PrintLine(fmt::format("Calling {}.", Describe(shown.callees[0])));
    case Step::kDialling:
      if (m_terminal != nullptr) {
        cli::PrintLine("Press any key to stop the call.");
      }
      return;
    case Step::kCalled:
      return cli::PrintLine(
          fmt::format("{}: {}.", Describe(shown.callees[0]), dialer::Explain(**shown.call)));
    case Step::kOffer:
      return cli::PrintLine(fmt::format(
          "Keep what you said as one more voice tag of {}? Press Y to keep it, or any other key.",
          text::ToUtf8(shown.callees[0].name)));
    case Step::kKept:
      return cli::PrintLine(
          fmt::format("{} has one more voice tag.", text::ToUtf8(shown.callees[0].name)));
    default:
      return;
  }
}

void TerminalFace::PrintChoice(const dialer::StepShown& shown) {
  if (shown.callees.empty()) {
    cli::PrintLine("I have no other guess.");
  } else {
    cli::PrintLine(shown.step == Step::kOneOf ? "Who is it?" : "Who is it instead?");
  }
  for (std::size_t i = 0; i < shown.callees.size(); ++i) {
    cli::PrintLine(fmt::format("  {}  {}", i + 1, Describe(shown.callees[i])));
  }
  if (m_manner.asks) {
    cli::PrintLine(fmt::format("Press {}S to say the name again, or Escape to stop.",
                               shown.callees.empty() ? "" : "the number, "));
  }
}

void TerminalFace::ReportFailure(const dialer::StepShown& shown) {
  switch (shown.step) {
    case Step::kNotKept:
      return m_session.Warn(fmt::format("the voice tag was not kept: {}", shown.whyNotKept));
    case Step::kNothingTaught:
      return m_session.Fail(
          "no name is taught; teach one with `voxtrel tags learn --contact NAME` or in the window "
          "Voice tags");
    case Step::kNotHeard:
      return m_session.Fail(ExplainNotHeard(m_session, shown.notHeard));
    case Step::kSilent:
      return m_session.Fail(
          fmt::format("{} gives nothing but silence; it may be muted", NameMicrophone(m_session)));
    case Step::kNobodyAsked:
      return m_session.Fail(m_isSure ? "there is no terminal on which you could stop the call; "
                                       "--yes calls without waiting"
                                     : "there is no terminal on which you could choose");
    case Step::kCannotCall:
      return m_session.Fail(fmt::format(
          "{} cannot be called: {}", text::ToUtf8(shown.callees[0].name), shown.callees[0].fault));
    case Step::kNotUnderstood:
      return m_session.Fail("no name was understood, and nobody was called");
    case Step::kStopped:
      return m_session.Fail("stopped; nobody was called");
    case Step::kNotCalled:
      return m_session.Fail(fmt::format("{} was not called: {}",
                                        text::ToUtf8(shown.callees[0].name),
                                        dialer::Explain(shown.call->error())));
    default:
      return;
  }
}

void TerminalFace::ShowProgress(const dialer::ListeningProgress& progress) {
  if (!m_showsLevel || progress.stage != dialer::ListeningProgress::Stage::kSpeak) {
    return;
  }
  // On standard error, since a program may read standard output. The carriage return lets the next
  // line take the place of this one.
  const double share = std::clamp(1 - progress.levelDb / kQuietestDb, 0.0, 1.0);
  const int filled = static_cast<int>(share * kLevelCells);
  const std::string line = fmt::format("\r  [{:#<{}}{:.<{}}] {:.1f} s ", "", filled, "",
                                       kLevelCells - filled, progress.leftMilliseconds / 1000.0);
  static_cast<void>(std::fwrite(line.data(), 1, line.size(), stderr));
  m_levelLength = line.size();
}

/// Takes the line of the level off the screen.
void TerminalFace::ClearLevel() {
  if (m_levelLength > 0) {
    const std::string line = fmt::format("\r{:{}}\r", "", m_levelLength);
    static_cast<void>(std::fwrite(line.data(), 1, line.size(), stderr));
    m_levelLength = 0;
  }
}

Reply TerminalFace::Await(std::uint32_t milliseconds) {
  if (m_terminal == nullptr) {
    // A conversation that asks nobody never waits without a limit.
    if (milliseconds == platform::kNoLimit) {
      return {.kind = Reply::Kind::kStop};
    }
    m_session.GetClock().Sleep(milliseconds);
    return {};
  }
  const Key key = m_terminal->ReadKey(milliseconds);
  if (key.kind == Key::Kind::kNone) {
    return {};
  }
  return key.kind == Key::Kind::kGone ? Reply{.kind = Reply::Kind::kStop} : ToReply(key);
}

Reply TerminalFace::ToReply(Key key) const {
  switch (m_step) {
    case Step::kOneOf:
    case Step::kInstead:
      return ToChoice(key);
    case Step::kOffer: {
      const bool isYes = key.letter == 'y' || key.letter == 'Y';
      return {.kind = isYes ? Reply::Kind::kYes : Reply::Kind::kNo};
    }
    // If nothing is asked, a key stops what goes on: listening, the wait before a call, or the
    // call that is being made.
    default:
      return {.kind = key.kind == Key::Kind::kEscape ? Reply::Kind::kStop : Reply::Kind::kNo};
  }
}

/// A key that stands for nothing is a yes, of which nobody knows to what: it is asked again.
Reply TerminalFace::ToChoice(Key key) const {
  const auto digit = static_cast<std::size_t>(key.letter - '1');
  if (key.letter >= '1' && digit < m_choices) {
    return {.kind = Reply::Kind::kChoice, .choice = digit};
  }
  if (key.letter == 's' || key.letter == 'S') {
    return {.kind = Reply::Kind::kAgain};
  }
  return {.kind = key.kind == Key::Kind::kEscape ? Reply::Kind::kStop : Reply::Kind::kYes};
}

}  // namespace dial
