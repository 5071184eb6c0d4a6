#include "dialer/recent_calls.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "backends/text/registry_text.h"
#include "backends/text/utf.h"
#include "dialer/ways.h"
#include "storage/phone_types.h"

// The latest call stands first. So if another program wrote a line against the rules, those before
// it still count, and what is lost is the oldest.
namespace dialer {
namespace {

template <typename Number>
std::optional<Number> TakeNumber(std::string_view& line) {
  Number number = 0;
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
  if (error != std::errc() || end == line.data() + line.size() || *end != ' ') {
    return std::nullopt;
  }
  line.remove_prefix(static_cast<std::size_t>(end - line.data()) + 1);
  return number;
}

std::optional<RecentCall> ParseCall(std::string_view line) {
  const auto time = TakeNumber<std::int64_t>(line);
  const auto oid = time ? TakeNumber<std::int32_t>(line) : std::nullopt;
  std::u16string kind = text::FromUtf8(line);
  return oid && storage::FindPhoneType(kind)
             ? std::optional(RecentCall{*time, *oid, std::move(kind)})
             : std::nullopt;
}

}  // namespace

std::vector<RecentCall> ReadRecentCalls(platform::Registry& registry) {
  const std::string text = text::ToUtf8(text::ReadText(registry.OpenKey(kCallsKey), kRecentValue));
  std::vector<RecentCall> calls;
  std::string_view rest = text;
  while (!rest.empty() && calls.size() < kMostRecentCalls) {
    const std::size_t end = rest.find('\n');
    auto call = ParseCall(rest.substr(0, end));
    if (!call) {
      break;
    }
    calls.push_back(std::move(*call));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  return calls;
}

platform::Result<void, platform::RegistryError> NoteCall(platform::Registry& registry,
                                                         const RecentCall& call) {
  std::vector<RecentCall> calls = ReadRecentCalls(registry);
  calls.insert(calls.begin(), call);
  calls.resize(std::min(calls.size(), kMostRecentCalls));
  std::string lines;
  for (const RecentCall& each : calls) {
    lines += std::to_string(each.time) + ' ' + std::to_string(each.oid) + ' ' +
             text::ToUtf8(each.phoneKind) + '\n';
  }
  const platform::OpenedKey key = registry.CreateKey(kCallsKey);
  return key ? text::SetText(**key, kRecentValue, text::FromUtf8(lines))
             : platform::Failure(key.error());
}

}  // namespace dialer
