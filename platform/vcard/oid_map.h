#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/registry.h"
#include "platform/vcard/digest.h"

namespace vcard {

/// Contacts of one address book: the book's lasting name, and the lasting identifier of each.
struct SourceContacts {
  std::u16string source;
  std::vector<std::string> uids;
};

/// The numbers under which tags remember contacts, each given to one contact of one address book
/// for good: numbers of contacts and books that are gone stay taken.
///
/// Each address book has a subkey of its own with its name and, as binary values named "0", "1" and
/// so on, entries of 20 bytes: 16 of a digest of the contact's identifier, 4 of the number. So
/// reading thousands of contacts takes one query, and a log-on that meets no new contact writes
/// nothing.
class OidMap {
 public:
  static constexpr std::size_t kEntriesPerValue = 16384;

  explicit OidMap(platform::Registry& registry) : m_registry(registry) {}

  /// Reads what was given so far. False where it cannot be told, also where what is stored makes no
  /// sense.
  [[nodiscard]] bool Load();

  /// Stores the number of each contact, in the same order, in `oids`; contacts that have none are
  /// given one, all in one durable change. False where that failed: the map is to be loaded again
  /// then. The same identifier twice in a book gets the same number twice.
  [[nodiscard]] bool Assign(std::span<const SourceContacts> contacts,
                            std::vector<std::vector<std::int32_t>>& oids);

  /// As Assign, but new numbers are known to this map alone and nothing is written: they are those
  /// that Assign would give.
  void AssignInMemory(std::span<const SourceContacts> contacts,
                      std::vector<std::vector<std::int32_t>>& oids);

  /// Whether the number was given to a contact of this book.
  [[nodiscard]] bool Belongs(std::int32_t oid, std::u16string_view source) const;

 private:
  struct Book {
    std::u16string keyPath;
    std::unordered_map<Digest, std::int32_t, DigestHash> oids;
    std::unordered_set<std::int32_t> given;
    std::size_t valueCount = 0;
    std::vector<std::byte> lastValue;
  };

  [[nodiscard]] bool LoadBook(const std::u16string& keyName);
  [[nodiscard]] bool LoadEntries(std::span<const std::byte> entries, Book& book);
  [[nodiscard]] bool IsComplete(std::span<const SourceContacts> contacts) const;
  [[nodiscard]] bool GiveMissing(std::span<const SourceContacts> contacts);
  [[nodiscard]] bool GiveMissing(const SourceContacts& contacts);
  /// Gives a number to each contact of the book that has none; their entries as they are stored.
  [[nodiscard]] std::vector<std::byte> GiveInMemory(const SourceContacts& contacts);
  [[nodiscard]] std::vector<std::vector<std::int32_t>> NumbersOf(
      std::span<const SourceContacts> contacts) const;
  [[nodiscard]] bool MakeBook(const std::u16string& source);
  [[nodiscard]] bool Store(Book& book, std::span<const std::byte> entries);
  [[nodiscard]] std::int32_t ChooseOid(std::u16string_view source, const std::string& uid) const;

  platform::Registry& m_registry;
  std::unordered_map<std::u16string, Book> m_books;
  std::unordered_set<std::int32_t> m_taken;
  std::uint32_t m_lastKeyNumber = 0;
};

}  // namespace vcard
