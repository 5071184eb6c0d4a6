#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "host/cli/output.h"
#include "host/cli/program.h"
#include "host/session/session.h"

namespace cli {

/// What stands before the command.
struct Options {
  machine::Options machine;
  bool json = false;
  bool yes = false;  ///< Answers every confirmation with OK.
};

/// One run of the command line: a session that reports to the terminal. Message boxes go to
/// standard error as "caption: text". A confirmation is asked on the terminal, and refused if there
/// is none.
///
/// A script reads one JSON value for each command. What goes wrong is known only when the command
/// has ended. So this keeps the value until then, and adds the error to it.
class Session final : private session::Outlet, public session::Session {
 public:
  /// `options` are filled while the command line is parsed, and read when a command first asks.
  explicit Session(const Options& options);

  [[nodiscard]] const Options& GetOptions() const { return m_options; }

  /// Sets the value that the command prints with --json. It is printed when the command has ended.
  void SetJson(Json json) { m_json = std::move(json); }

  /// Prints the JSON value if there is one to print. If the command failed, an object gets the
  /// member "error", and without a value there is one of the error alone. An array stays as it is.
  void PrintOutcome() const;

  [[nodiscard]] int GetExitCode() const { return HasFailed() ? kFailed : 0; }

 private:
  void ShowFailure(std::string_view sentence) override;
  void ShowWarning(std::string_view sentence) override;
  void ShowMessage(const headless::ShownMessage& message) override;
  [[nodiscard]] bool AgreesTo(const platform::MessageBox& question) override;
  void WatchReinit(headless::HeadlessDialog& window) override;
  [[nodiscard]] std::string Advise(session::Matter matter) const override;

  const Options& m_options;
  std::string m_messages;  ///< Failures and message boxes, a line each.
  std::optional<Json> m_json;
};

}  // namespace cli
