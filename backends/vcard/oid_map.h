#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "backends/vcard/contact_source.h"
#include "backends/vcard/indexes.h"
#include "backends/vcard/stored_book.h"
#include "platform/registry.h"

namespace vcard {

/// The numbers under which tags remember contacts, each given to one contact of one address book
/// for good: numbers of contacts and books that are gone stay taken.
///
/// Each address book has a subkey of its own, a decimal number, with its name ("source") and what
/// StoredBook says. So reading thousands of contacts takes a few queries, and a log-on that meets
/// nothing new writes nothing.
class OidMap {
 public:
  explicit OidMap(platform::Registry& registry) : m_registry(registry) {}

  /// Reads the numbers that were given so far. Fails if the registry cannot be asked. If other
  /// programs left something there that makes no sense, it is passed over, and GetRemarks names it.
  [[nodiscard]] platform::Result<void, platform::RegistryError> Load();

  [[nodiscard]] bool Knows(std::u16string_view source) const;

  /// Takes the book `former` for `now`, which is not known. So its contacts keep their numbers. The
  /// next Assign stores that, and Load forgets it.
  void Rename(std::u16string former, std::u16string now);

  /// Returns whether the latest Assign met a contact that is new, gone or changed, and did not
  /// store it.
  [[nodiscard]] bool HasNews() const;

  enum class Keeping : std::uint8_t {
    kStored,    ///< In one durable change.
    kInMemory,  ///< Nothing is written; new numbers are those that kStored would give.
  };

  /// The number of each contact, in the order of the contacts of a book; one list for each book.
  using Oids = std::vector<std::vector<std::int32_t>>;

  /// Returns the numbers of all contacts of `books`. Contacts that have none are given one. If the
  /// registry takes no writes, or is full, the new ones are known to this map alone, as with
  /// kInMemory, and a remark says so. If this fails otherwise, the map has to be loaded again.
  [[nodiscard]] platform::Result<Oids, platform::RegistryError> Assign(std::span<const Book> books,
                                                                       Keeping keeping);

  /// For each number that another store gave to a contact, the number of that contact here.
  using Numbers = std::unordered_map<std::int32_t, std::int32_t>;

  /// Recognises the contacts of another store's map, book by book: those of a book that is known
  /// here and for which `isUsed` returns true, and otherwise those of all such books. A contact
  /// that its book did not hold when it was last read to its end is nobody.
  [[nodiscard]] Numbers Recognise(const OidMap& other,
                                  const std::function<bool(std::u16string_view)>& isUsed) const;

  /// Takes over the books of another store's map, as one change. Contacts that are not known here
  /// keep their numbers, unless somebody here has them. Only a contact of which nothing but an
  /// entry of 20 bytes is known is left out. With kInMemory, nothing is written. If this fails, the
  /// map has to be loaded again.
  [[nodiscard]] platform::Result<Numbers, platform::RegistryError> Adopt(const OidMap& other,
                                                                         Keeping keeping);

  /// Returns whether no book is known.
  [[nodiscard]] bool IsEmpty() const { return m_books.empty(); }

  /// Returns whether the number was given to a contact of this book.
  [[nodiscard]] bool Belongs(std::int32_t oid, std::u16string_view source) const;

  /// Returns what was passed over since the latest Load.
  [[nodiscard]] const std::vector<Remark>& GetRemarks() const { return m_remarks; }

 private:
  struct KnownBook {
    std::u16string keyPath;  ///< Empty until the book has a key.
    StoredBook contacts;
  };

  struct Renaming {
    std::u16string former;
    std::u16string now;
  };

  [[nodiscard]] platform::Result<void, platform::RegistryError> LoadBooks();
  [[nodiscard]] platform::Result<void, platform::RegistryError> LoadBook(
      const std::u16string& keyName);
  [[nodiscard]] platform::Result<void, platform::RegistryError> Store(std::span<const Book> books);
  [[nodiscard]] platform::Result<void, platform::RegistryError> StoreBook(
      const std::u16string& name);
  [[nodiscard]] Numbers Adopt(const OidMap& other);
  /// Recognises the contacts of each book, and notes what is new of them.
  [[nodiscard]] Oids Recognise(std::span<const Book> books);
  [[nodiscard]] std::vector<std::int32_t> Recognise(const Book& book);
  void NoteUnkept(platform::RegistryError error);
  [[nodiscard]] std::int32_t ChooseOid(std::u16string_view source, const std::string& seed) const;

  platform::Registry& m_registry;
  std::unordered_map<std::u16string, KnownBook> m_books;
  std::optional<Renaming> m_renaming;  ///< That was not stored yet.
  OidIndex m_taken;
  std::vector<Remark> m_remarks;
  std::uint32_t m_lastKeyNumber = 0;
};

}  // namespace vcard
