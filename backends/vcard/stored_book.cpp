#include "backends/vcard/stored_book.h"

#include <algorithm>
#include <array>

#include "backends/text/utf.h"
#include "platform/file_system.h"

namespace vcard {

using platform::RegistryError;
using platform::RegistryType;

namespace {

constexpr const char16_t* kPeople = u"people";
constexpr std::size_t kWord = 4;
constexpr std::size_t kPersonSize = 2 * kWord + 3 * sizeof(Digest);
constexpr std::size_t kFormerSize = sizeof(Digest) + kWord;
constexpr std::uint32_t kPresent = 1;

using Digests = std::array<Digest Person::*, 3>;
constexpr Digests kDigests = {&Person::uid, &Person::name, &Person::content};

std::uint32_t LoadWord(std::span<const std::byte> bytes) {
  return platform::LoadLittleEndian32(bytes.first<kWord>());
}

Digest LoadDigest(std::span<const std::byte> bytes) {
  Digest digest{};
  std::copy_n(bytes.begin(), digest.size(), digest.begin());
  return digest;
}

Person LoadPerson(std::span<const std::byte> entry) {
  Person person;
  person.oid = static_cast<std::int32_t>(LoadWord(entry));
  person.isPresent = LoadWord(entry.subspan(kWord)) == kPresent;
  entry = entry.subspan(2 * kWord);
  for (Digest Person::*const member : kDigests) {
    person.*member = LoadDigest(entry);
    entry = entry.subspan(sizeof(Digest));
  }
  return person;
}

void AppendWord(std::uint32_t word, std::vector<std::byte>& bytes) {
  bytes.resize(bytes.size() + kWord);
  platform::StoreLittleEndian32(std::span(bytes).last<kWord>(), word);
}

void AppendPerson(const Person& person, std::vector<std::byte>& bytes) {
  AppendWord(static_cast<std::uint32_t>(person.oid), bytes);
  AppendWord(person.isPresent ? kPresent : 0, bytes);
  for (const Digest Person::*const member : kDigests) {
    bytes.insert(bytes.end(), (person.*member).begin(), (person.*member).end());
  }
}

bool SameKnowledge(const Person& a, const Person& b) {
  return a.isPresent == b.isPresent &&
         std::all_of(kDigests.begin(), kDigests.end(),
                     [&](auto member) { return a.*member == b.*member; });
}

std::string Describe(std::size_t odd, std::size_t rest) {
  std::string what;
  if (odd > 0) {
    what = "holds " + std::to_string(odd) + " entries that make no sense";
  }
  if (rest > 0) {
    what += (odd > 0 ? " and " : "") + ("ends with " + std::to_string(rest)) +
            " bytes that are no entry";
  }
  return what;
}

}  // namespace

platform::Result<void, RegistryError> StoredBook::ForEachValue(platform::RegistryKey& key,
                                                               const std::u16string& prefix,
                                                               const Series& each) {
  for (std::size_t number = 0;; ++number) {
    const std::u16string name = prefix + text::FromUtf8(std::to_string(number));
    const auto value = key.Query(name);
    if (!value && value.error() == RegistryError::kNotFound) {
      return {};
    }
    if (!value) {
      return platform::Failure(value.error());
    }
    each(name, *value);
  }
}

platform::Result<void, RegistryError> StoredBook::Load(platform::RegistryKey& key, const Sink& sink,
                                                       OidIndex& taken) {
  using LoadEntries = void (StoredBook::*)(std::span<const std::byte>, OidIndex&, std::size_t&);
  // Whether the value holds nothing but entries.
  const auto load = [&](const std::u16string& name, const platform::RegistryValue& value,
                        std::size_t entrySize, LoadEntries loadEntries) {
    if (value.type != RegistryType::kBinary) {
      sink(name, "is of another type");
      return false;
    }
    std::size_t odd = 0;
    const std::size_t rest = value.bytes.size() % entrySize;
    (this->*loadEntries)(std::span(value.bytes).first(value.bytes.size() - rest), taken, odd);
    if (odd > 0 || rest > 0) {
      sink(name, Describe(odd, rest));
    }
    return odd == 0 && rest == 0;
  };
  const auto read = ForEachValue(key, kPeople, [&](const auto& name, const auto& value) {
    m_values.emplace_back();
    m_values.back().isOdd = !load(name, value, kPersonSize, &StoredBook::LoadPeople);
  });
  if (!read) {
    return read;
  }
  return ForEachValue(key, u"", [&](const auto& name, const auto& value) {
    static_cast<void>(load(name, value, kFormerSize, &StoredBook::LoadFormer));
  });
}

// A number that occurs twice in the book is one person, and the later entry counts. A number that
// another book has already is nobody here: one number must never mean two people.
void StoredBook::LoadPeople(std::span<const std::byte> bytes, OidIndex& taken, std::size_t& odd) {
  for (; !bytes.empty(); bytes = bytes.subspan(kPersonSize)) {
    const Person person = LoadPerson(bytes);
    const std::uint32_t known = m_indexes.Find(person.oid);
    const bool isOurs = known != OidIndex::kNone;
    if (person.oid == 0 || (!isOurs && !taken.Add(person.oid))) {
      ++odd;
      continue;
    }
    const std::size_t index = isOurs ? known : m_people.size();
    if (isOurs) {
      m_people[index] = person;
      m_valueOf[index] = m_values.size() - 1;
    } else {
      m_indexes.Add(person.oid, index);
      m_people.push_back(person);
      m_valueOf.push_back(m_values.size() - 1);
    }
    m_values.back().people.push_back(index);
  }
}

void StoredBook::LoadFormer(std::span<const std::byte> bytes, OidIndex& taken, std::size_t& odd) {
  for (; !bytes.empty(); bytes = bytes.subspan(kFormerSize)) {
    Person person;
    person.former = LoadDigest(bytes);
    person.oid = static_cast<std::int32_t>(LoadWord(bytes.subspan(sizeof(Digest))));
    const std::uint32_t known = m_indexes.Find(person.oid);
    if (known != OidIndex::kNone && m_people[known].former == kNoDigest) {
      continue;  // More is known of the contact since.
    }
    if (person.oid == 0 || person.former == kNoDigest || !taken.Add(person.oid)) {
      ++odd;
      continue;
    }
    m_indexes.Add(person.oid, m_people.size());
    m_people.push_back(person);
    m_valueOf.push_back(kNoValue);
    m_hasFormerKeys = true;
  }
}

// A book of thousands is a few values of at most 4,096 people each. Only those with a change are
// written.
platform::Result<void, RegistryError> StoredBook::Save(platform::RegistryKey& key) const {
  for (std::size_t number = 0; number < m_values.size(); ++number) {
    const Value& value = m_values[number];
    if (!value.hasChanged) {
      continue;
    }
    std::vector<std::byte> bytes;
    bytes.reserve(value.people.size() * kPersonSize);
    for (const std::size_t index : value.people) {
      AppendPerson(m_people[index], bytes);
    }
    const auto written =
        key.Set(kPeople + text::FromUtf8(std::to_string(number)), RegistryType::kBinary, bytes);
    if (!written) {
      return written;
    }
  }
  return {};
}

void StoredBook::SetSaved() {
  for (Value& value : m_values) {
    value.hasChanged = false;
  }
}

bool StoredBook::HasChanged() const {
  return std::any_of(m_values.begin(), m_values.end(),
                     [](const Value& value) { return value.hasChanged; });
}

void StoredBook::Add(const Person& person) {
  const std::size_t index = m_people.size();
  m_indexes.Add(person.oid, index);
  m_people.push_back(person);
  m_valueOf.push_back(kNoValue);
  PutIntoAValue(index);
}

void StoredBook::Update(std::size_t index, const Person& person) {
  if (SameKnowledge(m_people[index], person)) {
    return;
  }
  m_people[index] = person;
  PutIntoAValue(index);
}

// A person who changes stays in the value that holds it, so one changed contact writes one value of
// a few. A value that holds something odd is never written. Its person goes into the last value,
// and counts there, since later entries win.
void StoredBook::PutIntoAValue(std::size_t index) {
  std::size_t& place = m_valueOf[index];
  if (place == kNoValue || m_values[place].isOdd) {
    if (m_values.empty() || m_values.back().isOdd ||
        m_values.back().people.size() >= kPeoplePerValue) {
      m_values.emplace_back();
    }
    place = m_values.size() - 1;
    m_values[place].people.push_back(index);
  }
  m_values[place].hasChanged = true;
}

}  // namespace vcard
