// Loading language files of 300 lines and of multiples, and looking a text up, next to the literal
// twin, which grows its arrays by one element for each entry.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <vector>

#include "language/language_table.h"
#include "language/translation.h"
#include "tests/language/twins/language_table_twin.h"

namespace {

std::u16string Number(std::size_t number) {
  const std::string digits = std::to_string(number);
  return {digits.begin(), digits.end()};
}

std::vector<std::byte> FileOfLines(std::size_t lines) {
  std::u16string text;
  for (std::size_t line = 0; line < lines; ++line) {
    text += u"ID_S_MESSAGE_" + Number(line) + u"  Failed to get a number // comment\r\n";
  }
  return language::ToLanguageFile(text);
}

template <typename Table>
void Load(benchmark::State& state, void (Table::*load)(std::span<const std::byte>)) {
  const auto lines = static_cast<std::size_t>(state.range(0));
  const std::vector<std::byte> file = FileOfLines(lines);
  Table table;
  for (auto _ : state) {
    (table.*load)(file);
    benchmark::DoNotOptimize(table.GetCount());
  }
  if (table.GetCount() != lines) {
    state.SkipWithError("entries are missing");
  }
  state.SetComplexityN(state.range(0));
}

void LoadTable(benchmark::State& state) { Load(state, &language::LanguageTable::LoadFrom); }
void LoadTwin(benchmark::State& state) { Load(state, &twins::LanguageTableTwin::Load); }
BENCHMARK(LoadTable)->RangeMultiplier(2)->Range(300, 19200)->Complexity(benchmark::oN);
BENCHMARK(LoadTwin)->RangeMultiplier(2)->Range(300, 19200)->Complexity(benchmark::oNSquared);

template <typename Table>
void LookUpLast(benchmark::State& state, void (Table::*load)(std::span<const std::byte>)) {
  Table table;
  (table.*load)(FileOfLines(300));
  for (auto _ : state) {
    benchmark::DoNotOptimize(table.LookUp(u"ID_S_MESSAGE_299", nullptr));
  }
}

void LookUpLastOfTable(benchmark::State& state) {
  LookUpLast(state, &language::LanguageTable::LoadFrom);
}
void LookUpLastOfTwin(benchmark::State& state) {
  LookUpLast(state, &twins::LanguageTableTwin::Load);
}
BENCHMARK(LookUpLastOfTable);
BENCHMARK(LookUpLastOfTwin);

}  // namespace
