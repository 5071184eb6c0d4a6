#include "maintenance/tag_quality.h"

#include <algorithm>
#include <cstdint>
#include <memory>

#include "storage/device_paths.h"
#include "voicemath/template_file.h"
#include "voicemath/voice_mathematics.h"

namespace maintenance {
namespace {

using voicemath::CVoiceMathematics;

/// Judges tags one by one. Each tag's template takes the slot of the tag's index, all of them
/// before the first judgement: any tag may be too much like any other. The recording of a tag is
/// read when the tag is judged.
class TagJudge {
 public:
  TagJudge(const platform::Platform& platform, std::span<const JudgedTag> tags)
      : m_platform(platform),
        m_tags(tags.first(std::min(tags.size(), CVoiceMathematics::kStoredSlots))),
        m_mathematics(std::make_unique<CVoiceMathematics>(platform.files, platform.ui)) {
    for (std::size_t i = 0; i < m_tags.size(); ++i) {
      m_mathematics->m_loadSlot = static_cast<std::int32_t>(i);
      m_hasTemplate.push_back(voicemath::ReadTemplateFile(m_platform.files,
                                                          storage::TemplatePath(m_tags[i].name),
                                                          *m_mathematics)
                                  .has_value());
    }
  }

  [[nodiscard]] TagQuality Judge(const JudgedTag& tag, std::size_t index) const {
    m_mathematics->m_wavePath = storage::WavePath(tag.name);
    TagQuality quality{.take = voicemath::JudgeRecording(*m_mathematics),
                       .tooAlike = FindTooAlike(index)};
    if (quality.take && !quality.tooAlike.empty()) {
      quality.take->Add(voicemath::Verdict::kTooAlike);
    }
    return quality;
  }

 private:
  [[nodiscard]] bool AreCompared(std::size_t i, std::size_t j) const {
    const storage::TagEntry& a = m_tags[i].entry;
    const storage::TagEntry& b = m_tags[j].entry;
    const bool isSameNumber = a.oid && a.oid == b.oid && a.phoneType == b.phoneType;
    return i != j && m_hasTemplate[i] && m_hasTemplate[j] && !isSameNumber;
  }

  [[nodiscard]] std::vector<AlikeTag> FindTooAlike(std::size_t index) const {
    std::vector<AlikeTag> found;
    for (std::size_t i = 0; index < m_tags.size() && i < m_tags.size(); ++i) {
      if (!AreCompared(index, i)) {
        continue;
      }
      const auto a = static_cast<std::int32_t>(index);
      const auto b = static_cast<std::int32_t>(i);
      // The comparison of two templates of one length depends on which comes first.
      const float distance =
          std::min(m_mathematics->CompareTemplates(a, b), m_mathematics->CompareTemplates(b, a));
      if (voicemath::AreTooAlike(distance, static_cast<std::int32_t>(m_tags.size()))) {
        found.push_back({i, distance});
      }
    }
    std::ranges::stable_sort(found, {}, &AlikeTag::distance);
    return found;
  }

  const platform::Platform m_platform;
  const std::span<const JudgedTag> m_tags;
  const std::unique_ptr<CVoiceMathematics> m_mathematics;  ///< Too large for the stack.
  std::vector<bool> m_hasTemplate;
};

}  // namespace

std::vector<TagQuality> JudgeTags(const platform::Platform& platform,
                                  std::span<const JudgedTag> tags) {
  const TagJudge judge(platform, tags);
  std::vector<TagQuality> qualities;
  for (std::size_t i = 0; i < tags.size(); ++i) {
    qualities.push_back(judge.Judge(tags[i], i));
  }
  return qualities;
}

TagQuality JudgeTag(const platform::Platform& platform, std::span<const JudgedTag> tags,
                    std::size_t index) {
  return TagJudge(platform, tags).Judge(tags[index], index);
}

}  // namespace maintenance
