// Opens a settings database of arbitrary bytes, or one whose rows another program wrote: it is
// refused and left alone, or it can be listed, exported and changed, and every call ends.

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "backends/sqlite/sqlite_registry.h"
#include "storage/registry_file.h"
#include "storage/tag_store.h"
#include "tests/fuzz/require.h"
#include "tests/machine/memory_file_system.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace {

namespace fs = std::filesystem;
using platform::RegistryError;
using Bytes = std::span<const std::uint8_t>;

constexpr std::uint32_t kMostItems = 2000;

std::string Content(const fs::path& path) {
  std::error_code error;
  const auto size = fs::file_size(path, error);
  std::string content(error ? 0 : static_cast<std::size_t>(size), '\0');
  std::ifstream(path, std::ios::binary)
      .read(content.data(), static_cast<std::streamsize>(content.size()));
  return content;
}

void Write(const fs::path& path, std::string_view content) {
  for (const char* behind : {"", "-wal", "-shm"}) {
    fs::remove(path.string() + behind);
  }
  std::ofstream(path, std::ios::binary) << content;
}

/// A database with a tag, as the program makes it.
const std::string& RightDatabase(const fs::path& path) {
  static const std::string content = [&path] {
    {
      sqlite::SqliteRegistry registry(path, {.initialKeys = {u"Software"}});
      machine::MemoryFileSystem files;
      const storage::TagStore store(files, registry);
      Require(store.WriteEntry(u"4711", -17, u"Mobile").has_value(), "a tag is stored");
    }
    return Content(path);
  }();
  return content;
}

/// Takes bytes from the front of an input, zeros after its end.
class Input {
 public:
  explicit Input(Bytes bytes) : m_bytes(bytes) {}
  [[nodiscard]] bool IsEmpty() const { return m_bytes.empty(); }
  std::uint8_t Byte() { return m_bytes.empty() ? std::uint8_t{0} : Take(1)[0]; }
  Bytes Take(std::size_t count) {
    const Bytes taken = m_bytes.first(std::min(count, m_bytes.size()));
    m_bytes = m_bytes.subspan(taken.size());
    return taken;
  }

 private:
  Bytes m_bytes;
};

/// A column of any type: nothing, a number, a text, bytes.
void Bind(sqlite3_stmt* statement, int column, Input& input) {
  const std::uint8_t kind = input.Byte();
  const int length = kind >> 2;
  switch (kind % 4) {
    case 0:
      sqlite3_bind_int64(statement, column, static_cast<std::int8_t>(input.Byte()));
      break;
    case 1: {
      const Bytes text = input.Take(static_cast<std::size_t>(length));
      sqlite3_bind_text(statement, column, reinterpret_cast<const char*>(text.data()),
                        static_cast<int>(text.size()), SQLITE_TRANSIENT);
      break;
    }
    case 2: {
      const Bytes blob = input.Take(static_cast<std::size_t>(length));
      sqlite3_bind_blob(statement, column, blob.data(), static_cast<int>(blob.size()),
                        SQLITE_TRANSIENT);
      break;
    }
    default:
      break;  // Nothing.
  }
}

/// Writes rows as the input says, with no rule of the tables held but the types of their columns.
void WriteRows(const fs::path& path, Input input) {
  constexpr const char* kRows[] = {
      "INSERT OR REPLACE INTO registry_key VALUES (?, ?, ?, ?)",
      "INSERT OR REPLACE INTO registry_value VALUES (?, ?, ?, ?, ?, ?)",
      "UPDATE registry_key SET parent_id = ?2 WHERE id = ?1",
      "UPDATE registry_value SET data = ?2 WHERE id = ?1",
  };
  sqlite3* database = nullptr;
  Require(sqlite3_open(path.c_str(), &database) == SQLITE_OK, "the library opens it");
  sqlite3_exec(database, "PRAGMA synchronous = OFF; PRAGMA ignore_check_constraints = ON; BEGIN",
               nullptr, nullptr, nullptr);
  while (!input.IsEmpty()) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database, kRows[input.Byte() % std::size(kRows)], -1, &statement, nullptr);
    for (int column = 1; column <= sqlite3_bind_parameter_count(statement); ++column) {
      Bind(statement, column, input);
    }
    static_cast<void>(sqlite3_step(statement));
    sqlite3_finalize(statement);
  }
  sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr);
  sqlite3_close(database);
}

void ListKey(platform::Registry& registry, std::u16string_view path) {
  const platform::OpenedKey opened = registry.OpenKey(path);
  if (!opened) {
    return;
  }
  Require(*opened != nullptr, "a key or an error");
  std::uint32_t items = 0;
  const auto goesOn = [](const auto& name) {
    return name ? name->has_value() : name.error() == RegistryError::kInvalid;
  };
  while (items < kMostItems && goesOn((*opened)->EnumerateSubkey(items))) {
    ++items;
  }
  Require(items < kMostItems, "an enumeration ends");
  std::u16string latest;
  for (items = 0; items < kMostItems; ++items) {
    const auto name = (*opened)->EnumerateValue(items);
    if (!goesOn(name)) {
      break;
    }
    latest = name ? **name : latest;
    const auto value = (*opened)->Query(latest);
    Require(!value || value->bytes.size() <= platform::kMaxValueBytes, "a value has its limit");
  }
  Require(items < kMostItems, "an enumeration ends");
}

void ReadAll(platform::Registry& registry) {
  for (const std::u16string_view path :
       {u"", u"Software", u"Software\\Zedra", u"Software\\Zedra\\Zedra Voxtrel"}) {
    ListKey(registry, path);
  }
  machine::MemoryFileSystem files;
  const storage::TagStore store(files, registry);
  const auto list = store.ListNames();
  for (const std::u16string& name : list ? list->names : std::vector<std::u16string>()) {
    static_cast<void>(store.ReadEntry(name));
  }
}

/// What was exported can be imported, and is then the same.
void Export(platform::Registry& registry) {
  if (const auto file = storage::WriteRegistryFile(registry)) {
    Require(storage::ParseRegistryFile(*file).has_value(), "what is exported is read");
  }
}

void Change(platform::Registry& registry) {
  constexpr std::u16string_view kKey = u"Software\\Fuzz";
  constexpr std::byte kData[] = {std::byte{1}, std::byte{2}};
  auto made = registry.CreateKey(kKey);
  if (!made || !(*made)->Set(u"v", platform::RegistryType::kBinary, kData)) {
    return;
  }
  const auto value = (*made)->Query(u"V");
  Require(value && std::ranges::equal(value->bytes, kData), "what was stored is there");
  made->reset();
  Require(registry.DeleteKey(kKey).has_value(), "and can be deleted");
  Require(support::ErrorOf(registry.OpenKey(kKey)) == RegistryError::kNotFound, "and is gone then");
}

}  // namespace

/// An input that begins with a zero holds the whole file after it. Any other describes rows.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const support::TempFolder folder;
  static const fs::path path = folder.Path() / sqlite::kDatabaseName;
  const Bytes bytes(data, size);
  const std::string& right = RightDatabase(path);
  if (!bytes.empty() && bytes.front() == 0) {
    Write(path, {reinterpret_cast<const char*>(data) + 1, size - 1});
  } else {
    Write(path, right);
    WriteRows(path, Input(bytes));
  }
  const std::string before = Content(path);
  {
    sqlite::SqliteRegistry registry(
        path, {.busyLimit = std::chrono::milliseconds(0), .access = sqlite::Access::kRead});
    ReadAll(registry);
    Export(registry);
  }
  Require(Content(path) == before, "reading changes nothing");
  std::optional<RegistryError> error;
  {
    sqlite::SqliteRegistry registry(path, {.busyLimit = std::chrono::milliseconds(0)});
    error = support::ErrorOf(registry.OpenKey(u""));
    ReadAll(registry);
    Change(registry);
  }
  if (error == RegistryError::kDamaged || error == RegistryError::kNewerStore) {
    Require(Content(path) == before, "what is refused is left alone");
  }
  return 0;
}
