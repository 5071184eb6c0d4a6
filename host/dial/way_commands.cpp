#include <fmt/format.h>

#include <optional>
#include <string>

#include "backends/text/utf.h"
#include "dialer/ways.h"
#include "host/cli/output.h"
#include "host/dial/commands.h"

namespace dial {

void ListWays(cli::Session& session, const cli::DialOptions& /*options*/) {
  if (!session.OpenForReading()) {
    return;
  }
  const std::optional<dialer::Way> chosen = dialer::ReadWay(session.GetRegistry());
  for (const dialer::WayWord& way : dialer::kWays) {
    cli::PrintLine(fmt::format("{} {}", way.way == chosen ? "*" : " ", text::ToUtf8(way.word)));
  }
}

void UseWay(cli::Session& session, const cli::DialOptions& options) {
  if (!session.OpenForChanging()) {
    return;
  }
  const std::optional<dialer::Way> way = dialer::FindWay(text::FromUtf8(options.chosenWay));
  if (const auto kept = dialer::ChooseWay(session.GetRegistry(), way); !kept) {
    session.Fail(session.ExplainStore(kept.error()));
    return;
  }
  session.SetJson({{"chosen", way ? options.chosenWay : ""}});
}

}  // namespace dial
