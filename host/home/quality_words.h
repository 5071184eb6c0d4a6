#pragma once

#include <QString>
#include <QStringList>

#include "host/home/shelf.h"
#include "voicemath/take_quality.h"

namespace home {

// What is said of the quality of a recording or a tag, in the language of the desktop.

/// Returns one or two words for a list.
[[nodiscard]] QString NameVerdict(voicemath::Verdict verdict);

/// Returns a sentence.
[[nodiscard]] QString DescribeVerdict(voicemath::Verdict verdict,
                                      const voicemath::TakeQuality& quality);

/// Returns whether all of the tag could be judged: it has its template, and each file could be
/// read.
[[nodiscard]] bool IsJudged(const maintenance::TagQuality& quality);

/// Returns one or two words for a tag: what hinders most, or that it is good.
[[nodiscard]] QString NameQuality(const maintenance::TagQuality& quality);

/// Returns a sentence for each verdict on a tag of `tags`. If it sounds like other tags, each of
/// them is named. Returns the sentence that it is good if there is none.
[[nodiscard]] QStringList DescribeQuality(const Tag& tag, const std::vector<Tag>& tags);

}  // namespace home
