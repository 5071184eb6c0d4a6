#include "platform/vcard/desktop_source.h"

#include <algorithm>
#include <compare>
#include <cstdint>
#include <utility>

#include "platform/text/collation.h"
#include "platform/text/utf.h"
#include "platform/vcard/card_mapping.h"
#include "platform/vcard/vcard_splitter.h"

namespace vcard {
namespace {

void SortForReading(std::vector<ContactData>& contacts) {
  const auto nameOf = [](const ContactData& contact) {
    return contact.lastName + u' ' + contact.firstName + u' ' + contact.middleName + u' ' +
           contact.companyName;
  };
  std::vector<std::pair<std::u16string, ContactData>> named;
  named.reserve(contacts.size());
  for (ContactData& contact : contacts) {
    std::u16string name = nameOf(contact);
    name.erase(0, name.find_first_not_of(u' '));
    named.emplace_back(std::move(name), std::move(contact));
  }
  std::sort(named.begin(), named.end(), [](const auto& a, const auto& b) {
    const auto order = text::CompareForDisplay(a.first, b.first);
    return std::is_neq(order) ? std::is_lt(order) : a.second.uid < b.second.uid;
  });
  std::transform(named.begin(), named.end(), contacts.begin(),
                 [](auto& entry) { return std::move(entry.second); });
}

Book ToBook(const platform::DesktopBook& read) {
  Book book;
  book.name = u"eds:" + text::FromUtf8(read.uid);
  VcardSplitter splitter(
      [&book](const Card& card) { book.contacts.push_back(ToContactData(card)); });
  splitter.Feed(read.cards);
  splitter.Finish();
  SortForReading(book.contacts);
  // An empty book may be one that was lost and made anew.
  book.isComplete = read.isSettled && !splitter.IsDamaged() && !book.contacts.empty();
  return book;
}

}  // namespace

DesktopSource::DesktopSource(Load load, std::chrono::milliseconds limit)
    : m_load(std::move(load)), m_limit(limit) {}

ReadResult DesktopSource::Read(std::vector<Book>& books) {
  books.clear();
  Library library = m_load();
  m_reason = std::move(library.reason);
  if (library.read == nullptr) {
    return ReadResult::kNoAnswer;
  }
  std::vector<platform::DesktopBook> read;
  const ReadResult result =
      library.read(static_cast<std::uint32_t>(m_limit.count()), read, m_reason);
  std::transform(read.begin(), read.end(), std::back_inserter(books), ToBook);
  return result;
}

}  // namespace vcard
