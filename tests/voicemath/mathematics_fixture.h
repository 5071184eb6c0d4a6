#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "backends/headless/headless_ui.h"
#include "tests/machine/memory_file_system.h"
#include "tests/support/signals.h"
#include "voicemath/template_file.h"
#include "voicemath/voice_mathematics.h"

/// The speech mathematics over files in memory.
class MathematicsFixture : public testing::Test {
 protected:
  static constexpr std::u16string_view kWave = u"/name.wav";
  static constexpr std::u16string_view kTemplate = u"/name.st";

  void PutWave(std::span<const std::int16_t> samples) {
    ASSERT_TRUE(m_files.PutFile(kWave, support::WaveFile(samples)));
    m_mathematics.m_wavePath = kWave;
  }
  void PutWaveBytes(const support::Bytes& bytes) {
    ASSERT_TRUE(m_files.PutFile(kWave, bytes));
    m_mathematics.m_wavePath = kWave;
  }
  [[nodiscard]] support::Bytes GetWave() const {
    return m_files.GetFile(kWave).value_or(support::Bytes());
  }

  /// Puts a template of the given values into a slot, as a load would.
  void SetTemplate(std::size_t slot, const std::vector<float>& values) {
    auto copy = std::make_unique<float[]>(values.size());
    std::copy(values.begin(), values.end(), copy.get());
    ASSERT_TRUE(m_mathematics.SetTemplate(
        slot, std::move(copy), static_cast<std::uint16_t>(values.size() / voicemath::kBandCount)));
  }
  [[nodiscard]] std::vector<float> GetTemplate(std::size_t slot) const {
    const auto values = m_mathematics.GetTemplate(slot);
    return {values.begin(), values.end()};
  }

  machine::MemoryFileSystem m_files;
  headless::HeadlessUi m_ui{u"Zedra Voxtrel"};
  voicemath::CVoiceMathematics m_mathematics{m_files, m_ui};
};
