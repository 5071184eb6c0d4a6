#include "backends/text/utf.h"
#include "backends/vcard/address_books.h"
#include "tests/contract/contacts_contract.h"
#include "tests/contract/vcard_of.h"
#include "tests/machine/memory_file_system.h"
#include "tests/machine/memory_registry.h"
#include "tests/machine/simulated_contacts.h"
#include "tests/support/file_bytes.h"

namespace contract {
namespace {

class HeadlessFixture final : public ContactsFixture {
 public:
  void Add(const WantedContact& wanted) override {
    machine::SimulatedContact contact;
    contact.oid = m_nextOid--;
    contact.firstName = wanted.firstName;
    contact.middleName = wanted.middleName;
    contact.lastName = wanted.lastName;
    contact.companyName = wanted.companyName;
    contact.numbers = wanted.numbers;
    m_oids[wanted.uid] = contact.oid;
    m_store.Add(contact);
  }
  void Remove(const std::string& uid) override { m_store.Remove(m_oids.at(uid)); }
  [[nodiscard]] platform::ContactsStore& Get() override { return m_store; }

 private:
  machine::SimulatedContacts m_store;
  std::map<std::string, std::int32_t> m_oids;
  std::int32_t m_nextOid = -1;
};

class VcardFixture final : public ContactsFixture {
 public:
  VcardFixture() {
    vcard::AddressBooks::Options options;
    options.choice = vcard::SourceChoice{u"/all.vcf"};
    m_store = std::make_unique<vcard::AddressBooks>(m_files, m_registry, options);
  }
  void Add(const WantedContact& wanted) override {
    m_contacts.push_back(wanted);
    Write();
  }
  void Remove(const std::string& uid) override {
    std::erase_if(m_contacts, [&uid](const WantedContact& each) { return each.uid == uid; });
    Write();
  }
  [[nodiscard]] platform::ContactsStore& Get() override { return *m_store; }

 private:
  void Write() {
    std::string cards;
    for (const WantedContact& each : m_contacts) {
      cards += VcardOf(each);
    }
    EXPECT_TRUE(m_files.PutFile(u"/all.vcf", support::ToBytes(cards)));
  }

  std::vector<WantedContact> m_contacts;
  machine::MemoryFileSystem m_files;
  machine::MemoryRegistry m_registry;
  std::unique_ptr<vcard::AddressBooks> m_store;
};

const ContactsBackEnd kHeadless{"Headless", [] { return std::make_unique<HeadlessFixture>(); }};
const ContactsBackEnd kVcard{"Vcard", [] { return std::make_unique<VcardFixture>(); }};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Contacts, ContactsContract, testing::Values(kHeadless, kVcard), NameOf);

}  // namespace contract
