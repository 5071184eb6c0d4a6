#include "host/home/quality_words.h"

#include <QLocale>

#include "host/home/numbers.h"
#include "host/home/say.h"
#include "resources/quality_strings.h"

namespace home {
namespace {

using voicemath::Verdict;

QString ToDecibels(double value) { return QLocale().toString(value, 'f', 1); }

}  // namespace

QString NameVerdict(Verdict verdict) {
  switch (verdict) {
    case Verdict::kInterrupted:
      return Say(resources::kQualityInterrupted);
    case Verdict::kRate:
      return Say(resources::kQualityRate);
    case Verdict::kSilent:
      return Say(resources::kQualitySilent);
    case Verdict::kNoSpeech:
      return Say(resources::kQualityNoSpeech);
    case Verdict::kCutStart:
      return Say(resources::kQualityCutStart);
    case Verdict::kCutEnd:
      return Say(resources::kQualityCutEnd);
    case Verdict::kShort:
      return Say(resources::kQualityShort);
    case Verdict::kClipped:
      return Say(resources::kQualityClipped);
    case Verdict::kSoft:
      return Say(resources::kQualitySoft);
    case Verdict::kNoisy:
      return Say(resources::kQualityNoisy);
    default:
      return Say(resources::kQualityTooAlike);
  }
}

QString DescribeVerdict(Verdict verdict, const voicemath::TakeQuality& quality) {
  switch (verdict) {
    case Verdict::kInterrupted:
      return Say(resources::kTakeIsInterrupted);
    case Verdict::kRate:
      return Say(resources::kTakeHasWrongRate);
    case Verdict::kSilent:
      return Say(resources::kTakeIsSilent);
    case Verdict::kNoSpeech:
      return Say(resources::kTakeHasNoSpeech);
    case Verdict::kCutStart:
      return Say(resources::kTakeStartIsCut);
    case Verdict::kCutEnd:
      return Say(resources::kTakeEndIsCut);
    case Verdict::kShort:
      return Say(resources::kTakeIsShort);
    case Verdict::kClipped:
      return Say(resources::kTakeIsClipped);
    case Verdict::kSoft:
      return Say(resources::kTakeIsSoft).arg(ToDecibels(quality.peakDb));
    case Verdict::kNoisy:
      return quality.snrDb > 0 ? Say(resources::kTakeIsNoisy).arg(ToDecibels(quality.snrDb))
                               : Say(resources::kTakeRoomIsLoud);
    default:
      return Say(resources::kTakeIsTooAlike);
  }
}

bool IsJudged(const maintenance::TagQuality& quality) {
  return quality.take && !quality.hasUnreadFile && !quality.hasNoTemplate;
}

QString NameQuality(const maintenance::TagQuality& quality) {
  // The first verdict is the one that hinders most.
  if (quality.take && !quality.take->verdicts.empty()) {
    return NameVerdict(quality.take->verdicts.front());
  }
  if (!quality.tooAlike.empty()) {
    return Say(resources::kQualityTooAlike);
  }
  return Say(IsJudged(quality) ? resources::kQualityGood : resources::kQualityUnknown);
}

QStringList DescribeQuality(const Tag& tag, const std::vector<Tag>& tags) {
  QStringList sentences;
  if (!IsJudged(tag.quality)) {
    sentences.append(Say(resources::kTagIsNotJudged));
  }
  if (tag.quality.take) {
    for (const Verdict verdict : tag.quality.take->verdicts) {
      // A tag has other words than a take that was just made: nobody can speak later any more.
      if (verdict == Verdict::kCutStart) {
        sentences.append(Say(resources::kTagStartIsCut));
      } else if (verdict == Verdict::kCutEnd) {
        sentences.append(Say(resources::kTagEndIsCut));
      } else if (verdict != Verdict::kTooAlike) {
        sentences.append(DescribeVerdict(verdict, *tag.quality.take));
      }
    }
  }
  for (const maintenance::AlikeTag& alike : tag.quality.tooAlike) {
    sentences.append(Say(resources::kTagIsTooAlike).arg(InSentence(tags.at(alike.index).contact)));
  }
  return sentences.isEmpty() ? QStringList(Say(resources::kTakeIsGood)) : sentences;
}

}  // namespace home
