#include "backends/vcard/address_books.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "backends/vcard/registry_names.h"
#include "backends/vcard/vcard_source.h"

namespace vcard {

using platform::ContactLookup;
using platform::RegistryError;

class AddressBooks::ReadContact final : public platform::Contact {
 public:
  explicit ReadContact(std::shared_ptr<const StoredContact> contact)
      : m_contact(std::move(contact)) {}

  [[nodiscard]] bool GetFirstName(std::u16string& text) override {
    text = m_contact->data.firstName;
    return true;
  }
  [[nodiscard]] bool GetMiddleName(std::u16string& text) override {
    text = m_contact->data.middleName;
    return true;
  }
  [[nodiscard]] bool GetLastName(std::u16string& text) override {
    text = m_contact->data.lastName;
    return true;
  }
  [[nodiscard]] bool GetCompanyName(std::u16string& text) override {
    text = m_contact->data.companyName;
    return true;
  }
  [[nodiscard]] bool GetNumber(platform::PhoneKind kind, std::u16string& text) override {
    text = m_contact->data.numbers[static_cast<std::size_t>(kind)];
    return true;
  }
  [[nodiscard]] bool GetOid(std::int32_t& oid) override {
    oid = m_contact->oid;
    return true;
  }

 private:
  std::shared_ptr<const StoredContact> m_contact;
};

AddressBooks::AddressBooks(platform::FileSystem& files, platform::Registry& registry,
                           Options options)
    : m_files(files), m_registry(registry), m_options(std::move(options)), m_oids(registry) {}

bool AddressBooks::Initialize() { return true; }

bool AddressBooks::Connect() {
  m_problem = Problem::kNone;
  m_choice = m_options.choice;
  m_choiceRemarks.clear();
  const bool isReady =
      (m_choice || RecallChoice(m_registry, m_choice, m_choiceRemarks)) && m_oids.Load();
  return isReady || Fail(Problem::kStore);
}

bool AddressBooks::Logon() {
  Logoff();
  m_problem = Problem::kNone;
  m_reason.clear();
  m_bookRemarks.clear();
  const bool isReady = (m_choice ? LogonTo(*m_choice) : LogonToDefault()) && RememberChoice();
  if (!isReady) {
    Logoff();
  }
  return isReady;
}

bool AddressBooks::RememberChoice() {
  if (!m_options.choice || m_options.changesNothing) {
    return true;
  }
  const auto remembered = vcard::RememberChoice(m_registry, *m_options.choice);
  if (remembered) {
    return true;
  }
  const RegistryError error = remembered.error();
  if (error != RegistryError::kFull && error != RegistryError::kReadOnly) {
    return Fail(Problem::kStore);
  }
  m_bookRemarks.push_back(
      {std::u16string(kContactsKey), 0, "the choice of the address book cannot be remembered"});
  return true;
}

std::vector<Remark> AddressBooks::GetRemarks() const {
  std::vector<Remark> remarks = m_bookRemarks;
  for (const auto* more : {&m_choiceRemarks, &m_oids.GetRemarks()}) {
    remarks.insert(remarks.end(), more->begin(), more->end());
  }
  return remarks;
}

bool AddressBooks::LogonTo(const SourceChoice& choice) {
  std::vector<Book> books;
  VcardSource file(m_files, choice.path);
  const ReadResult result = choice.path.empty() ? ReadDesktop(books) : file.Read(books);
  if (!choice.path.empty()) {
    m_bookRemarks = file.GetRemarks();
  }
  if (result != ReadResult::kRead) {
    return Fail(result == ReadResult::kNoAnswer ? Problem::kNoServer : Problem::kUnreadable);
  }
  return TakeContacts(books);
}

bool AddressBooks::LogonToDefault() {
  std::vector<Book> books;
  const ReadResult result = ReadDesktop(books);
  const bool hasContacts = std::any_of(books.begin(), books.end(),
                                       [](const Book& book) { return !book.contacts.empty(); });
  if (hasContacts && TakeContacts(books)) {
    return true;
  }
  if (m_problem == Problem::kStore) {
    return false;  // Which book the tags belong to is not known.
  }
  Logoff();
  // A desktop that comes up, or fails, after tags were recorded with the file changes nothing.
  if (result == ReadResult::kUnreadable && !IsAnyOidInUse()) {
    return Fail(Problem::kUnreadable);
  }
  const bool isReady = LogonTo({m_options.defaultPath});
  if (m_problem != Problem::kUnreadable || m_files.Find(m_options.defaultPath)) {
    return isReady;
  }
  // There is no such file.
  m_problem = hasContacts ? Problem::kTagsElsewhere : Problem::kNothingChosen;
  const bool isNewcomer = !hasContacts && IsNoOidInUse();
  if (isNewcomer && m_options.nothingFound) {
    m_options.nothingFound();
  }
  return isNewcomer;
}

ReadResult AddressBooks::ReadDesktop(std::vector<Book>& books) {
  if (m_options.desktop == nullptr) {
    return ReadResult::kNoAnswer;
  }
  const ReadResult result = m_options.desktop->Read(books);
  m_reason = m_options.desktop->GetReason();
  m_bookRemarks = m_options.desktop->GetRemarks();
  return result;
}

bool AddressBooks::Fail(Problem problem) {
  m_problem = problem;
  return false;
}

bool AddressBooks::TakeContacts(std::vector<Book>& books) {
  const OidMap::Keeping keeping =
      m_options.changesNothing ? OidMap::Keeping::kInMemory : OidMap::Keeping::kStored;
  std::vector<std::vector<std::int32_t>> oids;
  if (!m_oids.Assign(books, keeping, oids)) {
    return Fail(Problem::kStore);
  }
  for (std::size_t i = 0; i < books.size(); ++i) {
    for (std::size_t j = 0; j < books[i].contacts.size(); ++j) {
      m_indexes.emplace(oids[i][j], m_contacts.size());
      m_contacts.push_back(std::make_shared<StoredContact>(
          StoredContact{std::move(books[i].contacts[j]), oids[i][j]}));
    }
    if (books[i].isComplete) {
      m_completeBooks.push_back(books[i].name);
    }
  }
  return IsEveryOidInUseKnown();
}

bool AddressBooks::IsAnyOidInUse() const {
  const auto oids = m_options.oidsInUse ? m_options.oidsInUse() : std::nullopt;
  return oids && !oids->empty();
}

bool AddressBooks::IsNoOidInUse() const {
  const auto oids = m_options.oidsInUse ? m_options.oidsInUse() : std::vector<std::int32_t>();
  return oids && oids->empty();
}

bool AddressBooks::IsEveryOidInUseKnown() {
  if (!m_options.oidsInUse) {
    return true;
  }
  const std::optional<std::vector<std::int32_t>> oids = m_options.oidsInUse();
  if (!oids) {
    return Fail(Problem::kStore);
  }
  const bool isKnown = std::none_of(oids->begin(), oids->end(), [this](std::int32_t oid) {
    return Find(oid) == ContactLookup::kFailed;
  });
  return isKnown || Fail(Problem::kTagsElsewhere);
}

ContactLookup AddressBooks::Find(std::int32_t oid) const {
  if (m_indexes.contains(oid)) {
    return ContactLookup::kFound;
  }
  const bool isGone =
      std::any_of(m_completeBooks.begin(), m_completeBooks.end(),
                  [&](const std::u16string& book) { return m_oids.Belongs(oid, book); });
  return isGone ? ContactLookup::kAbsent : ContactLookup::kFailed;
}

std::int32_t AddressBooks::GetCount() { return static_cast<std::int32_t>(m_contacts.size()); }

platform::ContactItem AddressBooks::GetItem(std::int32_t index) {
  if (index < 1 || index > GetCount()) {
    return {};
  }
  return {true, std::make_unique<ReadContact>(m_contacts[static_cast<std::size_t>(index) - 1])};
}

ContactLookup AddressBooks::GetItemFromOid(std::int32_t oid,
                                           std::unique_ptr<platform::Contact>& contact) {
  const auto found = m_indexes.find(oid);
  if (found == m_indexes.end()) {
    return Find(oid);
  }
  contact = std::make_unique<ReadContact>(m_contacts[found->second]);
  return ContactLookup::kFound;
}

void AddressBooks::Logoff() {
  m_contacts.clear();
  m_indexes.clear();
  m_completeBooks.clear();
}

}  // namespace vcard
