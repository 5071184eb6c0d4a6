#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "backends/posix/posix_file_system.h"
#include "backends/sqlite/sqlite_registry.h"
#include "backends/vcard/address_books.h"
#include "storage/tag_store.h"
#include "tests/support/temp_folder.h"

namespace benchmarks {

inline constexpr int kContacts = 1000;
inline constexpr std::uint32_t kTags = 100;

/// Returns the vCard of a person with what address books usually hold; three numbers.
[[nodiscard]] std::string Person(int number);

/// A root folder with contacts next to it, a thousand unless more are wanted, and a tag without
/// files for every tenth of the first thousand. Ends the program if that cannot be made.
class FullDevice {
 public:
  explicit FullDevice(int contacts = kContacts);

  /// Gives each tag a recording and its template, of the recordings in a folder in turn.
  void Record(const std::filesystem::path& samples);

  [[nodiscard]] std::string GetRoot() const { return m_folder.Path().string(); }
  /// Returns all contacts, as vCards.
  [[nodiscard]] const std::string& GetFile() const { return m_file; }

  /// Returns the contacts, logged on to. If `cache` is not null, what was read is kept there.
  [[nodiscard]] std::unique_ptr<vcard::AddressBooks> Open(platform::FileSystem* cache = nullptr);

  /// Reads what the tag list shows for every tag; the number of tags that have a contact.
  [[nodiscard]] std::size_t ReadTags(platform::ContactsStore& contacts) const;

 private:
  support::TempFolder m_folder;
  std::string m_file;
  posix::PosixFileSystem m_files;
  sqlite::SqliteRegistry m_registry;
  storage::TagStore m_store;
};

}  // namespace benchmarks
