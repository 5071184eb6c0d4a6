#include <filesystem>

#include "backends/vcard/address_books.h"
#include "tests/backends/ebook/desktop_book.h"
#include "tests/contract/contacts_contract.h"
#include "tests/contract/vcard_of.h"
#include "tests/machine/memory_file_system.h"
#include "tests/machine/memory_registry.h"

namespace contract {
namespace {

/// The real servers, with a new address book for each case; the one that every desktop has stays
/// empty.
class DesktopFixture final : public ContactsFixture {
 public:
  DesktopFixture() : m_book("contract-" + std::to_string(++s_count)) {
    vcard::AddressBooks::Options options;
    options.choice = vcard::SourceChoice{};
    options.desktop = &m_desktop;
    m_store = std::make_unique<vcard::AddressBooks>(m_files, m_registry, options);
  }
  ~DesktopFixture() override { m_book.SetEnabled(false); }

  void Add(const WantedContact& wanted) override { m_book.Add({VcardOf(wanted)}); }
  void Remove(const std::string& uid) override { m_book.Remove(uid); }
  [[nodiscard]] platform::ContactsStore& Get() override { return *m_store; }

 private:
  static inline int s_count = 0;

  ebook_test::DesktopBook m_book;
  vcard::DesktopSource m_desktop{ebook_test::LoadDesktopBooks};
  machine::MemoryFileSystem m_files;
  machine::MemoryRegistry m_registry;
  std::unique_ptr<vcard::AddressBooks> m_store;
};

const ContactsBackEnd kDesktop{"Desktop", [] { return std::make_unique<DesktopFixture>(); }};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Servers, ContactsContract, testing::Values(kDesktop), NameOf);

}  // namespace contract
