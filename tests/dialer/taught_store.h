#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "storage/device_paths.h"
#include "storage/registry_keys.h"
#include "storage/tag_store.h"
#include "tests/machine/memory_file_system.h"
#include "tests/machine/memory_registry.h"
#include "tests/support/registry_access.h"
#include "tests/support/signals.h"
#include "voicemath/take_template.h"

/// A store as the applet leaves it.
class TaughtStore {
 public:
  TaughtStore() { SetVersion(u"3"); }

  void SetVersion(std::u16string_view version) {
    EXPECT_TRUE(
        support::PutText(registry, storage::kSetupKey, storage::kMathVersionValue, version));
  }

  /// Teaches a tag the part of `take` that is kept.
  void Teach(std::u16string_view name, const support::Samples& take, std::int32_t oid,
             std::u16string_view phoneKind = u"Home") {
    const voicemath::Segment kept = voicemath::FindKeptPart(take);
    PutRecording(name, {take.begin() + kept.first, take.begin() + kept.last + 1});
    PutTemplate(name, voicemath::ComputeLearnedTemplate(take));
    PutEntry(name, oid, phoneKind);
  }

  void PutEntry(std::u16string_view name, std::int32_t oid,
                std::u16string_view phoneKind = u"Home") {
    EXPECT_TRUE(storage::TagStore(files, registry).WriteEntry(name, oid, phoneKind));
  }
  void PutRecording(std::u16string_view name, const support::Samples& samples) {
    EXPECT_TRUE(files.PutFile(storage::WavePath(name), support::WaveFile(samples)));
  }
  void PutTemplate(std::u16string_view name, const std::vector<float>& features) {
    EXPECT_TRUE(files.PutFile(storage::TemplatePath(name), TemplateFile(features)));
  }

  [[nodiscard]] static support::Bytes TemplateFile(const std::vector<float>& features) {
    support::Bytes bytes(6 + 4 * features.size());
    const std::span<std::byte> span(bytes);
    platform::StoreLittleEndian32(span.first<4>(), static_cast<std::uint32_t>(features.size()));
    platform::StoreLittleEndian16(span.subspan<4, 2>(),
                                  static_cast<std::uint16_t>(features.size() / 5));
    for (std::size_t i = 0; i < features.size(); ++i) {
      platform::StoreLittleEndian32(span.subspan(6 + 4 * i).first<4>(),
                                    std::bit_cast<std::uint32_t>(features[i]));
    }
    return bytes;
  }

  /// Returns a take with something spoken in it, another one for each seed.
  [[nodiscard]] static support::Samples Spoken(std::uint32_t seed) {
    return support::Mixed(support::Noise(12000, 20, seed), 4000,
                          support::SpeechLike(3000, 9000, seed));
  }

  machine::MemoryFileSystem files;
  machine::MemoryRegistry registry;
};
