#pragma once

#include <string>
#include <vector>

#include "tests/support/signals.h"

namespace voicemath {

struct NamedSignal {
  std::string name;
  support::Samples samples;
};

/// Recordings of about three seconds of every kind that the endpoint detector treats in its own
/// way, and a few much shorter ones.
[[nodiscard]] std::vector<NamedSignal> CatalogueOfRecordings();

/// Frames of 1,024 samples.
[[nodiscard]] std::vector<NamedSignal> CatalogueOfFrames();

}  // namespace voicemath
