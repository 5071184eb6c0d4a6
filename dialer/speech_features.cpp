#include "dialer/speech_features.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "voicemath/constants.h"
#include "voicemath/fft.h"

// The steps are the usual ones of speech recognition: window, power spectrum, bands of the mel
// scale, logarithm, cosine transform, slopes. The numbers are the usual ones too, if no comment
// says otherwise. Floats suffice here: unlike templates, nobody stores what is computed.
namespace dialer {
namespace {

constexpr std::size_t kStep = 110;    ///< Samples from one time to the next: 10 ms.
constexpr std::size_t kWindow = 256;  ///< Samples that are transformed at once: 23 ms.
constexpr std::size_t kLeastFrames = 3;

// As many bands as are usual. What telephones and headsets leave out is not looked at, so that a
// name that was taught with one microphone is known with another.
constexpr std::size_t kBands = 24;
constexpr double kLowestHertz = 100;
constexpr double kHighestHertz = 3800;

constexpr std::size_t kBins = kWindow / 2 + 1;

using BandPowers = std::array<float, kBands>;

/// The triangles over the bins that the bands are summed with, and the cosines of the cepstra.
struct Tables {
  Tables() {
    MakeBands();
    for (std::size_t i = 0; i < kWindow; ++i) {
      const double angle = 2 * std::numbers::pi * static_cast<double>(i) / (kWindow - 1);
      hamming[i] = static_cast<float>(0.54 - 0.46 * std::cos(angle));
    }
    // The higher cepstra are smaller. The lifter makes all of them count (Juang 1987). It is 1 at
    // its height.
    constexpr double kLifter = 16;
    for (std::size_t c = 0; c < SpeechFeatures::kCepstra; ++c) {
      const auto order = static_cast<double>(c + 1);
      const double lifter =
          (1 + kLifter / 2 * std::sin(std::numbers::pi * order / kLifter)) / (1 + kLifter / 2);
      for (std::size_t band = 0; band < kBands; ++band) {
        const double angle = std::numbers::pi * order * (static_cast<double>(band) + 0.5) / kBands;
        cosines[c][band] = static_cast<float>(lifter * std::sqrt(2.0 / kBands) * std::cos(angle));
      }
    }
  }

  void MakeBands() {
    // The mel scale of O'Shaughnessy: it is linear below 700 Hz and logarithmic above.
    const auto toMel = [](double hertz) { return 1127 * std::log(1 + hertz / 700); };
    const double lowest = toMel(kLowestHertz);
    const double width = (toMel(kHighestHertz) - lowest) / (kBands + 1);
    for (std::size_t bin = 0; bin < kBins; ++bin) {
      const double hertz = static_cast<double>(bin) * voicemath::kSamplesPerSecond / kWindow;
      const double place = (toMel(hertz) - lowest) / width;
      for (std::size_t band = 0; band < kBands; ++band) {
        const double height = 1 - std::abs(place - static_cast<double>(band + 1));
        if (height > 0) {
          triangles[band][bin] = static_cast<float>(height);
          firstBins[band] = ends[band] == 0 ? bin : firstBins[band];
          ends[band] = bin + 1;
        }
      }
    }
  }

  std::array<float, kWindow> hamming{};
  std::array<std::array<float, kBins>, kBands> triangles{};
  std::array<std::size_t, kBands> firstBins{};  ///< Of each triangle the first bin it is over.
  std::array<std::size_t, kBands> ends{};       ///< And the first one after it.
  std::array<std::array<float, kBands>, SpeechFeatures::kCepstra> cosines{};
};

const Tables& GetTables() {
  static const Tables kTables;
  return kTables;
}

/// Fills `into` with the window that begins at `first`: without its mean, the high frequencies
/// raised, faded at both ends. After the end of the samples is silence.
void TakeWindow(std::span<const std::int16_t> samples, std::size_t first, std::span<float> into) {
  constexpr float kPreEmphasis = 0.97F;
  const auto part = samples.subspan(std::min(first, samples.size()));
  const std::size_t count = std::min(part.size(), kWindow);
  float mean = 0;
  for (std::size_t i = 0; i < count; ++i) {
    mean += static_cast<float>(part[i]);
  }
  mean /= static_cast<float>(std::max<std::size_t>(count, 1));
  float before = 0;
  for (std::size_t i = 0; i < kWindow; ++i) {
    const float sample = i < count ? static_cast<float>(part[i]) - mean : 0;
    into[i] = (sample - (i == 0 ? sample : kPreEmphasis * before)) * GetTables().hamming[i];
    before = sample;
  }
}

BandPowers SumBands(const std::array<float, kBins>& powers) {
  const Tables& tables = GetTables();
  BandPowers bands{};
  for (std::size_t band = 0; band < kBands; ++band) {
    for (std::size_t bin = tables.firstBins[band]; bin < tables.ends[band]; ++bin) {
      bands[band] += tables.triangles[band][bin] * powers[bin];
    }
  }
  return bands;
}

/// Measures the bands at all times. The transform is that of complex numbers, so it takes two
/// windows at once, one as the imaginary half. The transform of a real signal is symmetric, and by
/// that the two are separated again.
std::vector<BandPowers> MeasureBands(std::span<const std::int16_t> samples) {
  // At least a few frames, so that no caller meets a recording without any. They are silence.
  const std::size_t whole = samples.size() < kWindow ? 0 : (samples.size() - kWindow) / kStep + 1;
  std::vector<BandPowers> bands(std::max(whole, kLeastFrames));
  std::array<float, kWindow> real{};
  std::array<float, kWindow> imaginary{};
  std::array<float, kBins> even{};
  std::array<float, kBins> odd{};
  for (std::size_t frame = 0; frame < bands.size(); frame += 2) {
    TakeWindow(samples, frame * kStep, real);
    TakeWindow(samples, (frame + 1) * kStep, imaginary);
    voicemath::Fft(real, imaginary, 1);
    for (std::size_t k = 0; k < kBins; ++k) {
      const std::size_t mirror = (kWindow - k) % kWindow;
      const float sumReal = real[k] + real[mirror];
      const float differenceReal = real[k] - real[mirror];
      const float sumImaginary = imaginary[k] + imaginary[mirror];
      const float differenceImaginary = imaginary[k] - imaginary[mirror];
      even[k] = sumReal * sumReal + differenceImaginary * differenceImaginary;
      odd[k] = sumImaginary * sumImaginary + differenceReal * differenceReal;
    }
    bands[frame] = SumBands(even);
    if (frame + 1 < bands.size()) {
      bands[frame + 1] = SumBands(odd);
    }
  }
  return bands;
}

struct FrameRange {
  std::size_t first = 0;
  std::size_t last = 0;  ///< Included.
};

/// Finds the speech: what is less than 30 dB below its loudest and 10 dB above the room. Two times
/// in a row have to be so, as clicks are shorter.
FrameRange FindSpeechFrames(std::span<const BandPowers> bands) {
  constexpr float kBelowPeak = 30;
  constexpr float kAboveRoom = 10;
  constexpr std::size_t kMargin = 10;
  constexpr std::size_t kLeast = 9;
  std::vector<float> levels;
  for (const BandPowers& powers : bands) {
    float sum = 0;
    for (const float power : powers) {
      sum += power;
    }
    levels.push_back(10 * std::log10(sum + 1e-3F));
  }
  std::vector<float> sorted = levels;
  std::ranges::sort(sorted);
  // Not the lowest and the highest level: one odd frame must not decide.
  const float room = sorted[sorted.size() / 10];
  const float peak = sorted[sorted.size() - 1 - sorted.size() / 50];
  const float least = std::max(peak - kBelowPeak, std::min(room + kAboveRoom, peak - kAboveRoom));
  const auto isSpeech = [&](std::size_t i) { return levels[i] > least && levels[i + 1] > least; };
  std::size_t first = 0;
  std::size_t end = bands.size() - 1;  // Of the pairs.
  while (first < end && !isSpeech(first)) {
    ++first;
  }
  while (end > first && !isSpeech(end - 1)) {
    --end;
  }
  const FrameRange found{first - std::min(first, kMargin),
                         std::min(end + kMargin, bands.size() - 1)};
  return found.last - found.first + 1 < kLeast ? FrameRange{0, bands.size() - 1} : found;
}

/// The logarithms of the bands. What is 50 dB below the loudest band is as good as silence: it
/// would be the room's noise that is compared.
BandPowers ToLogarithms(const BandPowers& powers, float loudest) {
  constexpr float kFloor = 1e-5F;
  constexpr float kNothing = 1e-9F;
  BandPowers logarithms{};
  for (std::size_t band = 0; band < kBands; ++band) {
    logarithms[band] = std::log(powers[band] + kFloor * loudest + kNothing);
  }
  return logarithms;
}

void SubtractMean(std::span<float> values) {
  float sum = 0;
  for (const float value : values) {
    sum += value;
  }
  const float mean = sum / static_cast<float>(values.size());
  for (float& value : values) {
    value -= mean;
  }
}

}  // namespace

SpeechFeatures::SpeechFeatures(std::span<const std::int16_t> samples) {
  const std::vector<BandPowers> bands = MeasureBands(samples);
  const FrameRange range = FindSpeechFrames(bands);
  m_frames = range.last - range.first + 1;
  m_values.resize(m_frames * kCount);
  const auto speech = std::span(bands).subspan(range.first, m_frames);
  float loudest = 0;
  for (const BandPowers& powers : speech) {
    loudest = std::max(loudest, *std::ranges::max_element(powers));
  }
  for (std::size_t frame = 0; frame < m_frames; ++frame) {
    const BandPowers logarithms = ToLogarithms(speech[frame], loudest);
    for (std::size_t c = 0; c < kCepstra; ++c) {
      float sum = 0;
      for (std::size_t band = 0; band < kBands; ++band) {
        sum += GetTables().cosines[c][band] * logarithms[band];
      }
      At(c)[frame] = sum;
    }
  }
  for (std::size_t c = 0; c < kCepstra; ++c) {
    SubtractMean(At(c));
  }
  AddSlopes();
}

/// The slope of the line through five times, by least squares. Beyond the ends the first and the
/// last time are held. The spread of slopes is about a third of that of the cepstra. They are
/// raised to count four times as much in the squares, since from take to take the movement of the
/// mouth changes less than its place.
void SpeechFeatures::AddSlopes() {
  constexpr float kWeight = 6;
  constexpr float kSquares = 10;  ///< 1 + 4, on both sides.
  for (std::size_t c = 0; c < kCepstra; ++c) {
    const auto from = Get(c);
    const auto to = At(kCepstra + c);
    for (std::size_t i = 0; i < m_frames; ++i) {
      const auto before = [&](std::size_t k) { return from[i - std::min(i, k)]; };
      const auto after = [&](std::size_t k) { return from[std::min(i + k, m_frames - 1)]; };
      to[i] = kWeight / kSquares * (after(1) - before(1) + 2 * (after(2) - before(2)));
    }
  }
}

SpeechFeatures SpeechFeatures::Backwards() const {
  SpeechFeatures backwards = *this;
  for (std::size_t feature = 0; feature < kCount; ++feature) {
    std::ranges::reverse(backwards.At(feature));
  }
  // What rose before falls now.
  for (std::size_t feature = kCepstra; feature < kCount; ++feature) {
    for (float& slope : backwards.At(feature)) {
      slope = -slope;
    }
  }
  return backwards;
}

SpeechFeatures SpeechFeatures::Swapped() const {
  SpeechFeatures swapped = *this;
  for (std::size_t feature = 0; feature < kCount; ++feature) {
    const auto values = swapped.At(feature);
    // Not that of std::ranges, whose result clang++ 14 cannot compile with this library.
    std::rotate(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(m_frames / 2),
                values.end());
  }
  return swapped;
}

}  // namespace dialer
