#include "tests/voicemath/twins/wave_header.h"

#include <algorithm>
#include <array>

namespace twins {
namespace {

int CheckFixedFields(std::span<const std::byte> start) {
  if (!TextAt(start, 0, "RIFF")) {
    return 2;
  }
  if (!TextAt(start, 8, "WAVE")) {
    return 3;
  }
  if (Unsigned16At(start, 20) != 1) {
    return 4;
  }
  if (Unsigned16At(start, 22) != 1) {
    return 5;
  }
  if (Unsigned16At(start, 34) != 16) {
    return 6;
  }
  return 0;
}

}  // namespace

Wave CheckHeader(ByteFile& file) {
  if (file.Length() < 44) {
    return {.code = 1};
  }
  std::array<std::byte, 100> start{};
  file.Seek(0);
  file.Read(std::span(start).first(
      static_cast<std::size_t>(std::min<std::uint64_t>(file.Length(), start.size()))));
  if (const int code = CheckFixedFields(start); code != 0) {
    return {.code = code};
  }
  for (std::size_t k = 0; k <= 96; k += 4) {
    if (!TextAt(start, k, "data")) {
      continue;
    }
    // The size after an id at 96 lies after the buffer. What the file lacks of it is zero.
    std::array<std::byte, 4> size{};
    file.Seek(k + 4);
    file.Read(size);
    const std::uint32_t dataBytes = Unsigned32At(size, 0);
    // Against the length of the whole file, header included.
    if (dataBytes > file.Length()) {
      return {.code = 7};
    }
    // Unsigned: no data at all makes the last sample 4,294,967,295.
    return {.code = 0,
            .dataOffset = static_cast<std::uint8_t>(k + 8),
            .dataBytes = dataBytes,
            .firstSample = 0,
            .lastSample = dataBytes / 2 - 1};
  }
  return {.code = 7};
}

Bytes HeaderFor(std::uint32_t dataBytes) {
  Bytes header;
  AppendText(header, "RIFF");
  Append32(header, dataBytes + 44);
  AppendText(header, "WAVE");
  AppendText(header, "fmt ");
  Append32(header, 16);
  Append16(header, 1);
  Append16(header, 1);
  Append32(header, 11025);
  Append32(header, 22050);
  Append16(header, 2);
  Append16(header, 16);
  AppendText(header, "data");
  Append32(header, dataBytes);
  return header;
}

}  // namespace twins
