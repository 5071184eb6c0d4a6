#include "tests/voicemath/twins/processing.h"

#include "tests/voicemath/twins/speech_bounds.h"
#include "tests/voicemath/twins/trim.h"

namespace twins {
namespace {

Processed Process(std::int32_t slot, const std::optional<Bytes>& bytes, bool learn) {
  Processed processed;
  processed.after = bytes.value_or(Bytes{});
  if (slot > 100) {
    processed.result = 1;
    return processed;
  }
  if (!bytes) {
    processed.result = 2;
    return processed;
  }
  ByteFile file(*bytes);
  Wave wave = CheckHeader(file);
  processed.headerCode = wave.code;
  if (wave.code != 0) {
    processed.result = 2;
    return processed;
  }
  if (learn) {
    DetectSpeechBounds(file, wave);
  }
  processed.firstSample = wave.firstSample;
  processed.lastSample = wave.lastSample;
  if (learn) {
    TrimWaveFile(file, wave);
  }
  processed.wave = wave;
  processed.computed = ComputeTemplate(file, wave);
  processed.serialized = SerializeTemplate(processed.computed);
  processed.after = file.Content();
  return processed;
}

}  // namespace

Processed LearnFile(std::int32_t slot, const std::optional<Bytes>& file) {
  return Process(slot, file, true);
}

Processed ProcessFile(std::int32_t slot, const std::optional<Bytes>& file) {
  return Process(slot, file, false);
}

}  // namespace twins
