#include "platform/vcard/identities.h"

#include <cstddef>
#include <unordered_set>

#include "platform/text/utf.h"

namespace vcard {
namespace {

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

}  // namespace

std::vector<std::string> IdentitiesOf(std::span<const ContactData> contacts) {
  std::vector<std::string> identities;
  identities.reserve(contacts.size());
  std::unordered_set<std::string> given;
  for (const ContactData& contact : contacts) {
    std::string identity = "uid:" + contact.uid;
    if (contact.uid.empty() || given.contains(identity)) {
      identity = "content:" + contact.uid + ContentOf(contact);
    }
    const std::string unnumbered = identity;
    for (std::size_t number = 2; !given.insert(identity).second; ++number) {
      identity = unnumbered + '\n' + std::to_string(number);
    }
    identities.push_back(std::move(identity));
  }
  return identities;
}

}  // namespace vcard
