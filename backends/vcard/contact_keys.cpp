#include "backends/vcard/contact_keys.h"

#include <cstddef>
#include <unordered_map>

#include "backends/text/utf.h"

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

CardKeys KeysOf(const ContactData& contact) {
  CardKeys keys;
  if (!contact.uid.empty()) {
    keys.uid = ComputeDigest(contact.uid);
  }
  if (const std::u16string name = FullNameOf(contact); !name.empty()) {
    keys.name = ComputeDigest(text::ToUtf8(name));
  }
  keys.content = ComputeDigest(ContentOf(contact));
  return keys;
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
  std::string content;
  const auto add = [&content](const std::u16string& part) {
    content += '\n';
    content += text::ToUtf8(part);
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

std::vector<CardKeys> KeysOf(const Book& book) {
  std::vector<CardKeys> keys;
  Counts uids;
  Counts names;
  const auto count = [&](const CardKeys& each) {
    ++uids[each.uid];
    ++names[each.name];
  };
  for (const ContactData& contact : book.contacts) {
    keys.push_back(KeysOf(contact));
    count(keys.back());
  }
  // A card that was cut off still has its name: another one of that name is not the only one.
  for (const ContactData& contact : book.torn) {
    count(KeysOf(contact));
  }
  for (CardKeys& each : keys) {
    each.isUidUnique = each.uid != kNoDigest && uids[each.uid] == 1;
    each.isNameUnique = each.name != kNoDigest && names[each.name] == 1;
  }
  return keys;
}

// Former versions filed a contact under its UID or its content, and numbered equal contents in the
// order of the cards. The same is worked out here, so it must not change.
std::vector<FormerKeys> FormerKeysOf(std::span<const ContactData> contacts) {
  std::vector<FormerKeys> keys;
  Numbered numbered;
  for (const ContactData& contact : contacts) {
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
std::vector<std::string> SeedsOf(std::span<const ContactData> contacts) {
  std::vector<std::string> seeds;
  std::unordered_map<std::string, std::size_t> uids;
  Numbered numbered;
  for (const ContactData& contact : contacts) {
    const bool isFirst = !contact.uid.empty() && ++uids[contact.uid] == 1;
    seeds.push_back(isFirst ? UidKey(contact.uid)
                            : numbered("content:" + contact.uid + ContentOf(contact)));
  }
  return seeds;
}

}  // namespace vcard
