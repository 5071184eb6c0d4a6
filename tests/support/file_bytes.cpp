#include "tests/support/file_bytes.h"

#include <algorithm>
#include <span>

namespace support {

using platform::FileAccess;
using platform::FileCreation;
using platform::FileError;
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

FileError WriteWhole(platform::FileSystem& files, std::u16string_view path,
                     std::string_view content) {
  const platform::OpenedFile opened =
      files.Open(path, {FileAccess::kWrite, FileShare::kNone, FileCreation::kCreateAlways});
  if (opened.error != FileError::kNone) {
    return opened.error;
  }
  const FileError written = opened.file->Write(std::as_bytes(std::span(content)));
  const FileError closed = opened.file->Close();
  return written != FileError::kNone ? written : closed;
}

std::optional<std::string> ReadWhole(platform::FileSystem& files, std::u16string_view path) {
  const platform::OpenedFile opened =
      files.Open(path, {FileAccess::kRead, FileShare::kRead, FileCreation::kOpenExisting});
  if (opened.error != FileError::kNone) {
    return std::nullopt;
  }
  const std::optional<std::uint64_t> length = opened.file->GetLength();
  if (!length) {
    return std::nullopt;
  }
  std::vector<std::byte> bytes(static_cast<std::size_t>(*length));
  if (opened.file->Read(bytes) != bytes.size()) {
    return std::nullopt;
  }
  return ToText(bytes);
}

std::vector<std::u16string> FindNames(platform::FileSystem& files, std::u16string_view pattern) {
  std::vector<std::u16string> names;
  platform::StartedSearch started = files.FindFirst(pattern);
  if (started.error != FileError::kNone) {
    return names;
  }
  names.push_back(started.first.name);
  for (platform::FoundFile found; started.search->Next(found) == FileError::kNone;) {
    names.push_back(found.name);
  }
  return names;
}

}  // namespace support
