// The steps of CVoiceMathematics that read the wave file: header, envelope, frames.
//
// The file is read in small pieces, since it need not fit into memory. It may be shorter than its
// header claims. A read that ends early leaves the rest of the buffer as the read before left it,
// and this is part of the result: the last blocks and frames repeat old samples. So everything here
// that reads several blocks or frames at a time takes care that a short file gives the same numbers
// as if they were read one by one.

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

#include "audio/wave_header.h"
#include "platform/file_system.h"
#include "voicemath/band_features.h"
#include "voicemath/endpoint_detector.h"
#include "voicemath/sample_file.h"
#include "voicemath/voice_mathematics.h"

namespace voicemath {
namespace {

constexpr std::size_t kHeaderBuffer = 100;  ///< The data must begin within these first bytes.
constexpr std::size_t kHeaderStep = 4;      ///< Chunk ids are looked for at multiples of this.

constexpr std::size_t kBlocksAtOnce = 39;  ///< Envelope blocks of one read, which is 4,400 bytes.

bool HasId(std::span<const std::byte> bytes, std::string_view id) {
  return std::memcmp(bytes.data(), id.data(), id.size()) == 0;
}

/// Returns the code of everything in the header but the data.
HeaderCode CheckFormat(std::span<const std::byte, kHeaderBuffer> header) {
  if (!HasId(header, "RIFF")) {
    return kNoRiff;
  }
  if (!HasId(header.subspan<8>(), "WAVE")) {
    return kNoWave;
  }
  if (platform::LoadLittleEndian16(header.subspan<20, 2>()) != platform::kFormatTagPcm) {
    return kNotPcm;
  }
  if (platform::LoadLittleEndian16(header.subspan<22, 2>()) != 1) {
    return kNotMono;
  }
  // The rate is not looked at: whatever it says, the file is taken for 11,025 samples a second.
  const std::uint16_t bits = platform::LoadLittleEndian16(header.subspan<34, 2>());
  return bits == audio::kRecordingBits ? kHeaderAccepted : kNot16Bit;
}

/// Returns the offset of the "data" id, which is looked for at multiples of four only. Returns
/// nothing if it is at none of them.
std::optional<std::size_t> FindDataId(std::span<const std::byte, kHeaderBuffer> header) {
  for (std::size_t at = 0; at < kHeaderBuffer; at += kHeaderStep) {
    if (HasId(header.subspan(at), "data")) {
      return at;
    }
  }
  return std::nullopt;
}

}  // namespace

int CVoiceMathematics::OpenWaveData() {
  const HeaderCode code = ReadHeader();
  if (code != kHeaderAccepted) {
    m_file.Close();
  }
  return code;
}

HeaderCode CVoiceMathematics::ReadHeader() {
  std::array<std::byte, kHeaderBuffer> header{};
  const auto length = m_file.GetLength();
  if (!length || *length < audio::kWaveHeaderBytes || !ReadAt(m_file, 0, header)) {
    return kTooShort;
  }
  const HeaderCode format = CheckFormat(header);
  if (format != kHeaderAccepted) {
    return format;
  }
  const auto id = FindDataId(header);
  std::array<std::byte, 4> size{};  // It may lie after the buffer, so it is read by itself.
  if (!id || !ReadAt(m_file, *id + size.size(), size)) {
    return kNoData;
  }
  // Compared with the whole file, header included. So a header may claim up to its own length too
  // much, and the reads after the end find nothing.
  const std::uint32_t dataBytes = platform::LoadLittleEndian32(size);
  if (dataBytes > *length) {
    return kNoData;
  }
  m_dataOffset = static_cast<std::uint8_t>(*id + 8);
  m_dataBytes = dataBytes;
  SelectWholeFile();
  return kHeaderAccepted;
}

void CVoiceMathematics::SelectWholeFile() {
  m_firstSample = 0;
  // If there is no whole sample this wraps, and the segment is empty.
  m_lastSample = m_dataBytes / static_cast<std::uint32_t>(kSampleBytes) - 1;
}

bool CVoiceMathematics::DetectSpeechBounds() {
  SelectWholeFile();
  constexpr std::size_t kStepBytes = kBlockStep * kSampleBytes;
  const std::size_t blocks = m_dataBytes / kStepBytes;
  const std::unique_ptr<std::int16_t[]> memory(new (std::nothrow) std::int16_t[blocks]);
  const std::span envelope(memory.get(), blocks);
  if (!memory || !MeasureEnvelope(envelope)) {
    return false;
  }
  const auto total = m_dataBytes / static_cast<std::uint32_t>(kSampleBytes);
  const auto speech = FindSpeech(envelope);
  m_hasSpeechPlace = !speech || speech->HavePlace();
  if (const auto segment = speech ? ToSegment(*speech, total) : std::nullopt) {
    m_firstSample = segment->first;
    m_lastSample = segment->last;
  }
  return true;
}

bool CVoiceMathematics::MeasureEnvelope(std::span<std::int16_t> envelope) {
  constexpr std::size_t kStepBytes = kBlockStep * kSampleBytes;
  // Samples are taken to lie at even offsets of the file.
  const std::uint64_t start = m_dataOffset / kSampleBytes * kSampleBytes;
  SampleBuffer<(kBlocksAtOnce + 1) * kBlockStep> samples;
  std::size_t whole = 0;  // Blocks measured, all of which the file holds to their end.
  for (std::size_t read = kBlocksAtOnce; read == kBlocksAtOnce && whole < envelope.size();) {
    const auto bytes = ReadAt(m_file, start + whole * kStepBytes, samples.Bytes());
    if (!bytes) {
      return false;
    }
    read = std::max<std::size_t>(*bytes / kStepBytes, 1) - 1;
    const std::size_t blocks = std::min(read, envelope.size() - whole);
    if (blocks > 0) {
      voicemath::MeasureEnvelope(samples.Decode(), envelope.subspan(whole, blocks));
    }
    whole += blocks;
  }
  return MeasureEnvelopeAtEnd(envelope, whole, start);
}

bool CVoiceMathematics::MeasureEnvelopeAtEnd(std::span<std::int16_t> envelope, std::size_t whole,
                                             std::uint64_t start) {
  // What a block lacks at its end is what the block before it has there, so that one is read first.
  SampleBuffer<kBlockSamples> samples;
  for (std::size_t block = std::max<std::size_t>(whole, 1) - 1; block < envelope.size(); ++block) {
    const std::uint64_t offset = start + block * kBlockStep * kSampleBytes;
    if (!ReadAt(m_file, offset, samples.Bytes())) {
      return false;
    }
    envelope[block] = BlockEnvelope(samples.Decode());
  }
  return true;
}

bool CVoiceMathematics::ComputeTemplate(std::uint32_t slot) {
  // Frames of two hops, one beginning at each hop. In 16 bits: a segment shorter than one hop gives
  // 65,535 frames, almost all of them after the end of the file.
  const std::size_t hops = (m_lastSample - m_firstSample + 1) / kFrameHop;
  const auto frames = static_cast<std::uint16_t>(hops - m_hopsPerFrame + 1U);
  const std::size_t elements = std::size_t{frames} * m_bandCount;
  std::unique_ptr<float[]> features(new (std::nothrow) float[elements]);
  if (!features || !ReadFrames({features.get(), elements})) {
    return false;
  }
  SubtractBandMinima({features.get(), elements});
  if (!SetTemplate(slot, std::move(features), frames)) {
    return false;
  }
  m_elementCount = static_cast<std::int32_t>(elements);
  return true;
}

bool CVoiceMathematics::ReadFrames(std::span<float> features) {
  SampleBuffer<kFrameSamples> samples;
  std::array<std::int16_t, kFrameLanes * kFrameSamples> frames;
  std::uint64_t offset = m_dataOffset + std::uint64_t{m_firstSample} * kSampleBytes;
  std::size_t done = 0;  // Values of frames read, of which the last ones wait in `frames`.
  std::size_t waiting = 0;
  const auto compute = [&] {
    const std::size_t values = waiting * kBandCount;
    BandFeatures(frames, kFrameSamples, features.subspan(done - values, values));
    waiting = 0;
  };
  for (; done < features.size(); done += kBandCount, offset += kFrameHop * kSampleBytes) {
    const auto bytes = ReadAt(m_file, offset, samples.Bytes());
    if (!bytes) {
      return false;
    }
    if (*bytes == 0 && done > 0) {
      break;
    }
    if (waiting == kFrameLanes) {
      compute();
    }
    std::ranges::copy(samples.Decode(),
                      frames.begin() + static_cast<std::ptrdiff_t>(waiting * kFrameSamples));
    ++waiting;
  }
  compute();
  // After the end of the file nothing new is read: the buffer, and so the result, stays the same.
  for (; done < features.size(); done += kBandCount) {
    std::ranges::copy(features.subspan(done - kBandCount, kBandCount),
                      features.begin() + static_cast<std::ptrdiff_t>(done));
  }
  return true;
}

}  // namespace voicemath
