#include "maintenance/tag_quality.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>

#include "platform/file_system.h"
#include "storage/device_paths.h"
#include "voicemath/take_template.h"
#include "voicemath/template_file.h"
#include "voicemath/voice_mathematics.h"

// How good tags are: the verdicts on each recording, and which names sound too much alike. A take
// that is no tag yet is compared in the same way, so the user hears of it before the tag is kept.
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
      // A file that is there and whole, but cannot be read now, is another thing than none: there
      // is nothing for the user to repair then. One without a frame is like no name.
      const bool isEmpty = read && m_mathematics->m_frameCounts[i] == 0;
      m_templates.push_back(isEmpty                                    ? TemplateState::kNone
                            : read                                     ? TemplateState::kRead
                            : IsThere(path) && !IsDamage(read.error()) ? TemplateState::kUnread
                                                                       : TemplateState::kNone);
    }
  }

  [[nodiscard]] TagQuality Judge(const JudgedTag& tag, std::size_t index) const {
    m_mathematics->m_wavePath = storage::WavePath(tag.name);
    Likeness likeness = FindAlike(index);
    TagQuality quality{.take = voicemath::JudgeRecording(*m_mathematics),
                       .tooAlike = std::move(likeness.tooAlike),
                       .nearest = likeness.nearest};
    quality.hasUnreadFile = quality.take == platform::Failure(voicemath::ReviewError::kNotRead) ||
                            (index < m_tags.size() && m_templates[index] == TemplateState::kUnread);
    quality.hasNoTemplate = index < m_tags.size() && m_templates[index] == TemplateState::kNone;
    if (quality.take && !quality.tooAlike.empty()) {
      quality.take->Add(voicemath::Verdict::kTooAlike);
    }
    return quality;
  }

  [[nodiscard]] std::vector<AlikeTag> FindTooAlike(std::span<const std::int16_t> take,
                                                   const storage::TagEntry& entry) {
    // A take has no file yet. Its template goes into the one slot that is no tag's.
    const std::vector<float> features =
        take.empty() ? std::vector<float>() : voicemath::ComputeLearnedTemplate(take);
    auto values = std::make_unique<float[]>(features.size());
    std::ranges::copy(features, values.get());
    const auto frames = static_cast<std::uint16_t>(features.size() / voicemath::kBandCount);
    constexpr std::size_t kScratchSlot = CVoiceMathematics::kSlotCount - 1;
    if (frames == 0 || !m_mathematics->SetTemplate(kScratchSlot, std::move(values), frames)) {
      return {};
    }
    // Of as many names as there will be with this one.
    return FindAlike(kScratchSlot, entry, m_tags.size() + 1).tooAlike;
  }

 private:
  /// The other tags that are like one.
  struct Likeness {
    std::vector<AlikeTag> tooAlike;
    std::optional<AlikeTag> nearest;
  };

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

  /// Returns whether the tag at `index` is another one than that in slot `a`, and for another
  /// number than that of `entry`.
  [[nodiscard]] bool IsCompared(std::size_t index, std::int32_t a,
                                const storage::TagEntry& entry) const {
    const storage::TagEntry& other = m_tags[index].entry;
    const bool isSameNumber =
        entry.oid && entry.oid == other.oid && entry.phoneType == other.phoneType;
    return static_cast<std::int32_t>(index) != a && m_templates[index] == TemplateState::kRead &&
           !isSameNumber;
  }

  /// Compares the template in slot `a`, which is one of `count`, with those of the tags.
  [[nodiscard]] Likeness FindAlike(std::int32_t a, const storage::TagEntry& entry,
                                   std::size_t count) const {
    Likeness found;
    for (std::size_t i = 0; i < m_tags.size(); ++i) {
      if (!IsCompared(i, a, entry)) {
        continue;
      }
      const auto b = static_cast<std::int32_t>(i);
      // The comparison of two templates of one length depends on which comes first.
      const float distance =
          std::min(m_mathematics->CompareTemplates(a, b), m_mathematics->CompareTemplates(b, a));
      if (!found.nearest || distance < found.nearest->distance) {
        found.nearest = {i, distance};
      }
      if (voicemath::AreTooAlike(distance, static_cast<std::int32_t>(count))) {
        found.tooAlike.push_back({i, distance});
      }
    }
    std::ranges::stable_sort(found.tooAlike, {}, &AlikeTag::distance);
    return found;
  }

  [[nodiscard]] Likeness FindAlike(std::size_t index) const {
    return index < m_tags.size() && m_templates[index] == TemplateState::kRead
               ? FindAlike(static_cast<std::int32_t>(index), m_tags[index].entry, m_tags.size())
               : Likeness();
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

std::vector<AlikeTag> FindTooAlike(const platform::Platform& platform,
                                   std::span<const JudgedTag> tags,
                                   std::span<const std::int16_t> take,
                                   const storage::TagEntry& entry) {
  return TagJudge(platform, tags).FindTooAlike(take, entry);
}

}  // namespace maintenance
