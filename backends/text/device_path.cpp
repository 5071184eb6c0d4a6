#include "backends/text/device_path.h"

#include <algorithm>
#include <cstddef>

namespace text {
namespace {

using namespace std::literals;

bool IsPlainName(std::u16string_view part) {
  return !part.empty() && part != u"." && part != u".." &&
         part.find_first_of(u"/\0"sv) == std::u16string_view::npos;
}

}  // namespace

bool IsDevicePath(std::u16string_view path) { return path.starts_with(u'\\'); }

std::optional<std::vector<std::u16string_view>> SplitDevicePath(std::u16string_view path) {
  if (!IsDevicePath(path)) {
    return std::nullopt;
  }
  std::vector<std::u16string_view> parts;
  for (std::size_t start = 1; start <= path.size();) {
    const std::size_t end = std::min(path.find(u'\\', start), path.size());
    const std::u16string_view part = path.substr(start, end - start);
    if (!IsPlainName(part)) {
      return std::nullopt;
    }
    parts.push_back(part);
    start = end + 1;
  }
  return parts;
}

}  // namespace text
