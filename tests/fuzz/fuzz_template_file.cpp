// Loads a template file of arbitrary bytes: it fails clearly or gives what the bytes say.

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "backends/headless/headless_ui.h"
#include "tests/fuzz/require.h"
#include "tests/machine/memory_file_system.h"
#include "tests/support/results.h"
#include "voicemath/template_file.h"
#include "voicemath/voice_mathematics.h"

namespace {

using Bytes = std::span<const std::byte>;
using voicemath::TemplateFileError;

constexpr std::u16string_view kPath = u"\\tag.st";
constexpr std::u16string_view kEarlierPath = u"\\earlier.st";
constexpr std::u16string_view kCopyPath = u"\\copy.st";
constexpr std::size_t kHeader = 6;
constexpr std::int32_t kSlot = 3;

/// A template of one frame, whose five values have different bits.
constexpr std::array<std::uint8_t, 26> kEarlier{5, 0, 0,    0,    1,    0, 0,    0,   0,
                                                0, 0, 0,    0x80, 0x3F, 0, 0,    0,   0x40,
                                                0, 0, 0x40, 0x40, 0,    0, 0x80, 0x40};

std::uint32_t Number(Bytes bytes, std::size_t at, std::size_t width) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < width; ++i) {
    value |= std::to_integer<std::uint32_t>(bytes[at + i]) << (8 * i);
  }
  return value;
}

/// Why a file is not taken. Nothing if it is.
std::optional<TemplateFileError> Expected(Bytes file) {
  if (file.size() < kHeader) {
    return TemplateFileError::kTorn;
  }
  const std::uint32_t elements = Number(file, 0, 4);
  if (elements != Number(file, 4, 2) * voicemath::kBandCount) {
    return TemplateFileError::kBadFormat;
  }
  return (file.size() - kHeader) / sizeof(float) >= elements
             ? std::nullopt
             : std::optional(TemplateFileError::kTorn);
}

void RequireHolds(const voicemath::CVoiceMathematics& mathematics, std::size_t slot, Bytes file) {
  const std::span<const float> values = mathematics.GetTemplate(slot);
  Require(mathematics.m_frameCounts[slot] == Number(file, 4, 2), "frames as the file says");
  Require(values.size() == Number(file, 0, 4), "elements as the file says");
  for (std::size_t i = 0; i < values.size(); ++i) {
    Require(std::bit_cast<std::uint32_t>(values[i]) == Number(file, kHeader + i * 4, 4),
            "each value has the bits of the file");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Bytes file = std::as_bytes(std::span(data, size));
  const Bytes earlier = std::as_bytes(std::span(kEarlier));
  machine::MemoryFileSystem files;
  headless::HeadlessUi ui;
  Require(files.PutFile(kPath, file) && files.PutFile(kEarlierPath, earlier),
          "the files can be made");

  voicemath::CVoiceMathematics mathematics(files, ui);
  mathematics.m_loadSlot = kSlot;
  Require(ReadTemplateFile(files, kEarlierPath, mathematics).has_value(), "a right file loads");
  const auto result = ReadTemplateFile(files, kPath, mathematics);

  Require(support::ErrorOf(result) == Expected(file),
          "a file loads exactly where it holds what it says");
  RequireHolds(mathematics, kSlot, result ? file : earlier);
  Require(mathematics.m_count == 0 && mathematics.m_elementCount == 0, "a load counts nothing");
  Require(files.CountOpenHandles() == 0, "nothing stays open");

  if (result) {
    mathematics.m_loadSlot = 0;
    Require(ReadTemplateFile(files, kPath, mathematics).has_value(), "a file loads every time");
    const std::uint32_t elements = Number(file, 0, 4);
    mathematics.m_elementCount = static_cast<std::int32_t>(elements);
    Require(WriteTemplateFile(files, kCopyPath, mathematics).has_value(),
            "what was loaded can be stored");
    Require(std::ranges::equal(*files.GetFile(kCopyPath),
                               file.first(kHeader + std::size_t{elements} * sizeof(float))),
            "what is stored is what was loaded");
    const float distance = mathematics.CompareTemplates(0, kSlot);
    Require(distance >= 0.0F && distance <= 2.0F, "a distance has its bounds, whatever the values");
  }
  return 0;
}
