#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace e2e {

/// `words`, spoken by espeak-ng: signed 16-bit samples in the given form. `folder` takes
/// intermediate files. Empty, and a failure of the test, if the machine cannot speak.
[[nodiscard]] std::vector<std::byte> Speak(const std::filesystem::path& folder,
                                           const std::string& words, std::uint32_t rate,
                                           std::uint16_t channels);

/// The samples of signed 16-bit sound.
[[nodiscard]] std::vector<std::int16_t> ToSamples(std::span<const std::byte> sound);

/// Whether `sound` is what somebody hears to whom `loop` is played again and again, from some
/// sample of it on, without a gap. Both are signed 16-bit sound of one channel.
[[nodiscard]] bool IsPartOfLoop(std::span<const std::byte> sound, std::span<const std::byte> loop);

struct Match {
  double correlation = -1.0;  ///< 1.0 is equality up to loudness.
  std::size_t offset = 0;     ///< Samples from the beginning of the recording.
};

/// Where in `recording` the sound `said` is found best, no later than `lastOffset`.
[[nodiscard]] Match FindSound(std::span<const std::int16_t> recording,
                              std::span<const std::int16_t> said, std::size_t lastOffset);

}  // namespace e2e
