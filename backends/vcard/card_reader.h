#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "backends/vcard/contact_source.h"
#include "backends/vcard/content_line.h"
#include "backends/vcard/vcard_splitter.h"

namespace vcard {

/// Returns the contact that a card describes. Whatever the card holds, it is some contact.
[[nodiscard]] ContactData ToContactData(const Card& card);

/// Returns ContactData::formerContent of a card that reads as `contact` now.
[[nodiscard]] std::string FormerContentOf(const Card& card, const ContactData& contact);

/// Adds the contacts of a stream of vCards to a book, and a remark for each thing in it that is
/// passed over: damage, numbers without a place. A damaged stream leaves the book incomplete.
class CardReader {
 public:
  /// `place` stands in the remarks. Takes no more than one contact above `maxContacts`. The book
  /// and the list outlive this.
  CardReader(std::u16string place, std::size_t maxContacts, Book& book, RemarkList& remarks);
  CardReader(const CardReader&) = delete;
  CardReader& operator=(const CardReader&) = delete;

  /// The stream may be cut anywhere between two calls.
  void Feed(std::string_view bytes) { m_splitter.Feed(bytes); }

  /// Call this once, at the end of the stream.
  void Finish();

 private:
  void OnCard(const Card& card);

  const std::u16string m_place;
  const std::size_t m_maxContacts;
  Book& m_book;
  RemarkList& m_remarks;
  VcardSplitter m_splitter;
};

}  // namespace vcard
