#include "tests/voicemath/twins/speech_bounds.h"

#include <algorithm>
#include <cstdlib>

namespace twins {
namespace {

// Values are signed 16 bits wide, sums wide enough not to overflow, every division truncates
// towards zero.

void Smooth(std::vector<std::int16_t>& envelope) {
  const std::size_t blocks = envelope.size();
  std::array<std::int16_t, 7> ring{};
  for (std::size_t b = 0; b < blocks; ++b) {
    std::int32_t sum = 0;
    std::int32_t number = 0;
    for (std::size_t ahead = b; ahead <= b + 7 && ahead < blocks; ++ahead) {
      sum += envelope[ahead];
      ++number;
    }
    for (std::size_t back = 1; back <= 7; ++back) {
      // Strictly greater than zero: block 0 never counts for a later one.
      if (b > back) {
        sum += ring[(b - back) % 7];
        ++number;
      }
    }
    ring[b % 7] = envelope[b];
    envelope[b] = static_cast<std::int16_t>(sum / number);
  }
}

void FindPeak(SpeechSearch& search) {
  for (std::uint32_t b = 0; b < search.smoothed.size(); ++b) {
    if (search.smoothed[b] > search.peak) {
      search.peak = search.smoothed[b];
      search.peakBlock = b;
    }
  }
}

void FindNoise(SpeechSearch& search) {
  for (const std::int16_t value : search.smoothed) {
    const int bin = std::min(value / search.binWidth, 31);
    ++search.histogram[static_cast<std::size_t>(bin)];
  }
  // The lower half only: a recording that is loud for most of its length is not noise.
  for (std::int16_t bin = 1; bin <= 15; ++bin) {
    if (search.histogram[static_cast<std::size_t>(bin)] >
        search.histogram[static_cast<std::size_t>(search.mode)]) {
      search.mode = bin;
    }
  }
  search.noise = static_cast<std::int16_t>(search.binWidth * search.mode + search.peak / 16);
}

void ClearNoise(SpeechSearch& search) {
  for (std::int16_t& value : search.cleared) {
    value =
        value < search.noise ? std::int16_t{0} : static_cast<std::int16_t>(value - search.noise);
  }
}

std::int64_t Clipped(const SpeechSearch& search, std::int64_t block) {
  return std::min(search.cleared[static_cast<std::size_t>(block)], search.clip);
}

// Returns whether there was anything to find the centre of.
bool FindCentre(SpeechSearch& search) {
  const auto blocks = static_cast<std::int64_t>(search.cleared.size());
  const std::int64_t peakBlock = search.peakBlock;
  std::int64_t weighted = 0;
  std::int64_t sum = 0;
  for (std::int64_t b = std::max<std::int64_t>(peakBlock - 200, 0);
       b <= std::min(peakBlock + 200, blocks - 1); ++b) {
    weighted += b * Clipped(search, b);
    sum += Clipped(search, b);
  }
  if (sum == 0) {
    return false;
  }
  search.centre = weighted / sum;
  return true;
}

void FindEnds(SpeechSearch& search) {
  const auto blocks = static_cast<std::int64_t>(search.cleared.size());
  const std::int64_t c = search.centre;
  for (std::int64_t b = std::max<std::int64_t>(c - 200, 0); b < c - 20; ++b) {
    search.leftMass += Clipped(search, b);
  }
  for (std::int64_t b = std::min(c + 200, blocks - 1); b > c + 20; --b) {
    search.rightMass += Clipped(search, b);
  }
  // Cut to 16 bits before they are turned into samples: after block 32,767 they wrap.
  search.left = static_cast<std::int16_t>(c - search.leftMass / search.clip - 20);
  search.right = static_cast<std::int16_t>(c + search.rightMass / search.clip + 20);
}

void TurnIntoSamples(SpeechSearch& search, std::uint32_t dataBytes) {
  std::int32_t first = search.left * 55 - 3307;
  if (first < 0) {
    first = 0;
  }
  // A signed comparison: a right end that wrapped below zero is not above the end of the recording.
  std::int32_t last = search.right * 55 + 3307;
  const auto end = static_cast<std::int32_t>(dataBytes / 2 - 1);
  if (last > end) {
    last = end;
  }
  if (first <= last) {
    search.found = true;
    search.firstSample = static_cast<std::uint32_t>(first);
    search.lastSample = static_cast<std::uint32_t>(last);
  }
}

}  // namespace

std::int16_t BlockEnvelope(std::span<const std::int16_t> block) {
  std::int32_t sum = 0;
  for (const std::int16_t sample : block) {
    sum += sample;
  }
  const std::int32_t mean = sum / 110;
  std::int16_t largest = 0;
  for (const std::int16_t sample : block) {
    // Kept in 16 bits before it is compared: 32,768 and above wrap below zero and never count.
    const auto distance = static_cast<std::int16_t>(std::abs(sample - mean));
    if (distance > largest) {
      largest = distance;
    }
  }
  return largest;
}

std::vector<std::int16_t> RawEnvelope(ByteFile& file, const Wave& wave) {
  const std::uint32_t blocks = wave.dataBytes / 110;
  std::vector<std::int16_t> envelope(blocks);
  std::array<std::byte, 220> buffer{};
  for (std::uint32_t b = 0; b < blocks; ++b) {
    const std::uint64_t offset = std::uint64_t{b} * 110 + wave.dataOffset;
    file.Seek(offset / 2 * 2);
    file.Read(buffer);
    std::array<std::int16_t, 110> block{};
    for (std::size_t i = 0; i < block.size(); ++i) {
      block[i] = SampleAt(buffer, i);
    }
    envelope[b] = BlockEnvelope(block);
  }
  return envelope;
}

SpeechSearch LocateSpeech(const std::vector<std::int16_t>& envelope, std::uint32_t dataBytes) {
  SpeechSearch search;
  search.firstSample = 0;
  search.lastSample = dataBytes / 2 - 1;
  search.smoothed = envelope;
  Smooth(search.smoothed);
  search.cleared = search.smoothed;
  FindPeak(search);
  if (search.peak < 32) {
    return search;  // No bin would have a width.
  }
  search.binWidth = static_cast<std::int16_t>(search.peak / 32);
  FindNoise(search);
  ClearNoise(search);
  search.clip = static_cast<std::int16_t>((search.peak - search.noise) / 2);
  if (search.clip == 0 || !FindCentre(search)) {
    return search;
  }
  FindEnds(search);
  TurnIntoSamples(search, dataBytes);
  return search;
}

void DetectSpeechBounds(ByteFile& file, Wave& wave) {
  const SpeechSearch search = LocateSpeech(RawEnvelope(file, wave), wave.dataBytes);
  wave.firstSample = search.firstSample;
  wave.lastSample = search.lastSample;
}

}  // namespace twins
