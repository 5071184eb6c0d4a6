#include "backends/win32/registry_order.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

#include "backends/text/names.h"

namespace win32 {
namespace {

using Keys = std::vector<ListedKey>;

/// Returns the tick count that a name is the decimal text of.
std::optional<std::uint32_t> ToTickCount(const std::optional<std::u16string>& name) {
  if (!name) {
    return std::nullopt;
  }
  std::string digits;
  for (const char16_t unit : *name) {
    digits += unit < 0x80 ? static_cast<char>(unit) : '?';
  }
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size() ||
      number < std::numeric_limits<std::int32_t>::min() ||
      number > std::numeric_limits<std::uint32_t>::max()) {
    return std::nullopt;
  }
  return static_cast<std::uint32_t>(number);
}

/// Puts keys that were changed at one moment in order.
void OrderByTickCounts(Keys::iterator begin, Keys::iterator end) {
  const auto countOf = [](const ListedKey& key) {
    const auto count = ToTickCount(key.name);
    return std::pair(!count, count.value_or(0));
  };
  // A tick count begins again at 0 after 49.7 days, so these counts lie on a circle. Tags that were
  // made one after the other are near to each other there. The widest gap on the circle is
  // therefore the one before the first tag.
  std::ranges::stable_sort(begin, end, {}, countOf);
  const auto rest =
      std::find_if(begin, end, [](const ListedKey& key) { return !ToTickCount(key.name); });
  auto first = begin;
  std::uint32_t widest = 0;
  for (auto key = begin; key != rest; ++key) {
    const auto before = key == begin ? rest - 1 : key - 1;
    // The difference of two counts is right also over the end of the numbers.
    const std::uint32_t gap = *ToTickCount(key->name) - *ToTickCount(before->name);
    if (gap > widest) {
      widest = gap;
      first = key;
    }
  }
  std::rotate(begin, first, rest);
}

}  // namespace

Keys InOrderOfMaking(Keys listed, const std::vector<std::u16string>& noted) {
  std::map<std::u16string, std::size_t> places;
  for (const std::u16string& name : noted) {
    places.try_emplace(text::FoldName(name), places.size());
  }
  using Place =
      std::pair<std::size_t, std::uint64_t>;  // Among those noted, and the time of others.
  std::vector<std::pair<Place, ListedKey>> keys;
  for (ListedKey& key : listed) {
    const auto found = key.name ? places.find(text::FoldName(*key.name)) : places.end();
    const Place place =
        found == places.end() ? Place(places.size(), key.written) : Place(found->second, 0);
    keys.emplace_back(place, std::move(key));
  }
  std::ranges::stable_sort(keys, {}, [](const auto& key) { return key.first; });
  listed.clear();
  for (std::size_t i = 0; i < keys.size();) {
    const std::size_t begin = i;
    for (const Place place = keys[begin].first; i < keys.size() && keys[i].first == place; ++i) {
      listed.push_back(std::move(keys[i].second));
    }
    OrderByTickCounts(listed.begin() + static_cast<std::ptrdiff_t>(begin), listed.end());
  }
  return listed;
}

}  // namespace win32
