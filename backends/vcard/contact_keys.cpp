#include "backends/vcard/contact_keys.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <span>
#include <unordered_map>

#include "backends/text/utf.h"
#include "backends/vcard/indexes.h"

namespace vcard {
namespace {

using Counts = std::unordered_map<Digest, std::size_t, DigestHash>;

std::string UidKey(const std::string& uid) { return "uid:" + uid; }

/// Makes equal texts differ, by how often each came before: the second of its kind ends with "\n2".
/// Counting digests keeps this linear, also for thousands of cards with one text.
class Numbered {
 public:
  [[nodiscard]] std::string operator()(std::string text) {
    const std::size_t count = ++m_counts[ComputeDigest(text)];
    return count == 1 ? text : text + '\n' + std::to_string(count);
  }

 private:
  Counts m_counts;
};

std::string FormerContentKey(const std::string& uid, const ContactData& contact) {
  return "content:" + uid +
         (contact.formerContent.empty() ? ContentOf(contact) : contact.formerContent);
}

/// Marks each card of which no other one, and no torn one, has the same digest.
void MarkUnique(std::span<const ContactSigns> torn, Digest ContactSigns::*digest,
                bool CardKeys::*mark, std::vector<CardKeys>& cards) {
  const auto digestOf = [&](std::size_t card) -> const Digest& {
    return card < cards.size() ? cards[card].*digest : torn[card - cards.size()].*digest;
  };
  const std::size_t count = cards.size() + torn.size();
  HashChains firsts(count);
  for (std::size_t card = 0; card < count; ++card) {
    const Digest& own = digestOf(card);
    const std::size_t hash = DigestHash()(own);
    std::uint32_t first = firsts.At(hash);
    while (first != HashChains::kEnd && digestOf(first) != own) {
      first = firsts.Next(first);
    }
    const bool isFirst = first == HashChains::kEnd;
    if (isFirst) {
      firsts.AddInFront(hash, card);
    } else if (first < cards.size()) {
      cards[first].*mark = false;
    }
    if (card < cards.size()) {
      cards[card].*mark = isFirst && own != kNoDigest;
    }
  }
}

}  // namespace

std::u16string FullNameOf(const ContactData& contact) {
  std::u16string name;
  for (const std::u16string* part : {&contact.firstName, &contact.middleName, &contact.lastName}) {
    name += name.empty() || part->empty() ? u"" : u" ";
    name += *part;
  }
  return name.empty() ? contact.companyName : name;
}

std::string ContentOf(const ContactData& contact) {
  constexpr std::size_t kUsualLength = 200;
  std::string content;
  content.reserve(kUsualLength);
  const auto add = [&content](const std::u16string& part) {
    content += '\n';
    text::AppendUtf8(part, content);
  };
  add(contact.lastName);
  add(contact.firstName);
  add(contact.middleName);
  add(contact.companyName);
  for (const std::u16string& number : contact.numbers) {
    add(number);
  }
  return content;
}

ContactSigns SignsOf(const ContactData& contact) {
  ContactSigns signs;
  if (!contact.uid.empty()) {
    signs.uid = ComputeDigest(contact.uid);
  }
  if (const std::u16string name = FullNameOf(contact); !name.empty()) {
    signs.name = ComputeDigest(text::ToUtf8(name));
  }
  signs.content = ComputeDigest(ContentOf(contact));
  return signs;
}

std::vector<CardKeys> KeysOf(const Book& book) {
  std::vector<CardKeys> keys;
  keys.reserve(book.contacts.size());
  for (std::size_t i = 0; i < book.contacts.size(); ++i) {
    keys.push_back({book.contacts.GetSigns(i)});
  }
  // A card that was cut off still has its name: another one of that name is not the only one.
  std::vector<ContactSigns> torn;
  std::ranges::transform(book.torn, std::back_inserter(torn), SignsOf);
  MarkUnique(torn, &ContactSigns::uid, &CardKeys::isUidUnique, keys);
  MarkUnique(torn, &ContactSigns::name, &CardKeys::isNameUnique, keys);
  return keys;
}

// Former versions filed a contact under its UID or its content, and numbered equal contents in the
// order of the cards. The same is worked out here, so it must not change.
std::vector<FormerKeys> FormerKeysOf(const ContactPool& contacts) {
  std::vector<FormerKeys> keys;
  Numbered numbered;
  for (const ContactData contact : contacts) {
    FormerKeys& each = keys.emplace_back();
    each.content = ComputeDigest(numbered(FormerContentKey(contact.uid, contact)));
    if (!contact.uid.empty()) {
      each.uid = ComputeDigest(UidKey(contact.uid));
      each.contentBeforeUid = ComputeDigest(FormerContentKey("", contact));
    }
  }
  return keys;
}

// A UID is the best seed, since the content may change. Only the first card of a UID gets it: the
// others need numbers of their own.
std::vector<std::string> SeedsOf(const ContactPool& contacts) {
  std::vector<std::string> seeds;
  std::unordered_map<std::string, std::size_t> uids;
  Numbered numbered;
  for (const ContactData contact : contacts) {
    const bool isFirst = !contact.uid.empty() && ++uids[contact.uid] == 1;
    seeds.push_back(isFirst ? UidKey(contact.uid)
                            : numbered("content:" + contact.uid + ContentOf(contact)));
  }
  return seeds;
}

}  // namespace vcard
