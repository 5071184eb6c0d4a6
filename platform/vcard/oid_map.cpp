#include "platform/vcard/oid_map.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "platform/little_endian.h"
#include "platform/registry_text.h"
#include "platform/text/utf.h"
#include "platform/vcard/registry_names.h"

namespace vcard {

using platform::RegistryError;
using platform::RegistryType;

namespace {

constexpr std::size_t kOidSize = 4;
constexpr std::size_t kEntrySize = sizeof(Digest) + kOidSize;
constexpr std::uint32_t kMaxKeyNumber = 1'000'000;

std::u16string Decimal(std::size_t number) { return text::FromUtf8(std::to_string(number)); }

std::optional<std::uint32_t> ParseKeyNumber(const std::u16string& keyName) {
  const std::string digits = text::ToUtf8(keyName);
  std::uint32_t number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [parsed, error] = std::from_chars(digits.data(), end, number);
  const bool isNumber = error == std::errc() && parsed == end && number <= kMaxKeyNumber;
  return isNumber ? std::optional(number) : std::nullopt;
}

std::int32_t LoadOid(std::span<const std::byte, kOidSize> bytes) {
  return static_cast<std::int32_t>(platform::LoadLittleEndian32(bytes));
}

}  // namespace

bool OidMap::Load() {
  m_books.clear();
  m_taken.clear();
  m_lastKeyNumber = 0;
  const platform::OpenedKey opened = m_registry.OpenKey(kContactsKey);
  if (opened.error == RegistryError::kNotFound) {
    return true;
  }
  if (opened.error != RegistryError::kNone) {
    return false;
  }
  std::u16string keyName;
  for (std::uint32_t i = 0;; ++i) {
    const RegistryError error = opened.key->EnumerateSubkey(i, keyName);
    if (error != RegistryError::kNone) {
      return error == RegistryError::kNoMoreItems;
    }
    if (!LoadBook(keyName)) {
      return false;
    }
  }
}

bool OidMap::LoadBook(const std::u16string& keyName) {
  const std::optional<std::uint32_t> number = ParseKeyNumber(keyName);
  Book book;
  book.keyPath = std::u16string(kContactsKey) + u'\\' + keyName;
  const platform::OpenedKey opened = m_registry.OpenKey(book.keyPath);
  platform::RegistryValue value;
  if (!number || !opened.key || opened.key->Query(kSourceValue, value) != RegistryError::kNone) {
    return false;
  }
  const std::optional<std::u16string> source = ToText(value);
  if (!source || m_books.contains(*source)) {
    return false;
  }
  RegistryError error = RegistryError::kNone;
  while ((error = opened.key->Query(Decimal(book.valueCount), value)) == RegistryError::kNone) {
    if (value.type != RegistryType::kBinary || !LoadEntries(value.bytes, book)) {
      return false;
    }
    book.lastValue = value.bytes;
    ++book.valueCount;
  }
  m_lastKeyNumber = std::max(m_lastKeyNumber, *number);
  m_books.emplace(*source, std::move(book));
  return error == RegistryError::kNotFound;
}

bool OidMap::LoadEntries(std::span<const std::byte> entries, Book& book) {
  if (entries.size() % kEntrySize != 0) {
    return false;
  }
  for (; !entries.empty(); entries = entries.subspan(kEntrySize)) {
    Digest digest{};
    std::copy_n(entries.begin(), digest.size(), digest.begin());
    const std::int32_t oid = LoadOid(entries.subspan(digest.size()).first<kOidSize>());
    const bool isNew = book.oids.emplace(digest, oid).second;
    if (oid == 0 || !isNew || !m_taken.insert(oid).second) {
      return false;
    }
    book.given.insert(oid);
  }
  return true;
}

bool OidMap::Assign(std::span<const SourceContacts> contacts,
                    std::vector<std::vector<std::int32_t>>& oids) {
  if (!IsComplete(contacts) && !GiveMissing(contacts)) {
    return false;
  }
  oids = NumbersOf(contacts);
  return true;
}

void OidMap::AssignInMemory(std::span<const SourceContacts> contacts,
                            std::vector<std::vector<std::int32_t>>& oids) {
  for (const SourceContacts& each : contacts) {
    m_books.try_emplace(each.source);
    static_cast<void>(GiveInMemory(each));
  }
  oids = NumbersOf(contacts);
}

std::vector<std::vector<std::int32_t>> OidMap::NumbersOf(
    std::span<const SourceContacts> contacts) const {
  std::vector<std::vector<std::int32_t>> oids;
  for (const SourceContacts& each : contacts) {
    std::vector<std::int32_t>& ofBook = oids.emplace_back();
    for (const std::string& uid : each.uids) {
      ofBook.push_back(m_books.at(each.source).oids.at(ComputeDigest(uid)));
    }
  }
  return oids;
}

bool OidMap::Belongs(std::int32_t oid, std::u16string_view source) const {
  const auto book = m_books.find(std::u16string(source));
  return book != m_books.end() && book->second.given.contains(oid);
}

bool OidMap::IsComplete(std::span<const SourceContacts> contacts) const {
  return std::all_of(contacts.begin(), contacts.end(), [this](const SourceContacts& each) {
    const auto book = m_books.find(each.source);
    return std::all_of(each.uids.begin(), each.uids.end(), [&](const std::string& uid) {
      return book != m_books.end() && book->second.oids.contains(ComputeDigest(uid));
    });
  });
}

bool OidMap::GiveMissing(std::span<const SourceContacts> contacts) {
  platform::RegistryGroup group(m_registry);
  // Another process may have given numbers since; within the group nobody else can.
  if (group.BeginError() != RegistryError::kNone || !Load()) {
    return false;
  }
  return std::all_of(contacts.begin(), contacts.end(),
                     [this](const SourceContacts& each) { return GiveMissing(each); }) &&
         group.Commit() == RegistryError::kNone;
}

bool OidMap::GiveMissing(const SourceContacts& contacts) {
  if (contacts.uids.empty()) {
    return true;
  }
  if (!m_books.contains(contacts.source) && !MakeBook(contacts.source)) {
    return false;
  }
  const std::vector<std::byte> entries = GiveInMemory(contacts);
  return Store(m_books.at(contacts.source), entries);
}

std::vector<std::byte> OidMap::GiveInMemory(const SourceContacts& contacts) {
  Book& book = m_books.at(contacts.source);
  std::vector<std::byte> entries;
  for (const std::string& uid : contacts.uids) {
    const Digest digest = ComputeDigest(uid);
    if (book.oids.contains(digest)) {
      continue;
    }
    const std::int32_t oid = ChooseOid(contacts.source, uid);
    book.oids.emplace(digest, oid);
    book.given.insert(oid);
    m_taken.insert(oid);
    entries.insert(entries.end(), digest.begin(), digest.end());
    entries.resize(entries.size() + kOidSize);
    platform::StoreLittleEndian32(std::span(entries).last<kOidSize>(),
                                  static_cast<std::uint32_t>(oid));
  }
  return entries;
}

bool OidMap::MakeBook(const std::u16string& source) {
  Book book;
  book.keyPath = std::u16string(kContactsKey) + u'\\' + Decimal(++m_lastKeyNumber);
  const platform::OpenedKey made = m_registry.CreateKey(book.keyPath);
  if (!made.key || SetText(*made.key, kSourceValue, source) != RegistryError::kNone) {
    return false;
  }
  m_books.emplace(source, std::move(book));
  return true;
}

bool OidMap::Store(Book& book, std::span<const std::byte> entries) {
  const platform::OpenedKey opened = m_registry.OpenKey(book.keyPath);
  if (!opened.key) {
    return false;
  }
  while (!entries.empty()) {
    if (book.valueCount == 0 || book.lastValue.size() >= kEntriesPerValue * kEntrySize) {
      ++book.valueCount;
      book.lastValue.clear();
    }
    const std::size_t room = kEntriesPerValue * kEntrySize - book.lastValue.size();
    const auto taken = entries.first(std::min(room, entries.size()));
    book.lastValue.insert(book.lastValue.end(), taken.begin(), taken.end());
    if (opened.key->Set(Decimal(book.valueCount - 1), RegistryType::kBinary, book.lastValue) !=
        RegistryError::kNone) {
      return false;
    }
    entries = entries.subspan(taken.size());
  }
  return true;
}

std::int32_t OidMap::ChooseOid(std::u16string_view source, const std::string& uid) const {
  // Taken from what the number stands for, so that a store that was lost gives most contacts the
  // numbers they had.
  for (std::size_t attempt = 0;; ++attempt) {
    const Digest digest =
        ComputeDigest(text::ToUtf8(source) + '\n' + uid + '\n' + std::to_string(attempt));
    const std::int32_t oid = LoadOid(std::span(digest).first<kOidSize>());
    if (oid != 0 && !m_taken.contains(oid)) {
      return oid;
    }
  }
}

}  // namespace vcard
