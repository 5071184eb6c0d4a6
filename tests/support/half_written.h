#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "language/texts.h"
#include "platform/registry.h"
#include "storage/registry_keys.h"
#include "storage/tag_record.h"
#include "storage/tag_store.h"
#include "tests/machine/memory_file_system.h"
#include "tests/machine/memory_registry.h"
#include "tests/support/registry_access.h"
#include "tests/support/watched_registry.h"

// Entries of tags as a reader can meet them on a system whose registry has no groups, as that of
// Windows: between the writes of another process, after its kill, or made by another program.

namespace support {

/// Passes every call on but those of groups: each change is there at once, and stays.
class UngroupedRegistry final : public platform::Registry {
 public:
  explicit UngroupedRegistry(platform::Registry& inner) : m_inner(inner) {}

  [[nodiscard]] platform::OpenedKey OpenKey(std::u16string_view path) override {
    return m_inner.OpenKey(path);
  }
  [[nodiscard]] platform::OpenedKey CreateKey(std::u16string_view path) override {
    return m_inner.CreateKey(path);
  }
  [[nodiscard]] platform::Result<void, platform::RegistryError> DeleteKey(
      std::u16string_view path) override {
    return m_inner.DeleteKey(path);
  }
  [[nodiscard]] platform::Result<void, platform::RegistryError> BeginGroup() override { return {}; }
  [[nodiscard]] platform::Result<void, platform::RegistryError> CommitGroup() override {
    return {};
  }
  void CancelGroup() override {}

 private:
  platform::Registry& m_inner;
};

/// An entry that names a contact and the kind "Mobile" as far as it is whole.
struct HalfWritten {
  std::string what;
  bool isThere = true;
  bool namesContact = false;
  bool namesKind = false;
  std::function<void(platform::Registry& registry, std::u16string_view tag)> write;
};

/// Each state after one call of the writer was its last, from no entry to a whole one.
inline void AddLastCalls(std::int32_t oid, std::vector<HalfWritten>& entries) {
  for (std::size_t call = 1;; ++call) {
    const auto write = [=](platform::Registry& registry, std::u16string_view tag) {
      machine::MemoryFileSystem files;
      UngroupedRegistry ungrouped(registry);
      WatchedRegistry killed(ungrouped);
      killed.FailCall(call, Failing::kPowerFailure);
      return storage::TagStore(files, killed).WriteEntry(tag, oid, u"Mobile").has_value();
    };
    machine::MemoryRegistry tried;
    const bool isDone = write(tried, u"1");
    const std::u16string path = storage::EntryPath(u"1");
    entries.push_back({"call " + std::to_string(call) + " was the last", KeyExists(tried, path),
                       !BytesOf(tried, path, storage::kContactValue).empty(),
                       !BytesOf(tried, path, storage::kPhoneTypeValue).empty(), write});
    if (isDone) {
      return;
    }
  }
}

inline std::vector<HalfWritten> HalfWrittenEntries(std::int32_t oid = 17) {
  using platform::RegistryType;
  const std::u16string number = language::Decimal(oid);
  std::vector<HalfWritten> entries;
  AddLastCalls(oid, entries);
  const auto add = [&](const std::string& what, std::u16string_view odd, RegistryType type,
                       const std::vector<std::byte>& bytes) {
    const bool isContact = odd == storage::kContactValue;
    entries.push_back(
        {what, true, !isContact, isContact,
         [=](platform::Registry& registry, std::u16string_view tag) {
           const std::u16string path = storage::EntryPath(tag);
           const auto other = isContact ? storage::kPhoneTypeValue : storage::kContactValue;
           static_cast<void>(Put(registry, path, other, RegistryType::kString,
                                 storage::ToTagValue(isContact ? u"Mobile" : number)));
           static_cast<void>(Put(registry, path, odd, type, bytes));
         }});
  };
  for (const std::u16string_view value : {storage::kContactValue, storage::kPhoneTypeValue}) {
    const std::string of = value == storage::kContactValue ? "the contact" : "the kind";
    const auto bytes = storage::ToTagValue(value == storage::kContactValue ? number : u"Mobile");
    // A list of texts and a number of 64 bits have 7 and 11.
    for (const std::uint32_t type : {0U, 3U, 4U, 7U, 11U, 0xFFFFFFFFU}) {
      add(of + " has the type " + std::to_string(type), value, static_cast<RegistryType>(type),
          bytes);
    }
    add(of + " has no bytes", value, RegistryType::kString, {});
    add(of + " has half a letter", value, RegistryType::kString, {bytes[0]});
    add(of + " has zeros alone", value, RegistryType::kString,
        std::vector<std::byte>(storage::kTagValueBytes));
  }
  return entries;
}

}  // namespace support
