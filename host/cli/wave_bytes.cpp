#include "host/cli/wave_bytes.h"

#include <cstdint>

#include "host/session/explanations.h"

namespace cli {
namespace {

using platform::Failure;
using platform::Result;

/// Room for a minute with two channels at the highest rates that are in use. Only the beginning
/// counts.
constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 27U;

}  // namespace

Result<std::vector<std::byte>, std::string> ReadWaveBytes(platform::FileSystem& files,
                                                          std::u16string_view path) {
  const auto file = files.Open(path, {platform::FileAccess::kRead, platform::FileShare::kRead,
                                      platform::FileCreation::kOpenExisting});
  if (!file) {
    return Failure(session::ExplainUnread(files, path));
  }
  const auto length = (*file)->GetLength();
  if (length && *length > kMostBytes) {
    return Failure(std::string("it is too long for a recording of a name"));
  }
  std::vector<std::byte> bytes(length ? static_cast<std::size_t>(*length) : 0);
  const auto read = (*file)->Read(bytes);
  if (!length || !read) {
    return Failure(std::string("it cannot be read"));
  }
  bytes.resize(*read);
  return bytes;
}

}  // namespace cli
