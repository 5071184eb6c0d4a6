#pragma once

#include <map>
#include <optional>
#include <set>

#include "platform/file_system.h"
#include "storage/registry_keys.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/tags/page_fixture.h"

/// The Learning page on a machine with tags that an earlier version made.
class ReinitPageFixture : public PageFixture {
 protected:
  using Texts = std::vector<std::u16string>;

  void PutVersion(std::u16string_view text) {
    ASSERT_EQ(support::ErrorOf(support::PutText(m_machine.registry, storage::kSetupKey,
                                                storage::kMathVersionValue, text)),
              std::nullopt);
  }
  [[nodiscard]] std::vector<std::byte> GetVersion() {
    return support::BytesOf(m_machine.registry, storage::kSetupKey, storage::kMathVersionValue);
  }

  /// Short, so that many runs take little time; still something to trim.
  static support::Bytes Recording(std::uint32_t seed) {
    return support::WaveFile(
        support::Mixed(support::Noise(9000, 10, seed), 4000, support::SpeechLike(900, 9000, seed)));
  }
  void PutSpokenTag(std::u16string_view name, std::uint32_t seed) {
    PutTag(name, kAnn, u"Mobile");
    ASSERT_TRUE(m_machine.files.PutFile(storage::WavePath(name), Recording(seed)));
  }

  [[nodiscard]] std::optional<support::Bytes> GetTemplate(std::u16string_view name) const {
    return m_machine.files.GetFile(storage::TemplatePath(name));
  }
  /// Whether the bytes are as long as their two counts say.
  static bool IsWholeTemplate(const support::Bytes& bytes) {
    if (bytes.size() < 6) {
      return false;
    }
    const std::span<const std::byte> span(bytes);
    const std::uint32_t elements = platform::LoadLittleEndian32(span.subspan<0, 4>());
    const std::uint32_t frames = platform::LoadLittleEndian16(span.subspan<4, 2>());
    return elements == frames * 5 && bytes.size() == 6 + 4 * std::size_t{elements};
  }
};
