#include "tests/voicemath/twins/trim.h"

#include <algorithm>
#include <array>

namespace twins {

void TrimWaveFile(ByteFile& file, Wave& wave) {
  const std::uint32_t first = wave.firstSample;
  const std::uint32_t last = wave.lastSample;
  const std::uint32_t total = wave.dataBytes / 2;
  const bool differs = first > 0 || last < total - 1;
  if (!differs || !(first < last)) {
    return;
  }
  const std::uint32_t samples = last - first + 1;
  std::array<std::byte, 2048> buffer{};
  // One pass more than there are full buffers. Reading and writing go through the same file: if
  // the samples began before byte 44, a pass reads what the pass before it wrote. If the file
  // ends early, the buffer keeps samples of the pass before, and they are written.
  for (std::uint32_t i = 0; i <= samples / 1024; ++i) {
    const std::uint32_t count = std::min<std::uint32_t>(samples - 1024 * i, 1024);
    const auto part = std::span(buffer).first(std::size_t{count} * 2);
    file.Seek(wave.dataOffset + (std::uint64_t{first} + 1024ULL * i) * 2);
    file.Read(part);
    file.Seek(44 + 2048ULL * i);
    file.Write(part);
  }
  const std::uint32_t dataBytes = samples * 2;
  file.Seek(0);
  file.Write(HeaderFor(dataBytes));
  file.SetLength(std::uint64_t{dataBytes} + 44);
  wave.firstSample = 0;
  wave.dataBytes = dataBytes;
  wave.lastSample = dataBytes / 2 - 1;
  // The data offset stays: of a file whose samples did not begin at byte 44, what follows reads
  // from the old place.
}

}  // namespace twins
