#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "backends/vcard/contact_keys.h"

namespace vcard {

/// What is known of one contact of an address book since it was last read there, or only its number
/// and `former`.
struct Person {
  std::int32_t oid = 0;
  Digest uid = kNoDigest;  ///< kNoDigest if the contact never had one.
  Digest name = kNoDigest;
  Digest content = kNoDigest;
  bool isPresent = false;     ///< The book held the contact when it was last read to its end.
  Digest former = kNoDigest;  ///< Key of an entry of 20 bytes; of nothing else then.
};

/// Which contact each card is.
struct Matches {
  static constexpr std::size_t kNobody = static_cast<std::size_t>(-1);

  std::vector<std::size_t> people;  ///< For each card an index of a person, or kNobody.
  /// How many cards and people were looked at, for tests: it grows as their numbers do.
  std::size_t looks = 0;
};

/// Recognises the contacts of a book that was read again.
///
/// A tag knows its contact by a number, and a book gives none. People change their numbers, names
/// and address books, and some books give no UIDs either, or give one UID to two cards. So a card
/// is compared with everybody who is known, by the surest sign first. A wrong match would call the
/// wrong person, and a missed one would lose a tag. If only the name fits, and fits two people, the
/// card is nobody known.
///
/// No person is given to two cards. A card is
///
/// 1. the contact of its UID. If the UID is on several cards, or several contacts had it, it is the
///    one of that UID and the same full name, and of several such ones that of the same content;
/// 2. else the contact of the same content;
/// 3. else the contact of the same full name, if no other card of the book has that name, and only
///    one contact has it: of those that the book held last time, or, if none of them has it, of
///    those of earlier times;
/// 4. else nobody known.
///
/// In 2 and 3 a card with a UID is no contact that had another UID. `former` holds keys for each
/// card if some person has a former one, which is looked at between 1 and 2; else it is empty.
[[nodiscard]] Matches MatchCards(std::span<const CardKeys> cards,
                                 std::span<const FormerKeys> former,
                                 std::span<const Person> people);

}  // namespace vcard
