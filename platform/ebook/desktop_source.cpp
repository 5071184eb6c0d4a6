#include "platform/ebook/desktop_source.h"

#include <libebook/libebook.h>

#include <algorithm>
#include <atomic>
#include <compare>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include "platform/ebook/card_mapping.h"
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
    return std::is_neq(order) ? std::is_lt(order) : a.second.uid < b.second.uid;
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

/// One reading, shared by who waits for it and the thread that does it.
class Reading {
 public:
  /// For the thread.
  void Run() {
    std::vector<Book> books;
    const ReadResult result = ReadEnabledBooks(books);
    const std::lock_guard lock(m_mutex);
    m_books = std::move(books);
    m_result = result;
    m_isDone.notify_one();
  }

  /// Waits for the end of the reading, and gives up on it after `limit`.
  [[nodiscard]] ReadResult Wait(std::chrono::milliseconds limit, std::vector<Book>& books) {
    std::unique_lock lock(m_mutex);
    if (!m_isDone.wait_for(lock, limit, [this] { return m_result.has_value(); })) {
      g_cancellable_cancel(m_cancellable.get());
      return m_hasAnswer ? ReadResult::kUnreadable : ReadResult::kNoAnswer;
    }
    books = std::move(m_books);
    return *m_result;
  }

 private:
  [[nodiscard]] ReadResult ReadEnabledBooks(std::vector<Book>& books) {
    GCancellable* const cancellable = m_cancellable.get();
    const ObjectPointer<ESourceRegistry> registry(e_source_registry_new_sync(cancellable, nullptr));
    if (!registry) {
      return ReadResult::kNoAnswer;
    }
    m_hasAnswer = true;
    const ObjectList sources = ListEnabledBooks(*registry);
    for (const GList* node = sources.get(); node != nullptr; node = node->next) {
      Book book;
      if (g_cancellable_is_cancelled(cancellable) != FALSE ||
          !ReadBook(*static_cast<ESource*>(node->data), cancellable, book)) {
        books.clear();
        return ReadResult::kUnreadable;
      }
      books.push_back(std::move(book));
    }
    return ReadResult::kRead;
  }

  const ObjectPointer<GCancellable> m_cancellable{g_cancellable_new()};
  std::atomic<bool> m_hasAnswer = false;
  std::mutex m_mutex;
  std::condition_variable m_isDone;
  std::vector<Book> m_books;
  std::optional<ReadResult> m_result;
};

}  // namespace

ReadResult DesktopSource::Read(std::vector<Book>& books) {
  books.clear();
  const auto reading = std::make_shared<Reading>();
  // The library does not let go of a server that keeps silent before half a minute has passed,
  // whatever it is told. The thread then goes on alone and ends without anybody waiting for it.
  std::thread([reading] { reading->Run(); }).detach();
  return reading->Wait(m_limit, books);
}

}  // namespace ebook
