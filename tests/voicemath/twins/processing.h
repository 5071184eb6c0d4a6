#pragma once

#include <optional>

#include "tests/voicemath/twins/features.h"

namespace twins {

/// What is to be seen after one wave file was made into a template.
struct Processed {
  int result = 0;                 ///< 0 done, 1 slot above 100, 2 not to be processed.
  int headerCode = 0;             ///< If the header was looked at.
  std::uint32_t firstSample = 0;  ///< The segment as it was found, before trimming.
  std::uint32_t lastSample = 0;
  Bytes after;  ///< The wave file.
  Wave wave;    ///< Where its samples are then.
  Template computed;
  Bytes serialized;
};

/// With the spoken part found and the file trimmed to it. No file: it cannot be opened.
[[nodiscard]] Processed LearnFile(std::int32_t slot, const std::optional<Bytes>& file);

/// With all the data of the file, which stays as it is.
[[nodiscard]] Processed ProcessFile(std::int32_t slot, const std::optional<Bytes>& file);

}  // namespace twins
