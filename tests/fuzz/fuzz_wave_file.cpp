// Learns from a recording of arbitrary bytes, and holds the outcome against what the bytes allow.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "backends/headless/headless_ui.h"
#include "tests/fuzz/require.h"
#include "tests/machine/memory_file_system.h"
#include "voicemath/voice_mathematics.h"

namespace {

using Bytes = std::span<const std::byte>;

constexpr std::u16string_view kPath = u"\\tag.wav";
constexpr std::size_t kHeader = 44;
constexpr std::size_t kFirstCopy = 2048;  // Bytes that trimming takes before it can read its own.

std::uint32_t Number(Bytes bytes, std::size_t at, std::size_t width) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < width && at + i < bytes.size(); ++i) {
    value |= std::to_integer<std::uint32_t>(bytes[at + i]) << (8 * i);
  }
  return value;
}

bool HasId(Bytes bytes, std::size_t at, std::string_view id) {
  return at + id.size() <= bytes.size() && std::memcmp(&bytes[at], id.data(), id.size()) == 0;
}

/// Offset of the samples if the header is one to accept. Written apart from the program's own
/// check, so that the two watch each other.
std::optional<std::size_t> FindSamples(Bytes file) {
  if (file.size() < kHeader || !HasId(file, 0, "RIFF") || !HasId(file, 8, "WAVE") ||
      Number(file, 20, 2) != 1 || Number(file, 22, 2) != 1 || Number(file, 34, 2) != 16) {
    return std::nullopt;
  }
  for (std::size_t at = 0; at <= 96; at += 4) {
    if (HasId(file, at, "data")) {
      // A size that the file ends before reads as zeros.
      return Number(file, at + 4, 4) <= file.size() ? std::optional(at + 8) : std::nullopt;
    }
  }
  return std::nullopt;
}

/// Less than one hop of samples gives 65,535 frames, which is right and slow. Of such inputs, which
/// the fuzzer likes for being short, only some are learned from, so that it gets on.
bool IsLeftOut(Bytes file, std::size_t offset) {
  constexpr std::size_t kTaken = 64;
  return Number(file, offset - 4, 4) / 2 < voicemath::kFrameHop && file.size() % kTaken != 0;
}

void RequireTrimmed(Bytes before, Bytes after, std::size_t offset, voicemath::Segment segment) {
  const std::size_t data = (std::size_t{segment.last} - segment.first + 1) * 2;
  Require(after.size() == kHeader + data, "a trimmed file holds the segment and no more");
  Require(Number(after, 4, 4) == after.size(), "the RIFF size is the length of the file");
  Require(Number(after, 40, 4) == data, "the data size is that of the segment");
  Require(HasId(after, 0, "RIFF") && HasId(after, 8, "WAVEfmt ") && HasId(after, 36, "data"),
          "a trimmed file has the plain header");
  Require(Number(after, 16, 4) == 16 && Number(after, 20, 2) == 1 && Number(after, 22, 2) == 1 &&
              Number(after, 24, 4) == 11025 && Number(after, 28, 4) == 22050 &&
              Number(after, 32, 2) == 2 && Number(after, 34, 2) == 16,
          "a trimmed file states the format of all recordings");
  const std::size_t from = offset + std::size_t{segment.first} * 2;
  const std::size_t there = from < before.size() ? before.size() - from : 0;
  const std::size_t plain = offset < kHeader ? kFirstCopy : data;
  const std::size_t same = std::min({data, there, plain});
  Require(std::ranges::equal(after.subspan(kHeader, same), before.subspan(from, same)),
          "the samples are those of the segment");
}

void RequireTemplate(const voicemath::CVoiceMathematics& mathematics) {
  const std::span<const float> values = mathematics.GetTemplate(0);
  Require(values.size() == std::size_t{mathematics.m_frameCounts[0]} * voicemath::kBandCount,
          "a template holds its frames");
  Require(mathematics.m_elementCount == static_cast<std::int32_t>(values.size()),
          "the element count is that of the template");
  std::vector<float> least(voicemath::kBandCount, values.empty() ? 0.0F : INFINITY);
  for (std::size_t i = 0; i < values.size(); ++i) {
    Require(std::isfinite(values[i]) && values[i] >= 0.0F, "values are finite, none negative");
    float& band = least[i % voicemath::kBandCount];
    band = std::min(band, values[i]);
  }
  Require(std::ranges::all_of(least, [](float value) { return value == 0.0F; }),
          "each band has a zero");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Bytes before = std::as_bytes(std::span(data, size));
  const std::optional<std::size_t> offset = FindSamples(before);
  if (offset && IsLeftOut(before, *offset)) {
    return 0;
  }
  machine::MemoryFileSystem files;
  headless::HeadlessUi ui;
  Require(files.PutFile(kPath, before), "the file can be made");

  voicemath::CVoiceMathematics mathematics(files, ui);
  mathematics.m_wavePath = kPath;
  const int result = mathematics.LearnFile(0);

  Require(result == (offset ? voicemath::kLearned : voicemath::kNotProcessed),
          "a file is learned exactly where its header is right");
  Require(ui.GetMessages().size() == (offset ? 0U : 1U), "a refusal is told, once");
  Require(mathematics.m_count == (offset ? 1 : 0), "only what was learned counts");
  Require(files.CountOpenHandles() == 0, "nothing stays open");
  Require(files.ListFiles().size() == 1, "nothing is left beside the recording");

  const auto after = files.GetFile(kPath);
  Require(after.has_value(), "the recording is still there");
  if (!std::ranges::equal(*after, before)) {
    Require(offset.has_value(), "a refused file is left alone");
    RequireTrimmed(before, *after, *offset, mathematics.m_detected);
  }
  if (offset) {
    RequireTemplate(mathematics);
    Require(mathematics.ProcessFile(1) == voicemath::kLearned, "what was learned can be again");
    Require(std::ranges::equal(*files.GetFile(kPath), *after), "processing leaves the file alone");
  }
  return 0;
}
