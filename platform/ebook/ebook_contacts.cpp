#include "platform/ebook/ebook_contacts.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "platform/ebook/desktop_source.h"
#include "platform/ebook/identities.h"
#include "platform/ebook/vcard_source.h"

namespace ebook {

using platform::ContactLookup;

class EbookContacts::ReadContact final : public platform::Contact {
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
  [[nodiscard]] bool GetNumber(platform::PhoneNumberKind kind, std::u16string& text) override {
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

EbookContacts::EbookContacts(platform::FileSystem& files, platform::Registry& registry,
                             Options options)
    : m_files(files), m_registry(registry), m_options(std::move(options)), m_oids(registry) {
  if (m_options.desktop == nullptr) {
    m_ownDesktop = std::make_unique<DesktopSource>();
    m_options.desktop = m_ownDesktop.get();
  }
}

EbookContacts::~EbookContacts() = default;

bool EbookContacts::Initialize() { return true; }

bool EbookContacts::Connect() {
  m_problem = Problem::kNone;
  m_choice = m_options.choice;
  const bool isReady = (m_choice || RecallChoice(m_registry, m_choice)) && m_oids.Load();
  return isReady || Fail(Problem::kStore);
}

bool EbookContacts::Logon() {
  Logoff();
  m_problem = Problem::kNone;
  bool isReady = m_choice ? LogonTo(*m_choice) : LogonToDefault();
  if (isReady && m_options.choice && !RememberChoice(m_registry, *m_options.choice)) {
    isReady = Fail(Problem::kStore);
  }
  if (!isReady) {
    Logoff();
  }
  return isReady;
}

bool EbookContacts::LogonTo(const SourceChoice& choice) {
  std::vector<Book> books;
  const ReadResult result = choice.path.empty() ? m_options.desktop->Read(books)
                                                : VcardSource(m_files, choice.path).Read(books);
  if (result != ReadResult::kRead) {
    return Fail(result == ReadResult::kNoAnswer ? Problem::kNoServer : Problem::kUnreadable);
  }
  return TakeContacts(books);
}

bool EbookContacts::LogonToDefault() {
  std::vector<Book> books;
  const ReadResult result = m_options.desktop->Read(books);
  const bool hasContacts = std::any_of(books.begin(), books.end(),
                                       [](const Book& book) { return !book.contacts.empty(); });
  if (hasContacts && TakeContacts(books)) {
    return true;
  }
  Logoff();
  // A desktop that comes up, or fails, after tags were recorded with the file changes nothing.
  if (result == ReadResult::kUnreadable && !IsAnyOidInUse()) {
    return Fail(Problem::kUnreadable);
  }
  const bool isReady = LogonTo({m_options.defaultPath});
  if (m_problem == Problem::kUnreadable) {
    return Fail(hasContacts ? Problem::kTagsElsewhere : Problem::kNothingChosen);
  }
  return isReady;
}

bool EbookContacts::Fail(Problem problem) {
  m_problem = problem;
  return false;
}

bool EbookContacts::TakeContacts(std::vector<Book>& books) {
  std::vector<SourceContacts> identities;
  identities.reserve(books.size());
  for (const Book& book : books) {
    identities.push_back({book.name, IdentitiesOf(book.contacts)});
  }
  std::vector<std::vector<std::int32_t>> oids;
  if (!m_oids.Assign(identities, oids)) {
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

bool EbookContacts::IsAnyOidInUse() const {
  const auto oids = m_options.oidsInUse ? m_options.oidsInUse() : std::nullopt;
  return oids && !oids->empty();
}

bool EbookContacts::IsEveryOidInUseKnown() {
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

ContactLookup EbookContacts::Find(std::int32_t oid) const {
  if (m_indexes.contains(oid)) {
    return ContactLookup::kFound;
  }
  const bool isGone =
      std::any_of(m_completeBooks.begin(), m_completeBooks.end(),
                  [&](const std::u16string& book) { return m_oids.Belongs(oid, book); });
  return isGone ? ContactLookup::kAbsent : ContactLookup::kFailed;
}

std::int32_t EbookContacts::GetCount() { return static_cast<std::int32_t>(m_contacts.size()); }

platform::ContactItem EbookContacts::GetItem(std::int32_t index) {
  if (index < 1 || index > GetCount()) {
    return {};
  }
  return {true, std::make_unique<ReadContact>(m_contacts[static_cast<std::size_t>(index) - 1])};
}

ContactLookup EbookContacts::GetItemFromOid(std::int32_t oid,
                                            std::unique_ptr<platform::Contact>& contact) {
  const auto found = m_indexes.find(oid);
  if (found == m_indexes.end()) {
    return Find(oid);
  }
  contact = std::make_unique<ReadContact>(m_contacts[found->second]);
  return ContactLookup::kFound;
}

void EbookContacts::Logoff() {
  m_contacts.clear();
  m_indexes.clear();
  m_completeBooks.clear();
}

}  // namespace ebook
