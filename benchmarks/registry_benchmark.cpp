// Making a tag in the registry: as one group of changes, which is what the applet does, next to one
// change after the other. Real files, so each change is forced to the medium; TMPDIR chooses it.
//
//   build/benchmark/benchmarks/registry_benchmark

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "backends/sqlite/sqlite_registry.h"
#include "storage/registry_keys.h"
#include "storage/tag_record.h"
#include "storage/tag_store.h"
#include "tests/machine/memory_file_system.h"
#include "tests/support/temp_folder.h"

namespace {

using platform::RegistryType;

/// A store in a folder of its own.
class Store {
 public:
  [[nodiscard]] platform::Registry& Registry() { return m_registry; }
  [[nodiscard]] const storage::TagStore& Tags() const { return m_tags; }

  /// Returns a name that no tag has yet.
  [[nodiscard]] std::u16string NextName() { return storage::TagNameOfTickCount(++m_lastName); }

 private:
  support::TempFolder m_folder;
  sqlite::SqliteRegistry m_registry{m_folder.Path() / sqlite::kDatabaseName};
  machine::MemoryFileSystem m_files;
  storage::TagStore m_tags{m_files, m_registry};
  std::uint32_t m_lastName = 0;
};

bool WriteOneByOne(platform::Registry& registry, const std::u16string& name) {
  const auto entry = registry.CreateKey(std::u16string(storage::kTagKey) + u'\\' + name);
  return entry &&
         (*entry)->Set(storage::kContactValue, RegistryType::kString,
                       storage::ToTagValue(u"-17")) &&
         (*entry)->Set(storage::kPhoneTypeValue, RegistryType::kString,
                       storage::ToTagValue(u"Mobile"));
}

void MakeTagAsOneGroup(benchmark::State& state) {
  Store store;
  for (auto _ : state) {
    if (!store.Tags().WriteEntry(store.NextName(), -17, u"Mobile")) {
      state.SkipWithError("the tag was not written");
      break;
    }
  }
}
BENCHMARK(MakeTagAsOneGroup)->Unit(benchmark::kMicrosecond)->UseRealTime();

void MakeTagOneChangeAfterTheOther(benchmark::State& state) {
  Store store;
  for (auto _ : state) {
    if (!WriteOneByOne(store.Registry(), store.NextName())) {
      state.SkipWithError("the tag was not written");
      break;
    }
  }
}
BENCHMARK(MakeTagOneChangeAfterTheOther)->Unit(benchmark::kMicrosecond)->UseRealTime();

void ReadOneHundredTags(benchmark::State& state) {
  constexpr int kTags = 100;
  Store store;
  for (int i = 0; i < kTags; ++i) {
    if (!store.Tags().WriteEntry(store.NextName(), i, u"Mobile")) {
      state.SkipWithError("a tag was not written");
      return;
    }
  }
  for (auto _ : state) {
    const auto names = store.Tags().OpenNames();
    std::uint32_t index = 0;
    while (const auto name = names ? names->Get(index++) : std::nullopt) {
      benchmark::DoNotOptimize(store.Tags().ReadEntry(*name));
    }
  }
}
BENCHMARK(ReadOneHundredTags)->Unit(benchmark::kMicrosecond);

}  // namespace
