#include "backends/vcard/card_reader.h"

#include <utility>

#include "backends/text/utf.h"
#include "backends/vcard/card_mapping.h"
#include "backends/vcard/contact_keys.h"

namespace vcard {

CardReader::CardReader(std::u16string place, std::size_t maxContacts, Book& book,
                       RemarkList& remarks)
    : m_place(std::move(place)),
      m_maxContacts(maxContacts),
      m_book(book),
      m_remarks(remarks),
      m_splitter([this](const Card& card) { OnCard(card); },
                 [this](const Card& card) {
                   if (m_book.torn.size() < m_maxContacts) {
                     m_book.torn.push_back(ToContactData(card));
                   }
                 },
                 [this](std::size_t line, std::string_view sentence) {
                   m_remarks.Add({m_place, line, std::string(sentence)});
                 }) {}

void CardReader::OnCard(const Card& card) {
  if (m_book.contacts.size() > m_maxContacts) {
    return;
  }
  ContactData contact = ToContactData(card);
  for (const ContactData::UnplacedNumber& unplaced : std::exchange(contact.unplaced, {})) {
    m_remarks.Add({m_place, unplaced.line,
                   "the number " + text::ToUtf8(unplaced.number) + " of " +
                       text::ToUtf8(FullNameOf(contact)) + " finds no kind that is free"});
  }
  m_book.contacts.push_back(std::move(contact));
}

void CardReader::Finish() {
  m_splitter.Finish();
  m_book.isComplete = m_book.isComplete && !m_splitter.IsDamaged();
}

}  // namespace vcard
