#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "backends/text/utf.h"
#include "dialer/ways.h"
#include "host/calling/local_caller.h"
#include "host/cli/output.h"
#include "host/dial/commands.h"

namespace dial {
namespace {

/// A way, and what a call would do with it.
struct ListedWay {
  std::string name;
  bool isUsed = false;
  std::optional<dialer::CallFault> obstacle;
};

std::vector<ListedWay> ReadWays(const dialer::Caller& caller) {
  std::vector<ListedWay> listed;
  const std::vector<dialer::Way> tried = caller.GetWays();
  bool isFound = false;
  for (const dialer::WayWord& way : dialer::kWays) {
    ListedWay item{text::ToUtf8(way.word), false, caller.FindObstacle(way.way)};
    const bool isTried = std::ranges::find(tried, way.way) != tried.end();
    // The only way that is tried is taken, whatever is in its way.
    item.isUsed = isTried && !isFound && (!item.obstacle || tried.size() == 1);
    isFound = isFound || item.isUsed;
    listed.push_back(std::move(item));
  }
  return listed;
}

}  // namespace

void ListWays(cli::Session& session, const cli::DialOptions& options) {
  if (!session.OpenForReading()) {
    return;
  }
  platform::Registry& registry = session.GetRegistry();
  calling::LocalCaller caller(registry, session.GetClock(),
                              {.way = {}, .modem = text::FromHostName(options.modem)});
  const std::vector<ListedWay> ways = ReadWays(caller.Get());
  if (!session.GetOptions().json) {
    for (const ListedWay& way : ways) {
      cli::PrintLine(fmt::format("{} {:<7}{}", way.isUsed ? "*" : " ", way.name,
                                 way.obstacle ? dialer::Explain(*way.obstacle) : "works"));
    }
    return;
  }
  cli::Json list = cli::Json::array();
  for (const ListedWay& way : ways) {
    list.push_back({{"name", way.name}, {"used", way.isUsed}, {"works", !way.obstacle}});
    if (way.obstacle) {
      list.back()["reason"] = dialer::Explain(*way.obstacle);
    }
  }
  const std::optional<dialer::Way> chosen = dialer::ReadWay(registry);
  session.SetJson(
      {{"ways", std::move(list)}, {"chosen", chosen ? text::ToUtf8(dialer::WordOf(*chosen)) : ""}});
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
