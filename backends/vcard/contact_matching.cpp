#include "backends/vcard/contact_matching.h"

#include <algorithm>
#include <array>
#include <unordered_map>

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
    Index index = IndexFree(keyOfPerson);
    // Backwards, so that the first person of a key is the next to be taken.
    for (auto& [key, people] : index) {
      std::reverse(people.begin(), people.end());
    }
    for (std::size_t card = 0; card < m_cards.size(); ++card) {
      const auto found = FindFor(card, index, keyOfCard);
      if (found != index.end() && !found->second.empty()) {
        Take(card, found->second.back());
        found->second.pop_back();
      }
    }
  }

  /// Gives each card that is nobody yet the only person of its key, if there is only one. No two
  /// cards have one key.
  template <typename KeyOfPerson, typename KeyOfCard>
  void MatchSole(const KeyOfPerson& keyOfPerson, const KeyOfCard& keyOfCard) {
    if (IsDone()) {
      return;
    }
    const Index index = IndexFree(keyOfPerson);
    for (std::size_t card = 0; card < m_cards.size(); ++card) {
      const auto found = FindFor(card, index, keyOfCard);
      if (found != index.end()) {
        Take(card, SoleOf(found->second, card));
      }
    }
  }

  [[nodiscard]] Matches& GetMatches() { return m_matches; }

  static constexpr Key kNoKey{};

 private:
  using Index = std::unordered_map<Key, std::vector<std::size_t>, KeyHash>;

  [[nodiscard]] bool IsDone() const { return m_matched == m_cards.size(); }

  template <typename KeyOfPerson>
  [[nodiscard]] Index IndexFree(const KeyOfPerson& keyOfPerson) {
    Index index;
    for (const bool isPresent : {true, false}) {
      for (std::size_t person = 0; person < m_people.size(); ++person) {
        ++m_matches.looks;
        const bool isMeant = !m_isTaken[person] && m_people[person].isPresent == isPresent;
        const Key key = isMeant ? keyOfPerson(m_people[person]) : kNoKey;
        if (key != kNoKey) {
          index[key].push_back(person);
        }
      }
    }
    return index;
  }

  template <typename AnyIndex, typename KeyOfCard>
  [[nodiscard]] auto FindFor(std::size_t card, AnyIndex& index, const KeyOfCard& keyOfCard) {
    ++m_matches.looks;
    const Key key = m_matches.people[card] == Matches::kNobody ? keyOfCard(card) : kNoKey;
    return key == kNoKey ? index.end() : index.find(key);
  }

  /// Returns the only one of `people` that the card may be. Those whom the book held last time
  /// count first, and the others only if it held none of them. Returns kNobody if there is no such
  /// one.
  [[nodiscard]] std::size_t SoleOf(const std::vector<std::size_t>& people, std::size_t card) {
    std::array<std::size_t, 2> counts{};
    std::array<std::size_t, 2> last{};
    for (const std::size_t person : people) {
      ++m_matches.looks;
      const Person& known = m_people[person];
      const Digest& uid = m_cards[card].uid;
      if (uid == kNoDigest || known.uid == kNoDigest || uid == known.uid) {
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
