#include "voicemath/voice_mathematics.h"

#include <algorithm>
#include <utility>

#include "voicemath/fft.h"
#include "voicemath/template_distance.h"

// The slots of CVoiceMathematics and what is asked of them. Its other parts are in
// wave_processing.cpp (from the file to the template), wave_trimming.cpp and template_file.cpp.

namespace voicemath {
namespace {

/// 1 / 11,025, as the factor that durations have always been computed with.
constexpr float kSecondsPerSample = 9.0702946e-5F;

constexpr std::u16string_view kNotProcessedText = u"Can't process this file";

}  // namespace

CVoiceMathematics::CVoiceMathematics(platform::FileSystem& files, platform::Ui& ui)
    : m_file(files), m_files(files), m_ui(ui) {
  m_thresholds.fill(kMaxDistance);
}

const framework::RuntimeClass& CVoiceMathematics::GetRuntimeClass() const {
  static constexpr framework::RuntimeClass kClass{"CVoiceMathematics"};
  return kClass;
}

int CVoiceMathematics::LearnFile(std::int32_t slot) {
  return ProcessWave(slot, Extent::kSpeech, framework::CFile::modeReadWrite);
}

int CVoiceMathematics::ProcessFile(std::int32_t slot) {
  return ProcessWave(slot, Extent::kWholeFile, framework::CFile::modeReadWrite);
}

int CVoiceMathematics::ReadFile(std::int32_t slot) {
  return ProcessWave(slot, Extent::kWholeFile, framework::CFile::modeRead);
}

int CVoiceMathematics::ProcessWave(std::int32_t slot, Extent extent, unsigned access) {
  if (slot < 0 || slot >= static_cast<std::int32_t>(kSlotCount)) {
    return kNoSuchSlot;
  }
  const auto index = static_cast<std::size_t>(slot);
  if (!OpenSegment(extent, access) || !ComputeTemplate(static_cast<std::uint32_t>(index))) {
    m_file.Close();
    m_ui.ShowMessage(platform::ApplicationBox(std::u16string(kNotProcessedText)));
    return kNotProcessed;
  }
  if (index < kStoredSlots) {
    m_wavePaths[index] = m_wavePath;
    m_labels[index] = m_label;
    ++m_count;
  }
  m_file.Close();
  return kLearned;
}

bool CVoiceMathematics::OpenSegment(Extent extent, unsigned access) {
  if (!m_file.Open(m_wavePath, access) || OpenWaveData() != kHeaderAccepted) {
    return false;
  }
  if (extent == Extent::kSpeech && !DetectSpeechBounds()) {
    return false;
  }
  m_detected = {m_firstSample, m_lastSample};
  return extent == Extent::kWholeFile || TrimWaveFile();
}

void CVoiceMathematics::Fft(float* real, float* imaginary, std::size_t count, int sign) {
  voicemath::Fft({real, count}, {imaginary, count}, sign);
}

float CVoiceMathematics::GetTemplateDuration(std::int32_t slot) const {
  if (slot < 0 || slot >= static_cast<std::int32_t>(kSlotCount) ||
      !m_templates[static_cast<std::size_t>(slot)]) {
    return 0.0F;
  }
  // Frames overlap by half, so there is one hop more than there are frames.
  const std::int32_t hops = m_hopsPerFrame + m_frameCounts[static_cast<std::size_t>(slot)];
  constexpr auto kHop = static_cast<std::int32_t>(kFrameHop);
  return static_cast<float>(hops * kHop - kHop) * kSecondsPerSample;
}

void CVoiceMathematics::RemoveTemplate(std::int32_t slot) {
  if (slot < 0 || slot >= m_count) {
    return;
  }
  const std::size_t stored = GetStoredCount();
  --m_count;
  const auto first = static_cast<std::size_t>(slot);
  if (first >= stored) {
    return;  // Counted, but there is no such slot.
  }
  for (std::size_t i = first; i + 1 < stored; ++i) {
    m_wavePaths[i] = m_wavePaths[i + 1];
    m_labels[i] = m_labels[i + 1];
    m_templates[i] = std::move(m_templates[i + 1]);
    m_prepared[i] = std::move(m_prepared[i + 1]);
    m_frameCounts[i] = m_frameCounts[i + 1];
  }
  FreeSlot(stored - 1);
}

void CVoiceMathematics::ClearTemplates() {
  for (std::size_t slot = 0; slot < GetStoredCount(); ++slot) {
    FreeSlot(slot);
  }
  m_count = 0;
}

float CVoiceMathematics::CompareTemplates(std::int32_t a, std::int32_t b) const {
  constexpr auto kEnd = static_cast<std::int32_t>(kSlotCount);
  if (a < 0 || a >= kEnd || b < 0 || b >= kEnd) {
    return kMaxDistance;
  }
  return TemplateDistance(m_prepared[static_cast<std::size_t>(a)],
                          m_prepared[static_cast<std::size_t>(b)]);
}

platform::Result<void, SearchStopped> CVoiceMathematics::FindNearest(
    std::span<Neighbour> nearest, const SearchWatch& watch) const {
  const std::size_t slots = std::min(nearest.size(), kStoredSlots);
  return voicemath::FindNearest(std::span(m_prepared).first(slots), nearest.first(slots), watch);
}

// The threshold of a template is the distance of its nearest neighbour, less a share that shrinks
// as the templates become more.
std::int32_t CVoiceMathematics::ComputeThresholds() {
  m_thresholds.fill(kMaxDistance);
  if (m_count > 1) {
    std::array<Neighbour, kStoredSlots> nearest;
    const std::size_t stored = GetStoredCount();
    // Nobody watches, so nobody stops it.
    static_cast<void>(FindNearest(std::span(nearest).first(stored)));
    for (std::size_t slot = 0; slot < stored; ++slot) {
      m_thresholds[slot] = AcceptanceDistance(nearest[slot].distance, m_count);
    }
  }
  return m_count;
}

platform::Result<void, PrepareError> CVoiceMathematics::SetTemplate(
    std::size_t slot, std::unique_ptr<const float[]> values, std::uint16_t frames) {
  auto prepared = m_prepared[slot].Prepare({values.get(), std::size_t{frames} * m_bandCount});
  if (prepared) {
    m_templates[slot] = std::move(values);
    m_frameCounts[slot] = frames;
  }
  return prepared;
}

std::span<const float> CVoiceMathematics::GetTemplate(std::size_t slot) const {
  if (!m_templates[slot]) {
    return {};
  }
  return {m_templates[slot].get(), std::size_t{m_frameCounts[slot]} * m_bandCount};
}

std::size_t CVoiceMathematics::GetStoredCount() const {
  return static_cast<std::size_t>(
      std::clamp<std::int32_t>(m_count, 0, static_cast<std::int32_t>(kStoredSlots)));
}

void CVoiceMathematics::FreeSlot(std::size_t slot) {
  m_templates[slot].reset();
  m_prepared[slot] = {};
  m_frameCounts[slot] = 0;
}

}  // namespace voicemath
