#pragma once

#include <cstdint>

#include "language/texts.h"
#include "platform/ui.h"
#include "tags/phone_kind.h"

namespace tags {

/// What can go wrong on the way to a contact.
enum class ContactFailure : std::uint8_t {
  kServiceNotReady,
  kNotConnected,
  kNotLoggedOn,
  kItem,         ///< The collection did not give a contact.
  kNullContact,  ///< It gave none and called that a success.
  kLookup,       ///< A contact could not be found again by its identifier.
  kFirstName,
  kMiddleName,
  kLastName,
  kCompanyName,
  kNumber,
  kNumberTooLong,
};

/// Who was reading. Each has its own words for the same failure.
enum class ContactReader : std::uint8_t {
  kLoading,    ///< Filling the list of contacts.
  kSelection,  ///< Listing the numbers of the contact just chosen.
  kRecording,  ///< Naming the contact of a tag just recorded.
  kTagList,    ///< Naming the contacts of all tags.
};

/// One message to the user. Only kSelection and kRecording fail with kLookup, and kSelection never
/// reads the parts of a name.
struct ContactMessage {
  ContactFailure failure = ContactFailure::kItem;
  ContactReader reader = ContactReader::kLoading;
  PhoneKind kind = PhoneKind::kCar;  ///< Meant only with kNumber.

  friend bool operator==(const ContactMessage&, const ContactMessage&) = default;
};

/// Returns the box that shows the message.
[[nodiscard]] platform::MessageBox ToBox(const ContactMessage& message,
                                         const language::Texts& texts);

}  // namespace tags
