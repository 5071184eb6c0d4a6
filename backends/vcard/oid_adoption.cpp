#include <map>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "backends/text/utf.h"
#include "backends/vcard/oid_map.h"

namespace vcard {

using platform::Failure;
using platform::RegistryError;
using platform::Result;

// Numbers that another store gave, such as the one that a backup was made of. Its contacts are
// recognised as cards are that are read again: a person of the other map stands for a card.

namespace {

std::vector<CardKeys> CardsOf(std::span<const Person> people) {
  std::map<Digest, int> uids;
  std::map<Digest, int> names;
  for (const Person& person : people) {
    ++uids[person.uid];
    ++names[person.name];
  }
  std::vector<CardKeys> cards;
  cards.reserve(people.size());
  for (const Person& person : people) {
    cards.push_back({{person.uid, person.name, person.content},
                     uids[person.uid] == 1,
                     names[person.name] == 1});
  }
  return cards;
}

/// A number is given once in a book. So two maps that have a past in common have the same contact
/// under the same number, with a sign in common.
bool IsSamePerson(const Person& a, const Person& b) {
  const auto share = [](const Digest& one, const Digest& other) {
    return one != kNoDigest && one == other;
  };
  return a.oid == b.oid && (share(a.uid, b.uid) || share(a.name, b.name) ||
                            share(a.content, b.content) || share(a.former, b.former));
}

/// Returns for each person of `theirs` an index in `ours`, or Matches::kNobody.
std::vector<std::size_t> MatchPeople(std::span<const Person> theirs, std::span<const Person> ours) {
  std::unordered_map<std::int32_t, std::size_t> byOid;
  for (std::size_t i = 0; i < ours.size(); ++i) {
    byOid.emplace(ours[i].oid, i);
  }
  const std::vector<CardKeys> cards = CardsOf(theirs);
  std::vector<std::size_t> people = MatchCards(cards, {}, ours).people;
  std::unordered_set<std::size_t> met;
  for (std::size_t i = 0; i < theirs.size(); ++i) {
    const auto same = byOid.find(theirs[i].oid);
    if (same != byOid.end() && IsSamePerson(theirs[i], ours[same->second])) {
      people[i] = same->second;
      met.insert(same->second);
    }
  }
  for (std::size_t i = 0; i < theirs.size(); ++i) {
    const bool isSame = people[i] != Matches::kNobody && theirs[i].oid == ours[people[i]].oid;
    if (!isSame && people[i] != Matches::kNobody && !met.insert(people[i]).second) {
      people[i] = Matches::kNobody;
    }
  }
  return people;
}

}  // namespace

OidMap::Numbers OidMap::Recognise(const OidMap& other,
                                  const std::function<bool(std::u16string_view)>& isUsed) const {
  Numbers numbers;
  for (const auto& [source, theirs] : other.m_books) {
    const std::span<const Person> people = theirs.contacts.GetPeople();
    const auto recogniseIn = [&](const KnownBook& ours) {
      const std::vector<std::size_t> found = MatchPeople(people, ours.contacts.GetPeople());
      for (std::size_t i = 0; i < people.size(); ++i) {
        if (found[i] != Matches::kNobody && ours.contacts.GetPeople()[found[i]].isPresent) {
          numbers.emplace(people[i].oid, ours.contacts.GetPeople()[found[i]].oid);
        }
      }
    };
    const auto same = m_books.find(source);
    if (same != m_books.end() && isUsed(source)) {
      recogniseIn(same->second);
      continue;
    }
    // In the order of the names, so that the outcome is always the same.
    std::map<std::u16string_view, const KnownBook*> used;
    for (const auto& [name, book] : m_books) {
      if (isUsed(name)) {
        used.emplace(name, &book);
      }
    }
    for (const auto& [name, book] : used) {
      recogniseIn(*book);
    }
  }
  return numbers;
}

OidMap::Numbers OidMap::Adopt(const OidMap& other) {
  Numbers numbers;
  for (const auto& [source, theirs] : other.m_books) {
    StoredBook& ours = m_books[source].contacts;
    const std::span<const Person> people = theirs.contacts.GetPeople();
    const std::vector<std::size_t> found = MatchPeople(people, ours.GetPeople());
    for (std::size_t i = 0; i < people.size(); ++i) {
      if (found[i] != Matches::kNobody) {
        numbers.emplace(people[i].oid, ours.GetPeople()[found[i]].oid);
        continue;
      }
      Person person = people[i];
      if (person.former != kNoDigest) {
        continue;
      }
      if (!m_taken.Add(person.oid)) {
        person.oid = ChooseOid(source, "adopted:" + std::to_string(person.oid));
        m_taken.Add(person.oid);
      }
      numbers.emplace(people[i].oid, person.oid);
      ours.Add(person);
    }
  }
  return numbers;
}

Result<OidMap::Numbers, RegistryError> OidMap::Adopt(const OidMap& other, Keeping keeping) {
  if (keeping == Keeping::kInMemory) {
    return Adopt(other);
  }
  auto group = platform::RegistryGroup::Begin(m_registry);
  if (!group) {
    return Failure(group.error());
  }
  // Another process may have given numbers since; within the group nobody else can.
  if (!LoadBooks()) {
    return Failure(RegistryError::kOther);
  }
  Numbers numbers = Adopt(other);
  for (const auto& [source, theirs] : other.m_books) {
    if (const auto stored = StoreBook(source); !stored) {
      return Failure(stored.error());
    }
  }
  if (const auto committed = group->Commit(); !committed) {
    return Failure(committed.error());
  }
  for (auto& [source, book] : m_books) {
    book.contacts.SetSaved();
  }
  return numbers;
}

}  // namespace vcard
