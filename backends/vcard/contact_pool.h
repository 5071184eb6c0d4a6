#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "backends/vcard/telephone_kinds.h"

namespace vcard {

/// What the system knows of one contact.
struct ContactData {
  std::string uid;  ///< As the address book gives it; empty if it gives none.
  std::u16string firstName;
  std::u16string middleName;
  std::u16string lastName;
  std::u16string companyName;
  Numbers numbers;

  struct UnplacedNumber {
    std::u16string number;
    std::size_t line = 0;  ///< Of the stream; 0 if not known.
  };
  std::vector<UnplacedNumber> unplaced;  ///< Numbers of telephones for which there is no kind left.

  /// What ContentOf gives for the names and numbers that the contact had under the former rules.
  /// Empty if that is the same as now. Contacts of old entries are found by it.
  std::string formerContent;
};

/// Stands for a text of any length; no two texts that occur share one. The first half of the
/// SHA-256 of its bytes: what is stored stays good.
using Digest = std::array<std::byte, 16>;

struct DigestHash {
  std::size_t operator()(const Digest& digest) const {
    std::size_t hash = 0;
    std::memcpy(&hash, digest.data(), sizeof hash);
    return hash;
  }
};

/// No text has it.
inline constexpr Digest kNoDigest{};

/// What a contact is recognised by.
struct ContactSigns {
  Digest uid = kNoDigest;      ///< kNoDigest if the card has none.
  Digest name = kNoDigest;     ///< Of the full name; kNoDigest if there is none.
  Digest content = kNoDigest;  ///< Of names, company and numbers.

  friend bool operator==(const ContactSigns&, const ContactSigns&) = default;
};

/// Contacts in the order in which they were added, each in one run of bytes: what it is recognised
/// by, and its texts. A hundred thousand of them take a third of the memory that as many
/// ContactData do, and nobody works out their signs again. The runs mean something on this machine
/// alone.
///
/// What is read is made again at each call. Numbers without a place are not kept.
class ContactPool {
 public:
  ContactPool() = default;
  // NOLINTNEXTLINE(google-explicit-constructor): contacts are contacts, in whatever form.
  ContactPool(const std::vector<ContactData>& contacts);
  ContactPool(std::initializer_list<ContactData> contacts)
      : ContactPool(std::vector<ContactData>(contacts)) {}

  /// Returns a pool of `count` contacts, whose bytes, as GetBytes gave them, are all of `bytes`
  /// from `start` on. Returns nothing if they are something else.
  [[nodiscard]] static std::optional<ContactPool> FromBytes(std::vector<std::byte> bytes,
                                                            std::size_t start, std::size_t count);

  void Add(const ContactData& contact);
  /// Adds a contact of another pool, as it is there.
  void Add(const ContactPool& other, std::size_t index);

  [[nodiscard]] std::size_t size() const { return m_places.size(); }
  [[nodiscard]] bool empty() const { return m_places.empty(); }

  // `index` is below size().
  [[nodiscard]] ContactData operator[](std::size_t index) const;
  [[nodiscard]] ContactSigns GetSigns(std::size_t index) const;

  /// For reading one contact after the other.
  class Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = ContactData;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = ContactData;

    Iterator(const ContactPool& pool, std::size_t index) : m_pool(&pool), m_index(index) {}
    [[nodiscard]] ContactData operator*() const { return (*m_pool)[m_index]; }
    Iterator& operator++() {
      ++m_index;
      return *this;
    }
    friend bool operator==(const Iterator&, const Iterator&) = default;

   private:
    const ContactPool* m_pool;
    std::size_t m_index;
  };
  [[nodiscard]] Iterator begin() const { return {*this, 0}; }
  [[nodiscard]] Iterator end() const { return {*this, size()}; }

  /// Returns the bytes of all contacts, in pieces.
  [[nodiscard]] std::vector<std::span<const std::byte>> GetBytes() const {
    std::vector<std::span<const std::byte>> pieces(m_blocks.begin(), m_blocks.end());
    if (!pieces.empty()) {
      pieces.front() = pieces.front().subspan(m_start);
    }
    return pieces;
  }

 private:
  struct Place {
    std::uint32_t block;
    std::uint32_t offset;
  };

  [[nodiscard]] std::span<const std::byte> From(const Place& place) const;
  /// Returns the room for another contact of so many bytes.
  [[nodiscard]] std::byte* AddRun(std::size_t size);

  std::vector<std::vector<std::byte>> m_blocks;
  std::size_t m_start = 0;  ///< Of the contacts in the first block.
  std::vector<Place> m_places;
};

}  // namespace vcard
