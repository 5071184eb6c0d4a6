#include "host/cli/tag_output.h"

#include <cmath>

#include "backends/text/utf.h"
#include "storage/device_paths.h"

namespace cli {
namespace {

using voicemath::TakeQuality;
using voicemath::Verdict;

/// Returns a level in whole tenths of a decibel. More digits would be no truer.
double ToTenths(double decibels) { return std::round(decibels * 10) / 10; }

}  // namespace

Json ToJson(const Session& session, const tags::ListedTag& tag) {
  return {{"name", text::ToUtf8(tag.name)},
          {"contact", tag.entry.oid ? Json(*tag.entry.oid) : Json()},
          {"phoneType", text::ToUtf8(tag.entry.phoneType)},
          {"text", text::ToUtf8(tag.text)},
          {"wave", session.ToHostPath(storage::WavePath(tag.name))},
          {"template", session.ToHostPath(storage::TemplatePath(tag.name))},
          {"stale", tag.isStale}};
}

Json QualityToJson(const platform::Result<TakeQuality, voicemath::ReviewError>& take) {
  if (!take) {
    return nullptr;
  }
  Json verdicts = Json::array();
  for (const Verdict verdict : take->verdicts) {
    verdicts.push_back(ToWord(verdict));
  }
  return {{"verdicts", verdicts},
          {"peakDb", ToTenths(take->peakDb)},
          {"snrDb", ToTenths(take->snrDb)},
          {"tooAlike", Json::array()}};
}

Json QualityToJson(const maintenance::TagQuality& quality,
                   std::span<const maintenance::JudgedTag> tags) {
  if (quality.hasNoTemplate) {
    return nullptr;  // The dialer does not know it, however good its recording is.
  }
  Json json = QualityToJson(quality.take);
  for (const maintenance::AlikeTag& alike : quality.tooAlike) {
    if (!json.is_null()) {
      json["tooAlike"].push_back(
          {{"tag", text::ToUtf8(tags[alike.index].name)}, {"distance", alike.distance}});
    }
  }
  return json;
}

}  // namespace cli
