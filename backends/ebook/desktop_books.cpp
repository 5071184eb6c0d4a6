#include <libebook/libebook.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include "backends/ebook/door.h"
#include "backends/ebook/glib_pointers.h"

// The desktop's address books as vCards. Every call of the library blocks, and a server can hang,
// so all of it happens on a thread that can be given up.
namespace ebook {
namespace {

using platform::BooksError;
using platform::DesktopBook;
using platform::DesktopBooks;
using platform::Failure;

static_assert(
    std::is_same_v<decltype(VoxtrelReadDesktopBooks), platform::ReadDesktopBooksFunction>);

/// The library waits for a book to be online unless it is given this number.
constexpr auto kDoNotWait = static_cast<std::uint32_t>(-1);
constexpr std::string_view kLocalBackend = "local";

using Text = std::unique_ptr<char, decltype(&g_free)>;

/// Receives the error of a call of the library.
class CallError {
 public:
  CallError() = default;
  CallError(const CallError&) = delete;
  CallError& operator=(const CallError&) = delete;
  ~CallError() { g_clear_error(&m_error); }

  [[nodiscard]] GError** Receive() { return &m_error; }
  [[nodiscard]] std::string TakeText() {
    std::string text = m_error == nullptr ? "" : m_error->message;
    g_clear_error(&m_error);
    return text;
  }

 private:
  GError* m_error = nullptr;
};

ObjectList ListEnabledBooks(ESourceRegistry& registry) {
  ObjectList sources(e_source_registry_list_enabled(&registry, E_SOURCE_EXTENSION_ADDRESS_BOOK));
  const auto byUid = [](const void* a, const void* b) {
    return g_strcmp0(e_source_get_uid(static_cast<ESource*>(const_cast<void*>(a))),
                     e_source_get_uid(static_cast<ESource*>(const_cast<void*>(b))));
  };
  // In the same order each time, which the library does not promise.
  return ObjectList(g_list_sort(sources.release(), byUid));
}

bool IsLocal(ESource& source) {
  void* extension = e_source_get_extension(&source, E_SOURCE_EXTENSION_ADDRESS_BOOK);
  const Text name(e_source_backend_dup_backend_name(static_cast<ESourceBackend*>(extension)),
                  &g_free);
  return name && name.get() == kLocalBackend;
}

/// Reads one address book whole. The error is the library's text.
platform::Result<DesktopBook, std::string> ReadBook(ESource& source, GCancellable* cancellable) {
  CallError error;
  const ObjectPointer<EClient> client(
      e_book_client_connect_sync(&source, kDoNotWait, cancellable, error.Receive()));
  if (!client) {
    return Failure(error.TakeText());
  }
  // The query for every contact: each field contains an empty text.
  const std::unique_ptr<EBookQuery, decltype(&e_book_query_unref)> all(
      e_book_query_any_field_contains(""), &e_book_query_unref);
  const Text query(e_book_query_to_string(all.get()), &g_free);
  GSList* found = nullptr;
  void* const opened = client.get();
  const bool isRead =
      e_book_client_get_contacts_sync(static_cast<EBookClient*>(opened), query.get(), &found,
                                      cancellable, error.Receive()) != FALSE;
  const ObjectSlist contacts(found);
  if (!isRead) {
    return Failure(error.TakeText());
  }
  DesktopBook book;
  book.uid = e_source_get_uid(&source);
  for (const GSList* node = contacts.get(); node != nullptr; node = node->next) {
    const Text card(e_vcard_to_string(static_cast<EVCard*>(node->data), EVC_FORMAT_VCARD_30),
                    &g_free);
    book.cards.append(card ? card.get() : "").append("\r\n");
  }
  book.isSettled = IsLocal(source) ||
                   e_source_get_connection_status(&source) == E_SOURCE_CONNECTION_STATUS_CONNECTED;
  return book;
}

/// Returns whether the user's programs have a way to talk to each other at all.
bool IsSessionRunning(GCancellable* cancellable) {
  const Text address(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, cancellable, nullptr),
                     &g_free);
  return address != nullptr;
}

/// One reading, which its caller and the thread that does it share.
///
/// The desktop's library does not let go of a server that keeps silent before half a minute has
/// passed, even if it is cancelled. So the reading has a thread of its own. The caller gives up on
/// it in time, and the thread goes on alone and ends without anybody waiting for it.
class Reading {
 public:
  /// For the thread.
  void Run() {
    DesktopBooks books;
    try {
      books = ReadEnabledBooks();
    } catch (const std::exception& error) {
      books = Failure(BooksError{.reason = error.what()});
    }
    const std::lock_guard lock(m_mutex);
    m_books = std::move(books);
    m_isDone.notify_one();
  }

  /// Waits for the end of the reading, and gives up on it after `limit`.
  [[nodiscard]] DesktopBooks Wait(std::chrono::milliseconds limit) {
    std::unique_lock lock(m_mutex);
    if (!m_isDone.wait_for(lock, limit, [this] { return m_books.has_value(); })) {
      g_cancellable_cancel(m_cancellable.get());
      return Failure(BooksError{
          m_hasAnswer ? BooksError::Kind::kUnreadable : BooksError::Kind::kNoAnswer, {}});
    }
    return std::move(*m_books);
  }

 private:
  [[nodiscard]] DesktopBooks ReadEnabledBooks() {
    GCancellable* const cancellable = m_cancellable.get();
    if (!IsSessionRunning(cancellable)) {
      return Failure(BooksError{BooksError::Kind::kNoAnswer, "no desktop session is running"});
    }
    CallError error;
    const ObjectPointer<ESourceRegistry> registry(
        e_source_registry_new_sync(cancellable, error.Receive()));
    if (!registry) {
      return Failure(BooksError{BooksError::Kind::kNoAnswer, error.TakeText()});
    }
    m_hasAnswer = true;
    const ObjectList sources = ListEnabledBooks(*registry);
    std::vector<DesktopBook> books;
    for (const GList* node = sources.get(); node != nullptr; node = node->next) {
      // Nobody waits any more.
      if (g_cancellable_is_cancelled(cancellable) != FALSE) {
        return Failure(BooksError{});
      }
      auto book = ReadBook(*static_cast<ESource*>(node->data), cancellable);
      if (!book) {
        return Failure(BooksError{.reason = book.error()});
      }
      books.push_back(std::move(*book));
    }
    return books;
  }

  const ObjectPointer<GCancellable> m_cancellable{g_cancellable_new()};
  std::atomic<bool> m_hasAnswer = false;
  std::mutex m_mutex;
  std::condition_variable m_isDone;
  std::optional<DesktopBooks> m_books;  ///< Nothing until the reading has ended.
};

}  // namespace
}  // namespace ebook

void VoxtrelReadDesktopBooks(std::uint32_t milliseconds, platform::DesktopBooks& books) {
  try {
    const auto reading = std::make_shared<ebook::Reading>();
    std::thread([reading] { reading->Run(); }).detach();
    books = reading->Wait(std::chrono::milliseconds(milliseconds));
  } catch (const std::exception& error) {
    books = platform::Failure(platform::BooksError{.reason = error.what()});
  }
}
