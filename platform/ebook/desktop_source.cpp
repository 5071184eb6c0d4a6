#include "platform/ebook/desktop_source.h"

#include <libebook/libebook.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/ebook/card_mapping.h"
#include "platform/ebook/deadline.h"
#include "platform/ebook/glib_pointers.h"
#include "platform/text/collation.h"
#include "platform/text/utf.h"

namespace ebook {
namespace {

/// The library waits for a book to be online unless it is given this number.
constexpr auto kDoNotWait = static_cast<std::uint32_t>(-1);
constexpr std::string_view kLocalBackend = "local";

using Text = std::unique_ptr<char, decltype(&g_free)>;

ObjectList ListEnabledBooks(ESourceRegistry& registry) {
  ObjectList sources(e_source_registry_list_enabled(&registry, E_SOURCE_EXTENSION_ADDRESS_BOOK));
  const auto byUid = [](const void* a, const void* b) {
    return g_strcmp0(e_source_get_uid(static_cast<ESource*>(const_cast<void*>(a))),
                     e_source_get_uid(static_cast<ESource*>(const_cast<void*>(b))));
  };
  return ObjectList(g_list_sort(sources.release(), byUid));
}

bool IsLocal(ESource& source) {
  void* extension = e_source_get_extension(&source, E_SOURCE_EXTENSION_ADDRESS_BOOK);
  const Text name(e_source_backend_dup_backend_name(static_cast<ESourceBackend*>(extension)),
                  &g_free);
  return name && name.get() == kLocalBackend;
}

/// Whether a contact that the book does not hold is gone. What stands in for a book of the network
/// may still be filling up, and an empty book may be one that was lost and made anew.
bool IsComplete(ESource& source, const Book& book) {
  return !book.contacts.empty() && (IsLocal(source) || e_source_get_connection_status(&source) ==
                                                           E_SOURCE_CONNECTION_STATUS_CONNECTED);
}

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
    return order != 0 ? order < 0 : a.second.uid < b.second.uid;
  });
  std::transform(named.begin(), named.end(), contacts.begin(),
                 [](auto& entry) { return std::move(entry.second); });
}

bool ReadBook(ESource& source, GCancellable* cancellable, Book& book) {
  const ObjectPointer<EClient> client(
      e_book_client_connect_sync(&source, kDoNotWait, cancellable, nullptr));
  if (!client) {
    return false;
  }
  const std::unique_ptr<EBookQuery, decltype(&e_book_query_unref)> all(
      e_book_query_any_field_contains(""), &e_book_query_unref);
  const Text query(e_book_query_to_string(all.get()), &g_free);
  GSList* found = nullptr;
  void* const opened = client.get();
  const bool isRead =
      e_book_client_get_contacts_sync(static_cast<EBookClient*>(opened), query.get(), &found,
                                      cancellable, nullptr) != FALSE;
  const ObjectSlist contacts(found);
  if (!isRead) {
    return false;
  }
  book.name = u"eds:" + text::FromUtf8(e_source_get_uid(&source));
  for (const GSList* node = contacts.get(); node != nullptr; node = node->next) {
    book.contacts.push_back(ToContactData(*static_cast<EVCard*>(node->data)));
  }
  SortForReading(book.contacts);
  book.isComplete = IsComplete(source, book);
  return true;
}

}  // namespace

ReadResult DesktopSource::Read(std::vector<Book>& books) {
  books.clear();
  const Deadline deadline(m_limit);
  GCancellable* const cancellable = deadline.GetCancellable();
  const ObjectPointer<ESourceRegistry> registry(e_source_registry_new_sync(cancellable, nullptr));
  if (!registry) {
    return ReadResult::kNoAnswer;
  }
  const ObjectList sources = ListEnabledBooks(*registry);
  for (const GList* node = sources.get(); node != nullptr; node = node->next) {
    Book book;
    if (!ReadBook(*static_cast<ESource*>(node->data), cancellable, book)) {
      books.clear();
      return ReadResult::kUnreadable;
    }
    books.push_back(std::move(book));
  }
  return ReadResult::kRead;
}

}  // namespace ebook
