#include "host/dial/commands.h"

#include "dialer/taught_tags.h"
#include "dialer/wave_reading.h"
#include "host/cli/wave_bytes.h"

namespace dial {

using platform::Failure;
using platform::Result;

Result<std::vector<std::int16_t>, std::string> ReadTake(platform::FileSystem& files,
                                                        std::u16string_view path) {
  const auto bytes = cli::ReadWaveBytes(files, path);
  if (!bytes) {
    return Failure(bytes.error());
  }
  auto samples = dialer::DecodeWave(*bytes, dialer::kMostSeconds);
  if (!samples) {
    return Failure(std::string(samples.error() == dialer::WaveError::kNoWave
                                   ? "it is not a wave file"
                                   : "its sound is compressed or of an unusual format"));
  }
  if (samples->empty()) {
    return Failure(std::string("it holds no sound"));
  }
  return std::move(*samples);
}

}  // namespace dial
