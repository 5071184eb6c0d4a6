#include "backends/vcard/contact_source.h"

#include <algorithm>
#include <compare>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <system_error>
#include <utility>

#include "backends/text/collation.h"
#include "backends/text/host_path.h"
#include "backends/text/registry_text.h"
#include "backends/text/utf.h"
#include "backends/vcard/card_reader.h"

namespace vcard {

using platform::Failure;
using platform::RegistryError;
using platform::Result;

namespace {

/// Text: "eds" or the path of a vCard file or folder.
constexpr std::u16string_view kChoiceValue = u"chosen";
constexpr std::u16string_view kDesktop = u"eds";

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

SourceChoice ParseChoice(std::u16string_view text) {
  if (text == kDesktop) {
    return {};
  }
  if (text.starts_with(u'\\')) {
    return {std::u16string(text)};
  }
  // Links are kept as they are: what one leads to may change with each synchronisation.
  const std::filesystem::path written = text::ToHostPath(text::ToHostName(text));
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(written, error);
  return {text::ToFileName(error ? written : absolute.lexically_normal())};
}

Result<std::optional<SourceChoice>, RegistryError> RecallChoice(platform::Registry& registry,
                                                                std::vector<Remark>& remarks) {
  const platform::OpenedKey opened = registry.OpenKey(kContactsKey);
  const auto value = opened ? (*opened)->Query(kChoiceValue) : Failure(opened.error());
  if (!value && value.error() == RegistryError::kNotFound) {
    return std::nullopt;
  }
  if (!value) {
    return Failure(value.error());
  }
  const std::optional<std::u16string> text = text::ToText(*value);
  if (!text || text->empty()) {
    remarks.push_back({std::u16string(kContactsKey), 0,
                       "the value \"chosen\" names no address book and is passed over"});
    return std::nullopt;
  }
  return *text == kDesktop ? SourceChoice{} : SourceChoice{*text};
}

Result<void, RegistryError> RememberChoice(platform::Registry& registry,
                                           const SourceChoice& choice) {
  std::vector<Remark> ignored;  // What is odd gives way to the user's own choice.
  if (const auto remembered = RecallChoice(registry, ignored);
      remembered && *remembered == choice) {
    return {};
  }
  const platform::OpenedKey opened = registry.CreateKey(kContactsKey);
  if (!opened) {
    return Failure(opened.error());
  }
  return text::SetText(**opened, kChoiceValue, choice.path.empty() ? kDesktop : choice.path);
}

DesktopSource::DesktopSource(Load load, std::chrono::milliseconds limit)
    : m_load(std::move(load)), m_limit(limit) {}

ReadBooks DesktopSource::Read(RemarkList& remarks) {
  const Library read = m_load();
  if (!read) {
    return Failure(platform::BooksError{platform::BooksError::Kind::kNoAnswer, read.error()});
  }
  platform::DesktopBooks desktop;
  (*read)(static_cast<std::uint32_t>(m_limit.count()), desktop);
  if (!desktop) {
    return Failure(std::move(desktop.error()));
  }
  std::vector<Book> books;
  for (const platform::DesktopBook& book : *desktop) {
    books.push_back(ToBook(book, remarks));
  }
  remarks.ForgetLines();
  return books;
}

ReadBooks BackgroundSource::Read(RemarkList& remarks) {
  ReadBooks read = Failure(platform::BooksError());
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
    return Failure(platform::BooksError{.reason = error.what()});
  }
}

}  // namespace vcard
