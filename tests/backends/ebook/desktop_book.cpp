#include "tests/backends/ebook/desktop_book.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "backends/ebook/door.h"
#include "backends/posix/library.h"

namespace ebook_test {
namespace {

/// Reports the error of a call that failed.
class Checked {
 public:
  ~Checked() {
    EXPECT_EQ(m_error, nullptr) << (m_error == nullptr ? "" : m_error->message);
    g_clear_error(&m_error);
  }
  [[nodiscard]] GError** Get() { return &m_error; }

 private:
  GError* m_error = nullptr;
};

template <typename T>
T* As(void* object) {
  return static_cast<T*>(object);
}

ebook::ObjectPointer<ESourceRegistry> OpenRegistry() {
  if (std::getenv("VOXTREL_TEST_SESSION") == nullptr) {  // NOLINT(concurrency-mt-unsafe)
    std::fputs("Run this with tests/backends/ebook/in_desktop_session.sh\n", stderr);
    std::abort();
  }
  Checked checked;
  return ebook::ObjectPointer<ESourceRegistry>(e_source_registry_new_sync(nullptr, checked.Get()));
}

}  // namespace

vcard::DesktopSource::Library LoadDesktopBooks() {
  const std::filesystem::path place[] = {VOXTREL_DESKTOP_BOOKS};
  const auto found = posix::LoadFunction(place, ebook::kFunctionName);
  return found.map(
      [](void* read) { return reinterpret_cast<platform::ReadDesktopBooksFunction*>(read); });
}

DesktopBook::DesktopBook()
    : m_registry(OpenRegistry()),
      m_source(e_source_registry_ref_builtin_address_book(m_registry.get())) {
  Connect();
}

DesktopBook::DesktopBook(const std::string& uid) : m_registry(OpenRegistry()) {
  Checked checked;
  m_source.reset(e_source_new_with_uid(uid.c_str(), nullptr, checked.Get()));
  e_source_set_parent(m_source.get(), "local-stub");
  e_source_set_display_name(m_source.get(), uid.c_str());
  e_source_backend_set_backend_name(
      As<ESourceBackend>(e_source_get_extension(m_source.get(), E_SOURCE_EXTENSION_ADDRESS_BOOK)),
      "local");
  e_source_registry_commit_source_sync(m_registry.get(), m_source.get(), nullptr, checked.Get());
  // The server's own view of it can be written to, other than what was sent there.
  m_source.reset(e_source_registry_ref_source(m_registry.get(), uid.c_str()));
  Connect();
}

void DesktopBook::Connect() {
  Checked checked;
  constexpr auto kDoNotWait = static_cast<std::uint32_t>(-1);
  m_client.reset(As<EBookClient>(
      e_book_client_connect_sync(m_source.get(), kDoNotWait, nullptr, checked.Get())));
}

void DesktopBook::Add(const std::vector<std::string>& vcards) {
  GSList* list = nullptr;
  for (const std::string& vcard : vcards) {
    list = g_slist_prepend(list, e_contact_new_from_vcard(vcard.c_str()));
  }
  const ebook::ObjectSlist contacts(list);
  Checked checked;
  e_book_client_add_contacts_sync(m_client.get(), contacts.get(), E_BOOK_OPERATION_FLAG_NONE,
                                  nullptr, nullptr, checked.Get());
}

void DesktopBook::Add(const std::function<void(EContact&)>& fillIn) {
  const ebook::ObjectPointer<EContact> contact(e_contact_new());
  fillIn(*contact);
  Checked checked;
  e_book_client_add_contact_sync(m_client.get(), contact.get(), E_BOOK_OPERATION_FLAG_NONE, nullptr,
                                 nullptr, checked.Get());
}

void DesktopBook::Remove(const std::string& contactUid) {
  Checked checked;
  e_book_client_remove_contact_by_uid_sync(m_client.get(), contactUid.c_str(),
                                           E_BOOK_OPERATION_FLAG_NONE, nullptr, checked.Get());
}

void DesktopBook::SetEnabled(bool isEnabled) {
  Checked checked;
  e_source_set_enabled(m_source.get(), isEnabled ? TRUE : FALSE);
  e_source_write_sync(m_source.get(), nullptr, checked.Get());
}

}  // namespace ebook_test
