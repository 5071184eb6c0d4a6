#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/result.h"

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

enum class ContactsError : std::uint8_t {
  /// The contact does not exist any more: its source was read to its end and does not hold it.
  /// Only a look-up by identifier fails with this.
  kAbsent,
  kFailed,  ///< Any other failure. After a look-up nobody knows whether the contact exists.
};

using ContactText = Result<std::u16string, ContactsError>;

/// One contact. Each getter can fail by itself. A part that the contact lacks is an empty text.
class Contact {
 public:
  Contact() = default;
  Contact(const Contact&) = delete;
  Contact& operator=(const Contact&) = delete;
  virtual ~Contact() = default;

  [[nodiscard]] virtual ContactText GetFirstName() = 0;
  [[nodiscard]] virtual ContactText GetMiddleName() = 0;
  [[nodiscard]] virtual ContactText GetLastName() = 0;
  [[nodiscard]] virtual ContactText GetCompanyName() = 0;
  [[nodiscard]] virtual ContactText GetNumber(PhoneKind kind) = 0;

  /// Returns the stable identifier under which tags remember the contact. It is never 0.
  [[nodiscard]] virtual Result<std::int32_t, ContactsError> GetOid() = 0;
};

using FoundContact = Result<std::unique_ptr<Contact>, ContactsError>;

/// The user's contacts. Used by one thread.
class ContactsStore {
 public:
  ContactsStore() = default;
  ContactsStore(const ContactsStore&) = delete;
  ContactsStore& operator=(const ContactsStore&) = delete;
  virtual ~ContactsStore() = default;

  /// Makes the service of the machine ready. Fails if the machine has none.
  [[nodiscard]] virtual Result<void, ContactsError> Initialize() = 0;

  /// Makes the connection to the contacts, without reading them. What fails here may work a moment
  /// later: another process may have held what is needed.
  [[nodiscard]] virtual Result<void, ContactsError> Connect() = 0;

  /// Reads the source. Fails if it does not answer or cannot be read to its end. Fails too if
  /// contacts that must not be lost are in another source than this one: otherwise they would count
  /// as absent.
  [[nodiscard]] virtual Result<void, ContactsError> Logon() = 0;

  /// Returns the number of contacts. Returns 0 if nobody is logged on.
  [[nodiscard]] virtual std::int32_t GetCount() = 0;

  /// Returns the contact with this index, which counts from 1. The order stays the same until the
  /// log-off. A store may succeed and give null all the same; then there is no such contact.
  [[nodiscard]] virtual FoundContact GetItem(std::int32_t index) = 0;

  /// Returns the contact with this identifier, never null. Fails with kFailed if nobody is logged
  /// on.
  [[nodiscard]] virtual FoundContact GetItemFromOid(std::int32_t oid) = 0;

  /// Allowed at any time. Contacts that were handed out stay readable.
  virtual void Logoff() = 0;
};

}  // namespace platform
