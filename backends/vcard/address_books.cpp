#include "backends/vcard/address_books.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

#include "backends/text/say.h"
#include "backends/text/utf.h"
#include "backends/vcard/vcard_source.h"
#include "resources/remark_strings.h"

namespace vcard {

using platform::BooksError;
using platform::ContactsError;
using platform::ContactText;
using platform::Failure;
using platform::FileError;
using platform::RegistryError;
using platform::Result;

/// A contact of one log-on, which stays readable after the log-off.
class AddressBooks::ReadContact final : public platform::Contact {
 public:
  ReadContact(ContactData contact, std::int32_t oid) : m_contact(std::move(contact)), m_oid(oid) {}

  [[nodiscard]] ContactText GetFirstName() override { return m_contact.firstName; }
  [[nodiscard]] ContactText GetMiddleName() override { return m_contact.middleName; }
  [[nodiscard]] ContactText GetLastName() override { return m_contact.lastName; }
  [[nodiscard]] ContactText GetCompanyName() override { return m_contact.companyName; }
  [[nodiscard]] ContactText GetNumber(platform::PhoneKind kind) override {
    return m_contact.numbers[static_cast<std::size_t>(kind)];
  }
  [[nodiscard]] Result<std::int32_t, ContactsError> GetOid() override { return m_oid; }

 private:
  const ContactData m_contact;
  const std::int32_t m_oid;
};

AddressBooks::AddressBooks(platform::FileSystem& files, platform::Registry& registry,
                           Options options)
    : m_files(files), m_registry(registry), m_options(std::move(options)), m_oids(registry) {}

Result<void, ContactsError> AddressBooks::Initialize() { return {}; }

Result<void, ContactsError> AddressBooks::Connect() {
  m_problem.reset();
  m_choice = m_options.choice;
  m_choiceRemarks.clear();
  const auto group = platform::RegistryGroup::BeginReading(m_registry);
  bool isReady = group.has_value();
  if (isReady && !m_choice) {
    auto recalled = RecallChoice(m_registry, m_choiceRemarks);
    isReady = recalled.has_value();
    m_choice = std::move(recalled).value_or(std::nullopt);
  }
  if (!isReady || !m_oids.Load()) {
    m_problem = Problem::kStore;
    return Failure(ContactsError::kFailed);
  }
  return {};
}

Result<void, ContactsError> AddressBooks::Logon() {
  Logoff();
  m_problem.reset();
  m_reason.clear();
  m_bookRemarks.clear();
  const Done done = (m_choice ? LogonTo(*m_choice) : LogonToDefault()).and_then([this] {
    return RememberChoice();
  });
  if (!done) {
    Logoff();
    m_problem = done.error();
    return Failure(ContactsError::kFailed);
  }
  return {};
}

AddressBooks::Done AddressBooks::RememberChoice() {
  if (!m_options.choice || m_options.changesNothing) {
    return {};
  }
  const auto remembered = vcard::RememberChoice(m_registry, *m_options.choice);
  if (remembered) {
    return {};
  }
  const RegistryError error = remembered.error();
  if (error != RegistryError::kFull && error != RegistryError::kReadOnly) {
    return Failure(Problem::kStore);
  }
  m_bookRemarks.push_back(
      {std::u16string(kContactsKey), 0, text::Say(resources::kChoiceNotRemembered)});
  return {};
}

std::vector<Remark> AddressBooks::GetRemarks() const {
  std::vector<Remark> remarks = m_bookRemarks;
  for (const auto* more : {&m_choiceRemarks, &m_oids.GetRemarks()}) {
    remarks.insert(remarks.end(), more->begin(), more->end());
  }
  return remarks;
}

AddressBooks::Done AddressBooks::LogonTo(const SourceChoice& choice) {
  VcardSource file(m_files, choice.path, m_options.openCache);
  auto read = choice.path.empty() ? ReadDesktop() : ReadFrom(file);
  if (!read) {
    return Failure(read.error().kind == BooksError::Kind::kNoAnswer ? Problem::kNoServer
                                                                    : Problem::kUnreadable);
  }
  if (!choice.path.empty() && !read->empty()) {
    FollowMovedFile(choice, read->front());
  }
  return TakeContacts(std::move(*read));
}

// A vCard file that was moved has another name, and the numbers of tags belong to the old one. The
// new file takes them over if it has the contact of each tag and the old one is gone. Two files
// that are both there may be those of two people who know the same names. Only a plain copy among
// the device's own files is taken for the file itself even then.
void AddressBooks::FollowMovedFile(const SourceChoice& choice, const Book& book) {
  if (m_oids.Knows(book.name)) {
    return;
  }
  std::vector<Remark> ignored;
  const auto remembered = RecallChoice(m_registry, ignored);
  if (!remembered || !*remembered || (*remembered)->path.empty()) {
    return;
  }
  const std::u16string former = NameOfFile((*remembered)->path);
  if (!m_oids.Knows(former)) {
    return;
  }
  OidMap trial = m_oids;
  trial.Rename(former, book.name);
  const auto oids = trial.Assign(std::span(&book, 1), OidMap::Keeping::kInMemory);
  const bool isOwnCopy = choice.path.starts_with(u'\\') && !trial.HasNews();
  const bool isMoved =
      isOwnCopy || m_files.Find((*remembered)->path) == Failure(FileError::kNotFound);
  const Oids inUse = GetOidsInUse();
  if (oids && inUse && isMoved && std::ranges::all_of(*inUse, [&](std::int32_t oid) {
        return std::ranges::find(oids->front(), oid) != oids->front().end();
      })) {
    m_oids.Rename(former, book.name);
  }
}

// Nobody has chosen an address book yet. A desktop that comes up, goes away or fails must not take
// the place of the file that tags were recorded with, nor the file that of the desktop. So the
// desktop counts if it has the contacts of all tags. Otherwise the default file does, which then
// has to have them.
AddressBooks::Done AddressBooks::LogonToDefault() {
  auto desktop = ReadDesktop();
  const bool hasContacts =
      desktop && std::any_of(desktop->begin(), desktop->end(),
                             [](const Book& book) { return !book.contacts.empty(); });
  if (hasContacts) {
    const Done taken = TakeContacts(std::move(*desktop));
    if (taken || taken.error() == Problem::kStore) {
      return taken;
    }
    Logoff();
  }
  const bool isUnreadable = !desktop && desktop.error().kind == BooksError::Kind::kUnreadable;
  if (isUnreadable && GetOidsInUse().value_or(std::vector<std::int32_t>()).empty()) {
    return Failure(Problem::kUnreadable);
  }
  const Done done = LogonTo({m_options.defaultPath});
  if (done || done.error() != Problem::kUnreadable ||
      VcardSource(m_files, m_options.defaultPath).HasFile()) {
    return done;
  }
  if (hasContacts) {
    return Failure(Problem::kTagsElsewhere);
  }
  if (const Oids inUse = GetOidsInUse(); !inUse || !inUse->empty()) {
    return Failure(Problem::kNothingChosen);
  }
  m_problem = Problem::kNothingChosen;
  if (m_options.nothingFound) {
    m_options.nothingFound();
  }
  return {};
}

ReadBooks AddressBooks::ReadFrom(ContactSource& source) {
  RemarkList remarks;
  auto read = source.Read(remarks);
  m_bookRemarks = remarks.GetAll();
  return read;
}

ReadBooks AddressBooks::ReadDesktop() {
  if (m_options.desktop == nullptr) {
    return Failure(BooksError{BooksError::Kind::kNoAnswer, {}});
  }
  auto read = ReadFrom(*m_options.desktop);
  m_reason = read ? std::string() : read.error().reason;
  return read;
}

// Fails if a tag belongs to somebody whose book was not read to its end. The page deletes the tags
// of contacts that are gone, so it must not open while one only seems to be gone.
AddressBooks::Done AddressBooks::TakeContacts(std::vector<Book> books) {
  const OidMap::Keeping keeping =
      m_options.changesNothing ? OidMap::Keeping::kInMemory : OidMap::Keeping::kStored;
  const auto oids = m_oids.Assign(books, keeping);
  if (!oids) {
    return Failure(Problem::kStore);
  }
  for (std::size_t i = 0; i < books.size(); ++i) {
    m_contacts.reserve(m_contacts.size() + (*oids)[i].size());
    for (std::size_t j = 0; j < (*oids)[i].size(); ++j) {
      m_byOid.Add((*oids)[i][j], m_contacts.size());
      m_contacts.push_back(
          {static_cast<std::uint32_t>(i), static_cast<std::uint32_t>(j), (*oids)[i][j]});
    }
    if (books[i].isComplete) {
      m_completeBooks.push_back(books[i].name);
    }
    m_books.push_back(std::move(books[i].contacts));
  }
  return CheckOidsInUse();
}

AddressBooks::Oids AddressBooks::GetOidsInUse() const {
  return m_options.oidsInUse ? m_options.oidsInUse() : std::vector<std::int32_t>();
}

AddressBooks::Done AddressBooks::CheckOidsInUse() const {
  const Oids oids = GetOidsInUse();
  if (!oids) {
    return Failure(Problem::kStore);
  }
  const bool areKnown = std::all_of(oids->begin(), oids->end(), [this](std::int32_t oid) {
    return FindByOid(oid) != nullptr || IsGone(oid);
  });
  return areKnown ? Done() : Failure(Problem::kTagsElsewhere);
}

bool AddressBooks::IsGone(std::int32_t oid) const {
  return std::any_of(m_completeBooks.begin(), m_completeBooks.end(),
                     [&](const std::u16string& book) { return m_oids.Belongs(oid, book); });
}

std::int32_t AddressBooks::GetCount() { return static_cast<std::int32_t>(m_contacts.size()); }

platform::FoundContact AddressBooks::GetItem(std::int32_t index) {
  if (index < 1 || index > GetCount()) {
    return Failure(ContactsError::kFailed);
  }
  return Unpack(m_contacts[static_cast<std::size_t>(index) - 1]);
}

platform::FoundContact AddressBooks::GetItemFromOid(std::int32_t oid) {
  const Entry* const found = FindByOid(oid);
  if (found == nullptr) {
    return Failure(IsGone(oid) ? ContactsError::kAbsent : ContactsError::kFailed);
  }
  return Unpack(*found);
}

platform::FoundContact AddressBooks::Unpack(const Entry& entry) const {
  return std::make_unique<ReadContact>(m_books[entry.book][entry.index], entry.oid);
}

const AddressBooks::Entry* AddressBooks::FindByOid(std::int32_t oid) const {
  const std::uint32_t found = m_byOid.Find(oid);
  return found == OidIndex::kNone ? nullptr : &m_contacts[found];
}

void AddressBooks::Logoff() {
  m_books.clear();
  m_contacts.clear();
  m_byOid = {};
  m_completeBooks.clear();
}

}  // namespace vcard
