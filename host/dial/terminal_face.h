#pragma once

#include <cstddef>
#include <cstdint>

#include "dialer/conversation.h"
#include "host/cli/session.h"
#include "host/dial/terminal.h"

namespace dial {

/// A conversation on a terminal: lines on standard output, keys from standard input. With --json it
/// prints an object for each step, {"step","candidates"} with what the step has besides, and no
/// line for people. What goes wrong is reported to the session.
class TerminalFace final : public dialer::Face {
 public:
  /// Without a `terminal` nobody is asked. What is handed over outlives this.
  TerminalFace(cli::Session& session, Terminal* terminal, dialer::Manner manner);

  void Show(const dialer::StepShown& shown) override;
  void ShowProgress(const dialer::ListeningProgress& progress) override;
  [[nodiscard]] dialer::Reply Await(std::uint32_t milliseconds) override;

 private:
  void PrintStep(const dialer::StepShown& shown);
  void PrintChoice(const dialer::StepShown& shown);
  void ReportFailure(const dialer::StepShown& shown);
  void ClearLevel();
  [[nodiscard]] dialer::Reply ToReply(Key key) const;
  [[nodiscard]] dialer::Reply ToChoice(Key key) const;

  cli::Session& m_session;
  Terminal* const m_terminal;
  const dialer::Manner m_manner;
  const bool m_showsLevel;
  std::size_t m_levelLength = 0;  ///< Of the line of the level, if it is on the screen.
  dialer::Step m_step = dialer::Step::kSpeak;
  std::size_t m_choices = 0;  ///< In the step that is shown.
  bool m_isSure = false;      ///< Somebody was sure once.
  bool m_hasAsked = false;    ///< For a name, once at least.
};

}  // namespace dial
