// Loads a language file of arbitrary bytes, and compares the table with its literal twin. The check
// of the same file must come to its end and agree on which keys are missing.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "language/language_file_reader.h"
#include "language/language_table.h"
#include "language/translation.h"
#include "resources/language_keys.h"
#include "tests/fuzz/require.h"
#include "tests/language/twins/compare_with_twin.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::byte> file = std::as_bytes(std::span(data, size));
  const std::string difference = twins::DifferenceFromTwin(file);
  Require(difference.empty(), difference.c_str());

  language::LanguageTable table;
  table.LoadFrom(file);
  std::ptrdiff_t missing = 0;
  for (const resources::LanguageKey& row : resources::kLanguageKeys) {
    if (table.LookUp(row.key.data(), nullptr) == nullptr) {
      ++missing;
    }
  }
  const auto findings = language::CheckLanguageFile(file);
  const auto told =
      std::ranges::count(findings, language::FindingKind::kMissingKey, &language::Finding::kind);
  if (language::LanguageFileReader(file).IsAccepted()) {
    Require(told == missing, "the check misses the keys that the table misses");
  } else {
    Require(findings.size() == 1 && table.GetCount() == 0, "a refused file has that one finding");
  }
  return 0;
}
