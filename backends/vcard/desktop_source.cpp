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

/// Returns the contacts in the order of their names.
ContactPool SortForReading(const ContactPool& contacts) {
  struct Entry {
    std::u16string name;
    std::string uid;
    std::size_t index;
  };
  std::vector<Entry> entries;
  entries.reserve(contacts.size());
  for (const ContactData contact : contacts) {
    std::u16string name = contact.lastName + u' ' + contact.firstName + u' ' + contact.middleName +
                          u' ' + contact.companyName;
    name.erase(0, name.find_first_not_of(u' '));
    entries.push_back({std::move(name), contact.uid, entries.size()});
  }
  std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
    const auto order = text::CompareForDisplay(a.name, b.name);
    return std::is_neq(order) ? std::is_lt(order) : a.uid < b.uid;
  });
  ContactPool sorted;
  for (const Entry& entry : entries) {
    sorted.Add(contacts, entry.index);
  }
  return sorted;
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
  book.contacts = SortForReading(book.contacts);
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
