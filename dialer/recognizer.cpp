#include "dialer/recognizer.h"

#include <algorithm>
#include <cstddef>

#include "voicemath/take_template.h"
#include "voicemath/template_distance.h"

namespace dialer {

Recognizer::Recognizer(std::span<const TaughtTag> tags) {
  for (const TaughtTag& tag : tags) {
    const auto same = std::ranges::find_if(tags, [&tag](const TaughtTag& other) {
      return &other == &tag || IsSameNumber(other, tag);
    });
    Tag& made = m_tags.emplace_back();
    made.candidate = {tag.name, tag.oid, tag.phoneKind};
    made.number = static_cast<std::size_t>(same - tags.begin());
    // Without memory the tag is as far from everything as a tag can be.
    static_cast<void>(made.shape.Prepare(tag.features));
  }
}

Answer Recognizer::Recognize(Take take, Steps steps) const {
  return Recognize(std::span(&take, 1), steps);
}

Answer Recognizer::Recognize(std::span<const Take> takes, Steps /*steps*/) const {
  Answer answer;
  std::vector<float> best(m_tags.size(), voicemath::kMaxDistance);
  std::vector<const Tag*> tagOf(m_tags.size());
  for (const Take take : takes) {
    if (take.empty()) {
      return answer;
    }
    voicemath::PreparedTemplate heard;
    if (!heard.Prepare(voicemath::ComputeLearnedTemplate(take)) || heard.Frames() == 0) {
      return answer;
    }
    for (const Tag& tag : m_tags) {
      const float distance = voicemath::TemplateDistance(heard, tag.shape);
      if (tagOf[tag.number] == nullptr || distance < best[tag.number]) {
        best[tag.number] = distance;
        tagOf[tag.number] = &tag;
      }
    }
  }
  for (std::size_t number = 0; number < m_tags.size(); ++number) {
    if (tagOf[number] != nullptr) {
      Candidate candidate = tagOf[number]->candidate;
      candidate.distance = best[number];
      candidate.score = 1 - best[number] / voicemath::kMaxDistance;
      answer.candidates.push_back(std::move(candidate));
    }
  }
  std::ranges::stable_sort(answer.candidates, {}, &Candidate::distance);
  if (answer.candidates.size() > kMostCandidates) {
    answer.candidates.resize(kMostCandidates);
  }
  answer.certainty = answer.candidates.empty() ? Certainty::kUnknown : Certainty::kOneOf;
  return answer;
}

}  // namespace dialer
