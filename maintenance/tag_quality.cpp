#include "maintenance/tag_quality.h"

#include <algorithm>
#include <cstdint>
#include <memory>

#include "platform/file_system.h"
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
      const std::u16string path = storage::TemplatePath(m_tags[i].name);
      const auto read = voicemath::ReadTemplateFile(m_platform.files, path, *m_mathematics);
      m_templates.push_back(read                                       ? TemplateState::kRead
                            : IsThere(path) && !IsDamage(read.error()) ? TemplateState::kUnread
                                                                       : TemplateState::kNone);
    }
  }

  [[nodiscard]] TagQuality Judge(const JudgedTag& tag, std::size_t index) const {
    m_mathematics->m_wavePath = storage::WavePath(tag.name);
    TagQuality quality{.take = voicemath::JudgeRecording(*m_mathematics),
                       .tooAlike = FindTooAlike(index)};
    quality.hasUnreadFile = quality.take == platform::Failure(voicemath::ReviewError::kNotRead) ||
                            (index < m_tags.size() && m_templates[index] == TemplateState::kUnread);
    if (quality.take && !quality.tooAlike.empty()) {
      quality.take->Add(voicemath::Verdict::kTooAlike);
    }
    return quality;
  }

 private:
  enum class TemplateState : std::uint8_t {
    kRead,
    kNone,    ///< There is none, or a damaged one.
    kUnread,  ///< There is one, and it cannot be opened or read.
  };

  [[nodiscard]] static bool IsDamage(voicemath::TemplateFileError error) {
    return error == voicemath::TemplateFileError::kTorn ||
           error == voicemath::TemplateFileError::kBadFormat;
  }

  [[nodiscard]] bool IsThere(std::u16string_view path) const {
    return m_platform.files.Find(path) != platform::Failure(platform::FileError::kNotFound);
  }

  [[nodiscard]] bool AreCompared(std::size_t i, std::size_t j) const {
    const storage::TagEntry& a = m_tags[i].entry;
    const storage::TagEntry& b = m_tags[j].entry;
    const bool isSameNumber = a.oid && a.oid == b.oid && a.phoneType == b.phoneType;
    return i != j && m_templates[i] == TemplateState::kRead &&
           m_templates[j] == TemplateState::kRead && !isSameNumber;
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
  std::vector<TemplateState> m_templates;
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
