#include "voicemath/recording_review.h"

#include <algorithm>
#include <array>
#include <functional>
#include <vector>

#include "platform/file_system.h"
#include "voicemath/sample_file.h"

namespace voicemath {
namespace {

// The place of the samples per second in a header that was accepted.
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

/// Returns the samples from `offset` on, at most `most` of them, as far as the file holds them.
Result<std::vector<std::int16_t>, FileError> ReadSamples(framework::CFile& file,
                                                         std::uint64_t offset, std::size_t most) {
  SampleBuffer<kFrameSamples> buffer;
  std::vector<std::int16_t> samples;
  samples.reserve(most);  // The file is as long.
  while (samples.size() < most) {
    const auto bytes = ReadAt(file, offset + samples.size() * kSampleBytes, buffer.Bytes());
    if (!bytes) {
      return Failure(bytes.error());
    }
    const std::size_t count = std::min(most - samples.size(), *bytes / kSampleBytes);
    const auto read = buffer.Decode().first(count);
    samples.insert(samples.end(), read.begin(), read.end());
    if (read.empty()) {
      break;
    }
  }
  return samples;
}

Result<RecordingReview, ReviewError> ReviewOpened(CVoiceMathematics& mathematics,
                                                  bool findsSpeech) {
  if (mathematics.OpenWaveData() != kHeaderAccepted) {
    return Failure(ReviewError::kHeaderRefused);
  }
  RecordingReview review;
  review.samples = mathematics.m_dataBytes / static_cast<std::uint32_t>(kSampleBytes);
  const auto rate = ReadRate(mathematics.m_file);
  const auto samples = ReadSamples(mathematics.m_file, mathematics.m_dataOffset,
                                   std::min(review.samples, kLongSamples));
  if (!rate || !samples || (findsSpeech && !mathematics.DetectSpeechBounds())) {
    return Failure(ReviewError::kNotRead);
  }
  review.rate = *rate;
  review.segment = {mathematics.m_firstSample, mathematics.m_lastSample};
  // Without a whole sample this wraps to 0.
  const std::uint32_t taken = review.segment.last - review.segment.first + 1;
  review.isEmpty = taken < kFrameHop;
  review.hasNoFrame = !review.isEmpty && taken < kFrameSamples;
  review.quality = JudgeTake({.samples = *samples, .rate = *rate});
  review.isConstant = std::ranges::adjacent_find(*samples, std::not_equal_to()) == samples->end();
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

Result<TakeQuality, ReviewError> JudgeRecording(CVoiceMathematics& mathematics) {
  const auto opened = mathematics.m_file.Open(mathematics.m_wavePath, framework::CFile::modeRead);
  if (!opened) {
    return Failure(opened == Failure(FileError::kNotFound) ? ReviewError::kNotOpened
                                                           : ReviewError::kNotRead);
  }
  const int code = mathematics.OpenWaveData();
  const bool isRead = !mathematics.m_file.GetError();
  mathematics.m_file.Close();
  if (!isRead) {
    return Failure(ReviewError::kNotRead);  // The code would blame the header.
  }
  if (code == kHeaderAccepted) {
    const auto review = ReviewRecording(mathematics, false);
    if (!review) {
      return Failure(ReviewError::kNotRead);
    }
    return review->quality;
  }
  return WithoutSamples(code == kTooShort || code == kNoData ? Verdict::kInterrupted
                                                             : Verdict::kRate);
}

}  // namespace voicemath
