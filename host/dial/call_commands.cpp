#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "backends/text/utf.h"
#include "dialer/conversation.h"
#include "dialer/number.h"
#include "dialer/ways.h"
#include "host/calling/local_caller.h"
#include "host/cli/output.h"
#include "host/dial/commands.h"

// One call by the way that the options or the settings choose, and the command that ends the call
// of a modem.
namespace dial {
namespace {

using dialer::CallResult;
using dialer::Way;

dialer::CallWish WishOf(const cli::DialOptions& options) {
  return {.way = dialer::FindWay(text::FromUtf8(options.way)),
          .modem = text::FromHostName(options.modem)};
}

/// What was dialled: the text that the way takes.
std::string DialledBy(Way way, const dialer::Number& number) {
  return way == Way::kSerial ? number.ToDialString() : number.ToUri();
}

/// {"step":"way","way","dialled"}. If other ways could not be taken before, there is "passedOver":
/// [{"way","result","reason"},...].
cli::Json WayToJson(const dialer::Caller& caller, const dialer::Number& number) {
  cli::Json json{{"step", "way"},
                 {"way", text::ToUtf8(dialer::WordOf(caller.GetWay()))},
                 {"dialled", DialledBy(caller.GetWay(), number)}};
  for (const dialer::PassedOverWay& passed : caller.GetPassedOver()) {
    json["passedOver"].push_back({{"way", text::ToUtf8(dialer::WordOf(passed.way))},
                                  {"result", dialer::CodeOf(passed.fault.problem)},
                                  {"reason", dialer::Explain(passed.fault)}});
  }
  return json;
}

/// Says which way the call took. If the user chose none, it says why it was not an earlier one.
void ReportWay(cli::Session& session, const dialer::Caller& caller, const dialer::Number& number) {
  if (session.GetOptions().json) {
    cli::PrintJson(WayToJson(caller, number));
    return;
  }
  for (const dialer::PassedOverWay& passed : caller.GetPassedOver()) {
    session.Warn(fmt::format("not called by {}: {}", text::ToUtf8(dialer::WordOf(passed.way)),
                             dialer::Explain(passed.fault)));
  }
  if (caller.GetWay() == Way::kPrint) {
    cli::PrintLine(text::ToUtf8(number.GetText()));
  }
}

}  // namespace

CallResult PlaceCall(cli::Session& session, const cli::DialOptions& options,
                     const dialer::Callee& callee, dialer::Waiter& waiter) {
  const auto number = dialer::MakeNumber(callee.number);
  if (!number) {
    // Nobody offers such a callee. Nothing may be sent for him all the same.
    return platform::Failure(dialer::CallFault{dialer::CallProblem::kModemRefused, {}});
  }
  calling::LocalCaller caller(session.GetRegistry(), session.GetClock(), WishOf(options));
  CallResult result = caller.Get().Call(*number, waiter);
  // Only now it is known which way the call took.
  ReportWay(session, caller.Get(), *number);
  // The modem keeps the line after this program has ended. So the user needs another command to end
  // the call.
  if (result && caller.Get().GetWay() == Way::kSerial && !session.GetOptions().json &&
      caller.Get().MayHangUp()) {
    cli::PrintLine("To end the call: voxtrel dial --hang-up" +
                   (options.modem.empty() ? "" : " --modem " + options.modem));
  }
  return result;
}

void HangUp(cli::Session& session, const cli::DialOptions& options) {
  if (!session.OpenForReading()) {
    return;
  }
  calling::LocalCaller caller(session.GetRegistry(), session.GetClock(), WishOf(options));
  if (!caller.Get().MayHangUp()) {
    session.Fail(
        "the connection settings say that hanging up is not used; "
        "`voxtrel connection set no-hang-up=no` allows it");
    return;
  }
  if (const auto ended = caller.Get().HangUp(); !ended) {
    session.Fail("the modem did not hang up: " + dialer::Explain(ended.error()));
    return;
  }
  session.SetJson({{"step", "hung-up"}});
}

}  // namespace dial
