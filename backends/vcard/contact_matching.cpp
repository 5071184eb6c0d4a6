#include "backends/vcard/contact_matching.h"

#include <algorithm>
#include <array>

#include "backends/vcard/indexes.h"

namespace vcard {
namespace {

/// Up to three digests together; kNoDigest for those that do not count.
using Key = std::array<Digest, 3>;

struct KeyHash {
  std::size_t operator()(const Key& key) const {
    std::size_t hash = 0;
    for (const Digest& digest : key) {
      hash = hash * 31 + DigestHash()(digest);
    }
    return hash;
  }
};

/// The matches so far. Each round below makes an index of the people who are still free, by one
/// key, and looks each card up that is nobody yet. So a round takes linear time, and a later and
/// weaker sign never takes a person from an earlier one.
class Matching {
 public:
  Matching(std::span<const CardKeys> cards, std::span<const Person> people)
      : m_cards(cards), m_people(people), m_isTaken(people.size()) {
    m_matches.people.assign(cards.size(), Matches::kNobody);
  }

  /// Gives each card that is nobody yet the next free person of its key. Those whom the book held
  /// last time come before the others. Both functions return the key of a person or a card. kNoKey
  /// leaves it out.
  template <typename KeyOfPerson, typename KeyOfCard>
  void MatchEqual(const KeyOfPerson& keyOfPerson, const KeyOfCard& keyOfCard) {
    if (IsDone()) {
      return;
    }
    HashChains index = IndexFree(keyOfPerson);
    ForEachFreeCard(keyOfCard, [&](std::size_t card, const Key& key) {
      std::uint32_t* place = &index.At(KeyHash()(key));
      while (*place != HashChains::kEnd && keyOfPerson(m_people[*place]) != key) {
        place = &index.Next(*place);
      }
      if (const std::uint32_t person = *place; person != HashChains::kEnd) {
        // Nobody meets the person again, so that a thousand cards of one key take a thousand steps.
        *place = index.Next(person);
        Take(card, person);
      }
    });
  }

  /// Gives each card that is nobody yet the only person of its key, if there is only one. No two
  /// cards have one key.
  template <typename KeyOfPerson, typename KeyOfCard>
  void MatchSole(const KeyOfPerson& keyOfPerson, const KeyOfCard& keyOfCard) {
    if (IsDone()) {
      return;
    }
    HashChains index = IndexFree(keyOfPerson);
    ForEachFreeCard(keyOfCard, [&](std::size_t card, const Key& key) {
      Take(card, FindSole(index, keyOfPerson, key, card));
    });
  }

  [[nodiscard]] Matches& GetMatches() { return m_matches; }

  static constexpr Key kNoKey{};

 private:
  [[nodiscard]] bool IsDone() const { return m_matched == m_cards.size(); }

  /// The chains begin with the people whom the book held last time, and go on in their order.
  template <typename KeyOfPerson>
  [[nodiscard]] HashChains IndexFree(const KeyOfPerson& keyOfPerson) {
    HashChains index(m_people.size());
    for (const bool isPresent : {false, true}) {
      for (std::size_t person = m_people.size(); person-- > 0;) {
        ++m_matches.looks;
        const bool isMeant = !m_isTaken[person] && m_people[person].isPresent == isPresent;
        const Key key = isMeant ? keyOfPerson(m_people[person]) : kNoKey;
        if (key != kNoKey) {
          index.AddInFront(KeyHash()(key), person);
        }
      }
    }
    return index;
  }

  template <typename KeyOfCard, typename Each>
  void ForEachFreeCard(const KeyOfCard& keyOfCard, const Each& each) {
    for (std::size_t card = 0; card < m_cards.size(); ++card) {
      ++m_matches.looks;
      const Key key = m_matches.people[card] == Matches::kNobody ? keyOfCard(card) : kNoKey;
      if (key != kNoKey) {
        each(card, key);
      }
    }
  }

  /// Returns the only person of the key that the card may be. Those whom the book held last time
  /// count first, and the others only if it held none of them. Returns kNobody if there is no such
  /// one.
  template <typename KeyOfPerson>
  [[nodiscard]] std::size_t FindSole(HashChains& index, const KeyOfPerson& keyOfPerson,
                                     const Key& key, std::size_t card) {
    std::array<std::size_t, 2> counts{};
    std::array<std::size_t, 2> last{};
    for (std::uint32_t person = index.At(KeyHash()(key)); person != HashChains::kEnd;
         person = index.Next(person)) {
      ++m_matches.looks;
      const Person& known = m_people[person];
      const Digest& uid = m_cards[card].uid;
      if (keyOfPerson(known) == key &&
          (uid == kNoDigest || known.uid == kNoDigest || uid == known.uid)) {
        const std::size_t absence = known.isPresent ? 0 : 1;
        ++counts[absence];
        last[absence] = person;
      }
    }
    const std::size_t absence = counts[0] > 0 ? 0 : 1;
    return counts[absence] == 1 ? last[absence] : Matches::kNobody;
  }

  void Take(std::size_t card, std::size_t person) {
    if (person != Matches::kNobody) {
      m_matches.people[card] = person;
      m_isTaken[person] = true;
      ++m_matched;
    }
  }

  std::span<const CardKeys> m_cards;
  std::span<const Person> m_people;
  Matches m_matches;
  std::vector<bool> m_isTaken;
  std::size_t m_matched = 0;
};

constexpr Key kNoKey = Matching::kNoKey;

void MatchByUid(std::span<const CardKeys> cards, Matching& matching) {
  if (std::ranges::all_of(cards, [](const CardKeys& card) { return card.uid == kNoDigest; })) {
    return;  // Most phones write none.
  }
  matching.MatchEqual(
      [](const Person& known) {
        return known.uid == kNoDigest ? kNoKey : Key{known.uid, known.name, known.content};
      },
      [&](std::size_t card) {
        const CardKeys& keys = cards[card];
        return keys.uid == kNoDigest ? kNoKey : Key{keys.uid, keys.name, keys.content};
      });
  matching.MatchEqual(
      [](const Person& known) {
        return known.uid == kNoDigest ? kNoKey : Key{known.uid, known.name};
      },
      [&](std::size_t card) {
        return cards[card].uid == kNoDigest ? kNoKey : Key{cards[card].uid, cards[card].name};
      });
  matching.MatchSole(
      [](const Person& known) { return Key{known.uid}; },
      [&](std::size_t card) { return cards[card].isUidUnique ? Key{cards[card].uid} : kNoKey; });
}

void MatchByFormerKeys(std::span<const FormerKeys> former, Matching& matching) {
  const auto keyOfPerson = [](const Person& known) { return Key{known.former}; };
  for (const auto which : {&FormerKeys::content, &FormerKeys::uid, &FormerKeys::contentBeforeUid}) {
    matching.MatchEqual(keyOfPerson, [&](std::size_t card) { return Key{former[card].*which}; });
  }
}

/// A person without a UID may be on any card, one with a UID only on a card without.
void MatchByContent(std::span<const CardKeys> cards, Matching& matching) {
  matching.MatchEqual(
      [](const Person& known) { return known.uid == kNoDigest ? Key{known.content} : kNoKey; },
      [&](std::size_t card) { return Key{cards[card].content}; });
  matching.MatchEqual([](const Person& known) { return Key{known.content}; },
                      [&](std::size_t card) {
                        return cards[card].uid == kNoDigest ? Key{cards[card].content} : kNoKey;
                      });
}

}  // namespace

Matches MatchCards(std::span<const CardKeys> cards, std::span<const FormerKeys> former,
                   std::span<const Person> people) {
  Matching matching(cards, people);
  MatchByUid(cards, matching);
  if (!former.empty()) {
    MatchByFormerKeys(former, matching);
  }
  MatchByContent(cards, matching);
  matching.MatchSole(
      [](const Person& known) { return Key{known.name}; },
      [&](std::size_t card) { return cards[card].isNameUnique ? Key{cards[card].name} : kNoKey; });
  return std::move(matching.GetMatches());
}

}  // namespace vcard
