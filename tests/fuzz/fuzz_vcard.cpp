// Reads arbitrary bytes as vCards: nothing in them may crash the parser, or read otherwise when the
// bytes arrive in other pieces.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "backends/vcard/contact_matching.h"
#include "backends/vcard/content_line.h"
#include "tests/backends/vcard/read_cards.h"
#include "tests/fuzz/require.h"

namespace {

void RequireShownText(const std::u16string& text) {
  Require(std::all_of(text.begin(), text.end(), [](char16_t c) { return c >= u' '; }),
          "a text is on one line");
  Require(text.empty() || (text.front() != u' ' && text.back() != u' '),
          "a text has no blanks at its ends");
}

/// Each contact of a book is another one, and the same one when the book is read again.
void RequireRecognised(const std::vector<vcard::ContactData>& contacts) {
  const std::vector<vcard::CardKeys> cards = vcard::KeysOf({u"book", contacts, true});
  std::vector<vcard::Person> people;
  for (const vcard::CardKeys& card : cards) {
    const auto oid = static_cast<std::int32_t>(people.size() + 1);
    people.push_back({oid, card.uid, card.name, card.content, true, vcard::kNoDigest});
  }
  const vcard::Matches matches = vcard::MatchCards(cards, {}, people);
  std::vector<bool> isMet(people.size());
  for (const std::size_t person : matches.people) {
    Require(person < people.size(), "a contact that is known is recognised");
    Require(!isMet[person], "no two contacts are the same");
    isMet[person] = true;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view stream(reinterpret_cast<const char*>(data), size);
  const Cards whole = ReadCards(stream);
  const Cards pieces = ReadCards(stream, 1 + size % 7);
  Require(whole.isDamaged == pieces.isDamaged, "damage does not depend on the pieces");
  Require(vcard::SeedsOf(whole.contacts) == vcard::SeedsOf(pieces.contacts),
          "contacts do not depend on the pieces");
  RequireRecognised(whole.contacts);
  vcard::VcardSplitter([](const vcard::Card& card) {
    const vcard::ContactData contact = vcard::ToContactData(card);
    Require(contact.formerContent == vcard::FormerContentOf(card, contact),
            "a card is read a second time if that makes a difference");
  }).Feed(stream);
  if (stream.find(':') != std::string_view::npos) {
    vcard::ContentLine line;
    vcard::ParseContentLine(stream, vcard::PropertyOf(stream), line);
    Require(!line.components.empty(), "a value has a component");
  }
  for (const vcard::ContactData& contact : whole.contacts) {
    RequireShownText(contact.lastName);
    RequireShownText(contact.firstName);
    RequireShownText(contact.middleName);
    RequireShownText(contact.companyName);
    for (const std::u16string& number : contact.numbers) {
      RequireShownText(number);
    }
  }
  return 0;
}
