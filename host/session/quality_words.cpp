#include "host/session/quality_words.h"

#include <fmt/format.h>

#include "backends/text/say.h"
#include "backends/text/utf.h"

namespace session {

using voicemath::TakeQuality;
using voicemath::Verdict;

std::vector<maintenance::JudgedTag> ToJudged(std::span<const tags::ListedTag> tags) {
  std::vector<maintenance::JudgedTag> judged;
  judged.reserve(tags.size());
  for (const tags::ListedTag& tag : tags) {
    judged.push_back({tag.name, tag.entry});
  }
  return judged;
}

void ReportUnjudged(Session& session, const tags::ListedTag& tag) {
  session.Fail(text::Say(resources::kTagNotJudged, {text::ToUtf8(tag.name)}));
}

std::string DescribeVerdict(Verdict verdict, const TakeQuality& quality) {
  switch (verdict) {
    case Verdict::kInterrupted:
      return "it was interrupted: the microphone was lost before it was whole";
    case Verdict::kRate:
      return "it is not of 11,025 Hz, mono, 16 bit; its template fits no speech";
    case Verdict::kSilent:
      return "it is silent; the microphone may be muted";
    case Verdict::kNoSpeech:
      return "no speech is heard in it";
    case Verdict::kCutStart:
      return "its beginning is cut off: it starts in the middle of the speech";
    case Verdict::kCutEnd:
      return "its end is cut off: it stops in the middle of the speech";
    case Verdict::kShort:
      return "what is heard in it is shorter than a name";
    case Verdict::kClipped:
      return "it is clipped: the microphone was too loud";
    case Verdict::kSoft:
      return fmt::format("it is soft: its peak is {:.1f} dB, and a good one is above -40 dB",
                         quality.peakDb);
    case Verdict::kNoisy:
      return quality.snrDb > 0
                 ? fmt::format("the room is loud: the speech is only {:.1f} dB above it",
                               quality.snrDb)
                 : "the room is loud";
    default:
      return "it sounds like the tag of another number";
  }
}

std::vector<std::string> DescribeAll(const maintenance::TagQuality& quality,
                                     std::span<const tags::ListedTag> tags) {
  std::vector<std::string> sentences;
  if (quality.hasUnreadFile) {
    sentences.emplace_back("it cannot be judged, since a file of the tag cannot be read");
  }
  if (!quality.take) {
    return sentences;
  }
  for (const Verdict verdict : quality.take->verdicts) {
    if (verdict != Verdict::kTooAlike) {
      sentences.push_back(DescribeVerdict(verdict, *quality.take));
    }
  }
  for (const maintenance::AlikeTag& alike : quality.tooAlike) {
    const tags::ListedTag& other = tags[alike.index];
    sentences.push_back(
        fmt::format("it sounds like tag {} ({}); the dialer may take one for the other",
                    text::ToUtf8(other.name), text::ToUtf8(other.text)));
  }
  return sentences;
}

}  // namespace session
