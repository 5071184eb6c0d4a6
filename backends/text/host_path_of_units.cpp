// Systems on which a path is UTF-16.

#include <algorithm>

#include "backends/text/host_path.h"
#include "backends/text/utf.h"

namespace text {

std::filesystem::path ToHostPath(std::string_view name) {
  const std::u16string units = FromHostName(name);
  return std::filesystem::path(std::wstring(units.begin(), units.end()));
}

std::string FromHostPath(const std::filesystem::path& path) {
  return ToHostName(std::u16string(path.native().begin(), path.native().end()));
}

std::u16string ToFileName(const std::filesystem::path& path) {
  std::u16string name(path.native().begin(), path.native().end());
  std::ranges::replace(name, u'\\', u'/');
  return name;
}

}  // namespace text
