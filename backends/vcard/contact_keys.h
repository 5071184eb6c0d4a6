#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "backends/vcard/contact_source.h"

namespace vcard {

[[nodiscard]] Digest ComputeDigest(std::string_view text);

/// What a contact of one address book is recognised by.
struct CardKeys : ContactSigns {
  bool isUidUnique = false;   ///< No other card of the book has the UID,
  bool isNameUnique = false;  ///< or the full name.
};

/// Returns first, middle and last name, joined by blanks. Returns the company if the contact has
/// none of them.
[[nodiscard]] std::u16string FullNameOf(const ContactData& contact);

/// Returns names, company and numbers, as one text.
[[nodiscard]] std::string ContentOf(const ContactData& contact);

[[nodiscard]] ContactSigns SignsOf(const ContactData& contact);

/// Returns the keys of each contact of the book. The time grows as their number does, however alike
/// they are. The same holds for the next two functions.
[[nodiscard]] std::vector<CardKeys> KeysOf(const Book& book);

/// The keys by which a contact may be found in the entries of 20 bytes (see StoredBook). kNoDigest
/// stands for a key that it does not have.
struct FormerKeys {
  Digest content = kNoDigest;
  Digest uid = kNoDigest;
  /// Of a card that has a UID now: what it was filed under while it had none.
  Digest contentBeforeUid = kNoDigest;
};
[[nodiscard]] std::vector<FormerKeys> FormerKeysOf(const ContactPool& contacts);

/// Returns a text for each contact, from which its number is made. It depends on the contact alone
/// and differs from those of the others.
[[nodiscard]] std::vector<std::string> SeedsOf(const ContactPool& contacts);

}  // namespace vcard
