#include "voicemath/recording_review.h"

#include <algorithm>
#include <array>
#include <optional>

#include "audio/wave_header.h"
#include "platform/file_system.h"
#include "voicemath/sample_file.h"

namespace voicemath {
namespace {

constexpr std::uint64_t kRateOffset = 24;

using platform::Failure;
using platform::FileError;
using platform::Result;

Result<std::uint32_t, FileError> ReadRate(framework::CFile& file) {
  std::array<std::byte, 4> bytes{};
  return ReadAt(file, kRateOffset, bytes).map([&](std::size_t) {
    return platform::LoadLittleEndian32(bytes);
  });
}

/// Returns whether the samples from `offset` on, as far as the file holds them, are all alike.
Result<bool, FileError> AreAllAlike(framework::CFile& file, std::uint64_t offset,
                                    std::uint32_t samples) {
  SampleBuffer<kFrameSamples> buffer;
  std::optional<std::int16_t> first;
  for (std::size_t done = 0; done < samples; done += kFrameSamples) {
    const auto bytes = ReadAt(file, offset + done * kSampleBytes, buffer.Bytes());
    if (!bytes) {
      return Failure(bytes.error());
    }
    const std::size_t count = std::min(samples - done, *bytes / kSampleBytes);
    const auto read = buffer.Decode().first(count);
    if (read.empty()) {
      break;
    }
    if (!first) {
      first = read.front();
    }
    if (!std::ranges::all_of(read, [&](std::int16_t sample) { return sample == *first; })) {
      return false;
    }
  }
  return true;
}

Result<RecordingReview, ReviewError> ReviewOpened(CVoiceMathematics& mathematics,
                                                  bool findsSpeech) {
  if (mathematics.OpenWaveData() != kHeaderAccepted) {
    return Failure(ReviewError::kHeaderRefused);
  }
  RecordingReview review;
  review.samples = mathematics.m_dataBytes / static_cast<std::uint32_t>(kSampleBytes);
  const auto rate = ReadRate(mathematics.m_file);
  const auto isSilent = AreAllAlike(mathematics.m_file, mathematics.m_dataOffset, review.samples);
  if (!rate || !isSilent || (findsSpeech && !mathematics.DetectSpeechBounds())) {
    return Failure(ReviewError::kNotRead);
  }
  review.rate = *rate;
  review.segment = {mathematics.m_firstSample, mathematics.m_lastSample};
  // Without a whole sample this wraps to 0.
  const std::uint32_t taken = review.segment.last - review.segment.first + 1;
  review.isEmpty = taken < kFrameHop;
  review.hasNoFrame = !review.isEmpty && taken < kFrameSamples;
  review.hasOtherRate = review.rate != audio::kRecordingRate;
  review.isSilent = *isSilent;
  review.isLong = review.samples > kLongSamples;
  review.isSpeechTooLate = findsSpeech && !mathematics.m_hasSpeechPlace;
  return review;
}

}  // namespace

Result<RecordingReview, ReviewError> ReviewRecording(CVoiceMathematics& mathematics,
                                                     bool findsSpeech) {
  if (!mathematics.m_file.Open(mathematics.m_wavePath, framework::CFile::modeRead)) {
    return Failure(ReviewError::kNotOpened);
  }
  auto review = ReviewOpened(mathematics, findsSpeech);
  mathematics.m_file.Close();
  return review;
}

}  // namespace voicemath
