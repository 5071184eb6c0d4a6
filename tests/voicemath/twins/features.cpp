#include "tests/voicemath/twins/features.h"

#include <bit>
#include <cmath>

#include "tests/voicemath/twins/fft.h"

namespace twins {

std::array<float, 220> FrameMagnitudes(std::span<const std::int16_t> frame, FrameBuffers& buffers) {
  auto& [real, imaginary] = buffers;
  for (std::size_t i = 0; i < 1024; ++i) {
    real[i] = static_cast<float>(frame[i]);
    imaginary[i] = 0.0F;
  }
  Fft(real, imaginary, 1);
  std::array<float, 220> magnitudes;
  for (std::size_t k = 10; k <= 229; ++k) {
    // All in double, and one rounding at the end.
    const double re = static_cast<double>(real[k]);
    const double im = static_cast<double>(imaginary[k]);
    magnitudes[k - 10] = static_cast<float>(std::sqrt(re * re + im * im) * static_cast<double>(k));
  }
  return magnitudes;
}

std::array<float, 5> FrameBands(std::span<const std::int16_t> frame, FrameBuffers& buffers) {
  const std::array<float, 220> magnitudes = FrameMagnitudes(frame, buffers);
  std::array<float, 5> bands{};
  for (std::size_t k = 0; k <= 229; ++k) {
    bands[k / 46] += k > 9 ? magnitudes[k - 10] : 0.0F;  // In float.
  }
  return bands;
}

std::array<float, 5> FrameBands(std::span<const std::int16_t> frame) {
  FrameBuffers buffers;
  return FrameBands(frame, buffers);
}

void SubtractMinima(Template& computed) {
  for (std::size_t band = 0; band < 5; ++band) {
    float minimum = 0.0F;
    for (std::size_t frame = 0; frame < computed.frameCount; ++frame) {
      const float value = computed.values[frame * 5 + band];
      if (frame == 0 || value < minimum) {
        minimum = value;
      }
    }
    for (std::size_t frame = 0; frame < computed.frameCount; ++frame) {
      computed.values[frame * 5 + band] -= minimum;
    }
  }
}

std::uint16_t FrameCount(std::uint32_t firstSample, std::uint32_t lastSample) {
  const std::uint32_t samples = lastSample - firstSample + 1;
  const auto hops = static_cast<std::uint16_t>(samples >> 9U);
  return static_cast<std::uint16_t>(hops - 2 + 1);
}

Template ComputeTemplate(ByteFile& file, const Wave& wave) {
  Template computed;
  computed.frameCount = FrameCount(wave.firstSample, wave.lastSample);
  std::array<std::byte, 2048> buffer{};
  std::array<std::byte, 2048> before{};
  std::array<float, 5> bands{};
  for (std::uint32_t f = 0; f < computed.frameCount; ++f) {
    file.Seek(wave.dataOffset + (std::uint64_t{wave.firstSample} + 512ULL * f) * 2);
    file.Read(buffer);  // What the file lacks stays as the frame before left it.
    // The same bytes give the same bands. A wrapped frame count asks for tens of thousands of
    // frames after the end of the file, and would take minutes on a slow machine.
    if (f == 0 || buffer != before) {
      std::array<std::int16_t, 1024> frame{};
      for (std::size_t i = 0; i < frame.size(); ++i) {
        frame[i] = SampleAt(buffer, i);
      }
      bands = FrameBands(frame);
      before = buffer;
    }
    computed.values.insert(computed.values.end(), bands.begin(), bands.end());
  }
  SubtractMinima(computed);
  return computed;
}

Bytes SerializeTemplate(const Template& stored) {
  Bytes bytes;
  Append32(bytes, static_cast<std::uint32_t>(stored.values.size()));
  Append16(bytes, stored.frameCount);
  for (const float value : stored.values) {
    Append32(bytes, std::bit_cast<std::uint32_t>(value));
  }
  return bytes;
}

}  // namespace twins
