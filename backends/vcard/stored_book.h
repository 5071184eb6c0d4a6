#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "backends/vcard/contact_matching.h"
#include "backends/vcard/indexes.h"
#include "platform/registry.h"

namespace vcard {

/// What the registry holds of the contacts of one address book, in binary values of its key:
///
/// "people0", "people1", ...: entries of 56 bytes, one for each contact: its number; 1 if the book
/// held the contact when it was last read to its end, else 0 (both 32 bits, little-endian); then
/// the digests of UID, full name and content, zeros for one that it never had. If a number occurs
/// again the later entry counts.
///
/// "0", "1", ...: entries of 20 bytes, a former key (see FormerKeys) and a number. None is written
/// any more. They serve to find contacts that were last seen before entries of 56 bytes were
/// written.
///
/// What makes no sense as an entry is passed over, and its value is not written again.
class StoredBook {
 public:
  static constexpr std::size_t kPeoplePerValue = 4096;

  /// Called with the name of each value that holds anything but entries, and with what it holds.
  using Sink = std::function<void(const std::u16string& value, const std::string& what)>;

  /// Adds the numbers of the book to `taken`. Passes over an entry if its number is there already.
  /// Fails if the registry cannot be asked.
  [[nodiscard]] platform::Result<void, platform::RegistryError> Load(platform::RegistryKey& key,
                                                                     const Sink& sink,
                                                                     OidIndex& taken);

  /// Writes each value in which something has changed since SetSaved.
  [[nodiscard]] platform::Result<void, platform::RegistryError> Save(
      platform::RegistryKey& key) const;
  void SetSaved();

  [[nodiscard]] std::span<const Person> GetPeople() const { return m_people; }
  [[nodiscard]] bool HasFormerKeys() const { return m_hasFormerKeys; }
  [[nodiscard]] bool HasChanged() const;
  [[nodiscard]] bool Holds(std::int32_t oid) const { return m_indexes.Holds(oid); }

  void Add(const Person& person);
  /// Does nothing if `person` is what is known already.
  void Update(std::size_t index, const Person& person);

 private:
  struct Value {
    std::vector<std::size_t> people;  ///< Indexes.
    bool isOdd = false;               ///< Holds not only entries, and is left as it is.
    bool hasChanged = false;
  };
  static constexpr std::size_t kNoValue = static_cast<std::size_t>(-1);

  using Series =
      std::function<void(const std::u16string& name, const platform::RegistryValue& value)>;
  [[nodiscard]] static platform::Result<void, platform::RegistryError> ForEachValue(
      platform::RegistryKey& key, const std::u16string& prefix, const Series& each);
  void LoadPeople(std::span<const std::byte> bytes, OidIndex& taken, std::size_t& odd);
  void LoadFormer(std::span<const std::byte> bytes, OidIndex& taken, std::size_t& odd);
  void PutIntoAValue(std::size_t index);

  std::vector<Person> m_people;
  OidIndex m_indexes;
  std::vector<std::size_t> m_valueOf;  ///< For each person.
  std::vector<Value> m_values;         ///< "people0", "people1", ...
  bool m_hasFormerKeys = false;
};

}  // namespace vcard
