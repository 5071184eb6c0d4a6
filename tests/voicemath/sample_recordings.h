#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <vector>

#include "platform/file_system.h"
#include "tests/support/signals.h"

namespace voicemath {

inline constexpr std::uint32_t kSampleRecordings = 24;

/// Spoken names, three seconds each, by their file names: the samples of the recordings that come
/// with the program.
[[nodiscard]] inline const std::vector<support::Samples>& SampleRecordings() {
  static const std::vector<support::Samples> kRecordings = [] {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(VOXTREL_SAMPLES_DIR)) {
      if (entry.path().extension() == ".wav") {
        paths.push_back(entry.path());
      }
    }
    std::ranges::sort(paths);
    std::vector<support::Samples> recordings;
    for (const std::filesystem::path& path : paths) {
      constexpr std::size_t kHeader = 44;
      support::Bytes bytes(static_cast<std::size_t>(std::filesystem::file_size(path)));
      std::ifstream stream(path, std::ios::binary);
      stream.read(reinterpret_cast<char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
      EXPECT_TRUE(stream.good()) << path;
      support::Samples& samples = recordings.emplace_back();
      for (std::size_t at = kHeader; at + 1 < bytes.size(); at += 2) {
        samples.push_back(static_cast<std::int16_t>(
            platform::LoadLittleEndian16(std::span(bytes).subspan(at).first<2>())));
      }
    }
    EXPECT_EQ(recordings.size(), kSampleRecordings);
    return recordings;
  }();
  return kRecordings;
}

}  // namespace voicemath
