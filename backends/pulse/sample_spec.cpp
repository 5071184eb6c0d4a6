#include "backends/pulse/sample_spec.h"

namespace pulse {
namespace {

pa_sample_format_t ToSampleFormat(std::uint16_t bitsPerSample) {
  switch (bitsPerSample) {
    case 8:
      return PA_SAMPLE_U8;
    case 16:
      return PA_SAMPLE_S16LE;
    case 24:
      return PA_SAMPLE_S24LE;
    case 32:
      return PA_SAMPLE_S32LE;
    default:
      return PA_SAMPLE_INVALID;
  }
}

}  // namespace

std::optional<pa_sample_spec> ToSampleSpec(const platform::WaveFormat& format) {
  if (!platform::IsWholeBytePcm(format) || format.channels > PA_CHANNELS_MAX) return std::nullopt;
  const pa_sample_spec sampleSpec{ToSampleFormat(format.bitsPerSample), format.samplesPerSecond,
                                  static_cast<std::uint8_t>(format.channels)};
  if (pa_sample_spec_valid(&sampleSpec) == 0) return std::nullopt;
  return sampleSpec;
}

}  // namespace pulse
