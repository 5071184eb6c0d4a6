#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "tests/voicemath/twins/wave_header.h"

namespace twins {

/// `frameCount` times five values, frame by frame.
struct Template {
  std::uint16_t frameCount = 0;
  std::vector<float> values;
};

/// What the transform of a frame works on. A caller that transforms many keeps one for all of them.
struct FrameBuffers {
  std::vector<float> real = std::vector<float>(1024);
  std::vector<float> imaginary = std::vector<float>(1024);
};

/// The bins 10 to 229 of the transform of one frame of 1,024 samples, each as its magnitude times
/// its number.
[[nodiscard]] std::array<float, 220> FrameMagnitudes(std::span<const std::int16_t> frame,
                                                     FrameBuffers& buffers);

/// The five bands of one frame of 1,024 samples.
[[nodiscard]] std::array<float, 5> FrameBands(std::span<const std::int16_t> frame,
                                              FrameBuffers& buffers);
[[nodiscard]] std::array<float, 5> FrameBands(std::span<const std::int16_t> frame);

/// Subtracts from each band its minimum over all frames.
void SubtractMinima(Template& computed);

/// The frame count of a segment: 16 bits wide, so that fewer than 512 samples make it 65,535.
[[nodiscard]] std::uint16_t FrameCount(std::uint32_t firstSample, std::uint32_t lastSample);

[[nodiscard]] Template ComputeTemplate(ByteFile& file, const Wave& wave);

/// The bytes of a template file: element count, frame count, values.
[[nodiscard]] Bytes SerializeTemplate(const Template& stored);

}  // namespace twins
