// Systems on which a path is bytes, of whatever character set.

#include "backends/text/host_path.h"
#include "backends/text/utf.h"

namespace text {

std::filesystem::path ToHostPath(std::string_view name) { return std::filesystem::path(name); }

std::string FromHostPath(const std::filesystem::path& path) { return path.native(); }

std::u16string ToFileName(const std::filesystem::path& path) { return FromHostName(path.native()); }

}  // namespace text
