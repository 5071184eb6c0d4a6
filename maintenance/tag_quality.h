#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "platform/result.h"
#include "storage/tag_record.h"
#include "voicemath/recording_review.h"
#include "voicemath/take_quality.h"

namespace maintenance {

/// A tag of the store that is to be judged.
struct JudgedTag {
  std::u16string name;
  storage::TagEntry entry;
};

/// A tag of another number that the dialer may take for this one.
struct AlikeTag {
  std::size_t index = 0;  ///< Among the tags that were judged.
  float distance = 0.0F;
};

/// What is known of how good a tag is.
struct TagQuality {
  /// Of the recording. An error if there is none that can be read; the check of the store reports
  /// that.
  platform::Result<voicemath::TakeQuality, voicemath::ReviewError> take;
  std::vector<AlikeTag> tooAlike;  ///< The most alike first.
  /// The most alike tag of another number, too alike or not. None if there is no other template.
  std::optional<AlikeTag> nearest;
  /// Whether a file of the tag is there and could not be opened or read. Then this judgement, and
  /// the likeness of others to this tag, may say too little.
  bool hasUnreadFile = false;
  /// Whether its template is missing or damaged, or has no frame, so the dialer does not know the
  /// tag. The check of the store reports that.
  bool hasNoTemplate = false;

  /// Returns whether there is anything to warn of.
  [[nodiscard]] bool HasVerdicts() const { return take && !take->verdicts.empty(); }
};

/// Judges every tag: its recording, and its template next to those of the other tags. Two tags of
/// one number are not compared, since the dialer calls that number for both. A template that cannot
/// be read is like no other; so are those of tags after the first voicemath::kMostTemplates.
/// Changes nothing and shows nothing: message boxes go to the `ui` of `platform`, and there are
/// none for files that can be opened.
[[nodiscard]] std::vector<TagQuality> JudgeTags(const platform::Platform& platform,
                                                std::span<const JudgedTag> tags);

/// Judges only `tags[index]`, next to the others.
[[nodiscard]] TagQuality JudgeTag(const platform::Platform& platform,
                                  std::span<const JudgedTag> tags, std::size_t index);

/// Returns the tags that the dialer may take for `take`, the most alike first, if that becomes a
/// tag of `entry` next to `tags`. `take` are the samples of a whole recording: the part that
/// LearnFile would keep is compared. Changes nothing, and shows nothing, as JudgeTags.
[[nodiscard]] std::vector<AlikeTag> FindTooAlike(const platform::Platform& platform,
                                                 std::span<const JudgedTag> tags,
                                                 std::span<const std::int16_t> take,
                                                 const storage::TagEntry& entry);

}  // namespace maintenance
