#include "tests/support/file_bytes.h"

#include <algorithm>
#include <span>

namespace support {

using platform::FileAccess;
using platform::FileCreation;
using platform::FileShare;

std::vector<std::byte> ToBytes(std::string_view text) {
  const auto bytes = std::as_bytes(std::span(text));
  return {bytes.begin(), bytes.end()};
}

std::string ToText(const std::vector<std::byte>& bytes) {
  std::string text(bytes.size(), '\0');
  std::ranges::transform(bytes, text.begin(), [](std::byte b) { return static_cast<char>(b); });
  return text;
}

platform::Result<void, platform::FileError> WriteWhole(platform::FileSystem& files,
                                                       std::u16string_view path,
                                                       std::string_view content) {
  const auto file =
      files.Open(path, {FileAccess::kWrite, FileShare::kNone, FileCreation::kCreateAlways});
  if (!file) {
    return platform::Failure(file.error());
  }
  const auto written = (*file)->Write(std::as_bytes(std::span(content)));
  const auto closed = (*file)->Close();
  return written ? closed : written;
}

std::optional<std::string> ReadWhole(platform::FileSystem& files, std::u16string_view path) {
  const auto file =
      files.Open(path, {FileAccess::kRead, FileShare::kRead, FileCreation::kOpenExisting});
  if (!file) {
    return std::nullopt;
  }
  const auto length = (*file)->GetLength();
  if (!length) {
    return std::nullopt;
  }
  std::vector<std::byte> bytes(static_cast<std::size_t>(*length));
  if ((*file)->Read(bytes) != bytes.size()) {
    return std::nullopt;
  }
  return ToText(bytes);
}

std::vector<std::u16string> FindNames(platform::FileSystem& files, std::u16string_view pattern) {
  std::vector<std::u16string> names;
  const auto search = files.Find(pattern);
  if (!search) {
    return names;
  }
  for (auto found = (*search)->Next(); found && *found; found = (*search)->Next()) {
    names.push_back((*found)->name);
  }
  return names;
}

}  // namespace support
