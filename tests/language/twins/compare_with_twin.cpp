#include "tests/language/twins/compare_with_twin.h"

#include <string_view>
#include <vector>

#include "language/language_table.h"
#include "tests/language/twins/language_table_twin.h"

namespace twins {
namespace {

bool Same(const char16_t* a, const char16_t* b) {
  if (a == nullptr || b == nullptr) {
    return a == b;
  }
  return std::u16string_view(a) == std::u16string_view(b);
}

}  // namespace

std::string DifferenceFromTwin(std::span<const std::byte> file) {
  // A copy of exactly this length, so that a sanitizer sees any byte read after its end.
  const std::vector<std::byte> exact(file.begin(), file.end());
  language::LanguageTable table;
  table.LoadFrom(exact);
  LanguageTableTwin twin;
  twin.Load(exact);

  if (table.GetCount() != twin.GetCount()) {
    return "count: " + std::to_string(table.GetCount()) + ", twin " +
           std::to_string(twin.GetCount());
  }
  for (std::size_t i = 0; i < twin.GetCount(); ++i) {
    const language::LanguageTable::Entry& entry = table.GetEntries()[i];
    if (entry.key != twin.GetKey(i)) {
      return "key " + std::to_string(i);
    }
    if (entry.text != twin.GetText(i)) {
      return "text " + std::to_string(i);
    }
    const char16_t* const key = twin.GetKey(i);
    if (!Same(table.LookUp(key, nullptr), twin.LookUp(key, nullptr))) {
      return "look-up " + std::to_string(i);
    }
  }
  const char16_t* const kOthers[] = {nullptr, u"", u"ID_A", u"ID_TAB_2", u"no such key"};
  for (const char16_t* const key : kOthers) {
    if (!Same(table.LookUp(key, u"default"), twin.LookUp(key, u"default"))) {
      return "other key";
    }
  }
  return {};
}

}  // namespace twins
