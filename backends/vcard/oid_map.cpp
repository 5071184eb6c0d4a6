#include "backends/vcard/oid_map.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include "backends/text/registry_text.h"
#include "backends/text/utf.h"
#include "backends/vcard/contact_source.h"
#include "platform/file_system.h"

namespace vcard {

using platform::Failure;
using platform::RegistryError;
using platform::Result;

namespace {

/// Text, in the subkey of each address book: its lasting name.
constexpr std::u16string_view kSourceValue = u"source";

constexpr std::uint32_t kMaxKeyNumber = 1'000'000;

std::optional<std::uint32_t> ParseKeyNumber(const std::u16string& keyName) {
  const std::string digits = text::ToUtf8(keyName);
  std::uint32_t number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [parsed, error] = std::from_chars(digits.data(), end, number);
  const bool isNumber = error == std::errc() && parsed == end && number <= kMaxKeyNumber;
  return isNumber ? std::optional(number) : std::nullopt;
}

/// Returns whether another program left the key or value. Otherwise it is out of reach for a moment
/// only.
bool IsOdd(RegistryError error) {
  return error == RegistryError::kNotFound || error == RegistryError::kInvalid;
}

/// Returns what is known of a contact after its card was read.
Person Learn(const CardKeys& card, const Person* known) {
  Person person;
  person.oid = known == nullptr ? 0 : known->oid;
  person.uid = card.uid == kNoDigest && known != nullptr ? known->uid : card.uid;
  person.name = card.name;
  person.content = card.content;
  person.isPresent = true;
  return person;
}

}  // namespace

Result<void, RegistryError> OidMap::Load() {
  m_renaming.reset();
  return LoadBooks();
}

bool OidMap::Knows(std::u16string_view source) const {
  return m_books.contains(std::u16string(source));
}

void OidMap::Rename(std::u16string former, std::u16string now) {
  auto book = m_books.extract(former);
  if (book.empty()) {
    return;
  }
  book.key() = now;
  m_books.insert(std::move(book));
  m_renaming = {std::move(former), std::move(now)};
}

Result<void, RegistryError> OidMap::LoadBooks() {
  m_books.clear();
  m_taken = {};
  m_remarks.clear();
  m_lastKeyNumber = 0;
  const platform::OpenedKey opened = m_registry.OpenKey(kContactsKey);
  if (!opened && opened.error() == RegistryError::kNotFound) {
    return {};
  }
  if (!opened) {
    return Failure(opened.error());
  }
  for (std::uint32_t i = 0;; ++i) {
    const auto keyName = (*opened)->EnumerateSubkey(i);
    if (!keyName) {
      return Failure(keyName.error());
    }
    if (!*keyName) {
      return {};
    }
    if (auto loaded = LoadBook(**keyName); !loaded) {
      return loaded;
    }
  }
}

// Other programs can write here too. Whatever makes no sense is named and left as it is. A log-on
// that failed instead would lock the user out of all tags.
Result<void, RegistryError> OidMap::LoadBook(const std::u16string& keyName) {
  const std::u16string path = std::u16string(kContactsKey) + u'\\' + keyName;
  const auto passOver = [&](std::string why) {
    m_remarks.push_back({path, 0, std::move(why)});
    return Result<void, RegistryError>();
  };
  const std::optional<std::uint32_t> number = ParseKeyNumber(keyName);
  if (!number) {
    return passOver("the key is no address book's and is passed over");
  }
  m_lastKeyNumber = std::max(m_lastKeyNumber, *number);
  const platform::OpenedKey opened = m_registry.OpenKey(path);
  const auto value = opened ? (*opened)->Query(kSourceValue) : Failure(opened.error());
  if (!value && !IsOdd(value.error())) {
    return Failure(value.error());
  }
  auto source = value ? text::ToText(*value) : std::nullopt;
  if (m_renaming && source == m_renaming->former) {
    source = m_renaming->now;
  }
  if (!source || source->empty()) {
    return passOver("the value \"source\" names no address book, and the key is passed over");
  }
  if (m_books.contains(*source)) {
    return passOver("another key is of the same address book, and this one is passed over");
  }
  KnownBook& book = m_books[*source];
  book.keyPath = path;
  return book.contacts.Load(
      **opened,
      [&](const std::u16string& name, const std::string& what) {
        m_remarks.push_back(
            {path, 0,
             "the value \"" + text::ToUtf8(name) + "\" " + what + "; that is passed over"});
      },
      m_taken);
}

// Most log-ons meet nobody new. So the contacts are recognised first without the store, and only a
// change opens a group. Within the group the map is read and the contacts are recognised again:
// another process may have given numbers since, and no two contacts may get one number.
Result<OidMap::Oids, RegistryError> OidMap::Assign(std::span<const Book> books, Keeping keeping) {
  Oids oids = Recognise(books);
  if (keeping == Keeping::kInMemory || (!HasNews() && !m_renaming)) {
    return oids;
  }
  if (const auto stored = Store(books); !stored) {
    if (stored.error() != RegistryError::kFull && stored.error() != RegistryError::kReadOnly) {
      return Failure(stored.error());
    }
    NoteUnkept(stored.error());
  }
  // Again, as another process may have given numbers since.
  return Recognise(books);
}

void OidMap::NoteUnkept(RegistryError error) {
  Remark remark{std::u16string(kContactsKey), 0, "new contacts cannot be remembered: "};
  remark.text += error == RegistryError::kFull ? "the disk is full" : "nothing can be written";
  if (std::find(m_remarks.begin(), m_remarks.end(), remark) == m_remarks.end()) {
    m_remarks.push_back(std::move(remark));
  }
}

Result<void, RegistryError> OidMap::Store(std::span<const Book> books) {
  auto group = platform::RegistryGroup::Begin(m_registry);
  if (!group) {
    return Failure(group.error());
  }
  // Another process may have given numbers since; within the group nobody else can.
  // A store that cannot even be read is more than one that takes no writes.
  if (!LoadBooks()) {
    return Failure(RegistryError::kOther);
  }
  static_cast<void>(Recognise(books));
  for (const Book& book : books) {
    if (const auto stored = StoreBook(book.name); !stored) {
      return stored;
    }
  }
  const auto committed = group->Commit();
  if (committed) {
    for (auto& [source, book] : m_books) {
      book.contacts.SetSaved();
    }
    m_renaming.reset();
  }
  return committed;
}

Result<void, RegistryError> OidMap::StoreBook(const std::u16string& name) {
  KnownBook& known = m_books.at(name);
  const bool isRenamed = m_renaming && m_renaming->now == name;
  if (!known.contacts.HasChanged() && !isRenamed) {
    return {};
  }
  const bool isNew = known.keyPath.empty();
  if (isNew) {
    known.keyPath =
        std::u16string(kContactsKey) + u'\\' + text::FromUtf8(std::to_string(++m_lastKeyNumber));
  }
  const platform::OpenedKey opened =
      isNew ? m_registry.CreateKey(known.keyPath) : m_registry.OpenKey(known.keyPath);
  if (!opened) {
    return Failure(opened.error());
  }
  if (isNew || isRenamed) {
    if (const auto named = text::SetText(**opened, kSourceValue, name); !named) {
      return named;
    }
  }
  return known.contacts.Save(**opened);
}

OidMap::Oids OidMap::Recognise(std::span<const Book> books) {
  Oids oids;
  for (const Book& book : books) {
    oids.push_back(Recognise(book));
  }
  return oids;
}

// A contact that is known keeps its number and what is known of it is brought up to date. Everybody
// else gets a new number. A contact that is missing from a complete book is only marked: its
// number stays taken, and the contact may come back.
std::vector<std::int32_t> OidMap::Recognise(const Book& book) {
  StoredBook& contacts = m_books[book.name].contacts;
  const std::vector<CardKeys> cards = KeysOf(book);
  const std::vector<FormerKeys> former =
      contacts.HasFormerKeys() ? FormerKeysOf(book.contacts) : std::vector<FormerKeys>();
  const std::vector<std::size_t> people = MatchCards(cards, former, contacts.GetPeople()).people;
  std::vector<bool> isMet(contacts.GetPeople().size());
  std::vector<std::string> seeds;
  std::vector<std::int32_t> oids;
  oids.reserve(cards.size());
  for (std::size_t i = 0; i < cards.size(); ++i) {
    const bool isKnown = people[i] != Matches::kNobody;
    Person person = Learn(cards[i], isKnown ? &contacts.GetPeople()[people[i]] : nullptr);
    if (isKnown) {
      isMet[people[i]] = true;
      contacts.Update(people[i], person);
    } else {
      seeds = seeds.empty() ? SeedsOf(book.contacts) : std::move(seeds);
      person.oid = ChooseOid(book.name, seeds[i]);
      m_taken.Add(person.oid);
      contacts.Add(person);
    }
    oids.push_back(person.oid);
  }
  for (std::size_t i = 0; book.isComplete && i < isMet.size(); ++i) {
    Person person = contacts.GetPeople()[i];
    if (!isMet[i] && person.isPresent) {
      person.isPresent = false;
      contacts.Update(i, person);
    }
  }
  return oids;
}

bool OidMap::HasNews() const {
  return std::any_of(m_books.begin(), m_books.end(),
                     [](const auto& book) { return book.second.contacts.HasChanged(); });
}

bool OidMap::Belongs(std::int32_t oid, std::u16string_view source) const {
  const auto book = m_books.find(std::u16string(source));
  return book != m_books.end() && book->second.contacts.Holds(oid);
}

std::int32_t OidMap::ChooseOid(std::u16string_view source, const std::string& seed) const {
  // The number is taken from what it stands for. So after a store was lost, most contacts get the
  // numbers that they had, and their tags find them.
  for (std::size_t attempt = 0;; ++attempt) {
    const Digest digest =
        ComputeDigest(text::ToUtf8(source) + '\n' + seed + '\n' + std::to_string(attempt));
    const auto oid = static_cast<std::int32_t>(
        platform::LoadLittleEndian32(std::span(digest).first<sizeof(std::uint32_t)>()));
    if (oid != 0 && !m_taken.Holds(oid)) {
      return oid;
    }
  }
}

}  // namespace vcard
