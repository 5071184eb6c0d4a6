#include "backends/vcard/desktop_source.h"

#include <algorithm>
#include <compare>
#include <cstdint>
#include <exception>
#include <utility>

#include "backends/text/collation.h"
#include "backends/text/utf.h"
#include "backends/vcard/card_reader.h"

namespace vcard {
namespace {

constexpr std::size_t kNoLimit = static_cast<std::size_t>(-1);

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

Book ToBook(const platform::DesktopBook& read, RemarkList& remarks) {
  Book book;
  book.name = u"eds:" + text::FromUtf8(read.uid);
  book.isComplete = read.isSettled;
  CardReader reader(book.name, kNoLimit, book, remarks);
  reader.Feed(read.cards);
  reader.Finish();
  // An empty book may be one that was lost and made again.
  book.isComplete = book.isComplete && !book.contacts.empty();
  SortForReading(book.contacts);
  return book;
}

}  // namespace

DesktopSource::DesktopSource(Load load, std::chrono::milliseconds limit)
    : m_load(std::move(load)), m_limit(limit) {}

ReadBooks DesktopSource::Read(RemarkList& remarks) {
  const Library read = m_load();
  if (!read) {
    return platform::Failure(
        platform::BooksError{platform::BooksError::Kind::kNoAnswer, read.error()});
  }
  platform::DesktopBooks desktop;
  (*read)(static_cast<std::uint32_t>(m_limit.count()), desktop);
  if (!desktop) {
    return platform::Failure(std::move(desktop.error()));
  }
  std::vector<Book> books;
  for (const platform::DesktopBook& book : *desktop) {
    books.push_back(ToBook(book, remarks));
  }
  remarks.ForgetLines();
  return books;
}

ReadBooks BackgroundSource::Read(RemarkList& remarks) {
  ReadBooks read = platform::Failure(platform::BooksError());
  const auto body = [&] { read = ReadInner(remarks); };
  if (const auto thread = m_threads.Start(body, platform::ThreadStart::kRunning)) {
    // Should the wait fail, the end of the handle still waits for the thread.
    static_cast<void>((*thread)->Wait(platform::kNoLimit));
  } else {
    body();
  }
  return read;
}

ReadBooks BackgroundSource::ReadInner(RemarkList& remarks) {
  // A thread that lets an exception out ends the process.
  try {
    return m_inner.Read(remarks);
  } catch (const std::exception& error) {
    remarks.Clear();
    return platform::Failure(platform::BooksError{.reason = error.what()});
  }
}

}  // namespace vcard
