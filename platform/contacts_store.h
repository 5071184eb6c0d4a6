#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace platform {

/// The kinds of telephone number that the system knows, with their stored codes. A contact has one
/// number of each kind.
enum class PhoneKind : std::int8_t {
  kCar = 0,
  kRadio = 1,
  kMobile = 2,
  kAssistant = 3,
  kBusiness = 4,
  kBusiness2 = 5,
  kBusinessFax = 6,
  kHome = 7,
  kHome2 = 8,
  kHomeFax = 9,
};

/// How many kinds there are. Every table that is indexed by a kind has this many entries.
inline constexpr std::size_t kPhoneKindCount = static_cast<std::size_t>(PhoneKind::kHomeFax) + 1;

/// One contact. Each getter can fail by itself; it returns false then and leaves `text` alone. A
/// part that the contact lacks is an empty text.
class Contact {
 public:
  Contact() = default;
  Contact(const Contact&) = delete;
  Contact& operator=(const Contact&) = delete;
  virtual ~Contact() = default;

  [[nodiscard]] virtual bool GetFirstName(std::u16string& text) = 0;
  [[nodiscard]] virtual bool GetMiddleName(std::u16string& text) = 0;
  [[nodiscard]] virtual bool GetLastName(std::u16string& text) = 0;
  [[nodiscard]] virtual bool GetCompanyName(std::u16string& text) = 0;
  [[nodiscard]] virtual bool GetNumber(PhoneKind kind, std::u16string& text) = 0;

  /// The stable identifier under which tags remember the contact; 0 is never one.
  [[nodiscard]] virtual bool GetOid(std::int32_t& oid) = 0;
};

struct ContactItem {
  bool ok = false;                   ///< False: the collection failed to give the item.
  std::unique_ptr<Contact> contact;  ///< May be null even where `ok` is true.
};

enum class ContactLookup : std::uint8_t {
  kFound,
  kAbsent,  ///< The source of this oid was read to its end and does not hold it any more.
  kFailed,  ///< It cannot be told whether the contact exists.
};

/// The user's contacts. Used by one thread.
class ContactsStore {
 public:
  ContactsStore() = default;
  ContactsStore(const ContactsStore&) = delete;
  ContactsStore& operator=(const ContactsStore&) = delete;
  virtual ~ContactsStore() = default;

  /// Makes the service of the machine ready; false where the machine has none.
  [[nodiscard]] virtual bool Initialize() = 0;

  /// Makes the connection to the contacts, without reading them. What fails here may work a moment
  /// later: another process may have held what is needed.
  [[nodiscard]] virtual bool Connect() = 0;

  /// Reads the source. False where it does not answer or cannot be read to its end, and where
  /// contacts that must not be lost are in another source than this one; nobody can then be taken
  /// for absent.
  [[nodiscard]] virtual bool Logon() = 0;

  /// Number of contacts; 0 where nobody is logged on.
  [[nodiscard]] virtual std::int32_t GetCount() = 0;

  /// Contact by 1-based index, in an order that is the same until the log-off.
  [[nodiscard]] virtual ContactItem GetItem(std::int32_t index) = 0;

  /// Contact by its identifier; `contact` is set only with kFound. kFailed where nobody is logged
  /// on.
  [[nodiscard]] virtual ContactLookup GetItemFromOid(std::int32_t oid,
                                                     std::unique_ptr<Contact>& contact) = 0;

  /// Allowed at any time. Contacts that were handed out stay readable.
  virtual void Logoff() = 0;
};

}  // namespace platform
