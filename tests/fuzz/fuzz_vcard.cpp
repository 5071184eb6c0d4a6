// Reads arbitrary bytes as vCards: nothing in them may crash the parser, or read otherwise when the
// bytes arrive in other pieces.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/vcard/content_line.h"
#include "platform/vcard/identities.h"
#include "tests/fuzz/require.h"
#include "tests/vcard/read_cards.h"

namespace {

void RequireShownText(const std::u16string& text) {
  Require(std::all_of(text.begin(), text.end(), [](char16_t c) { return c >= u' '; }),
          "a text is on one line");
  Require(text.empty() || (text.front() != u' ' && text.back() != u' '),
          "a text has no blanks at its ends");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view stream(reinterpret_cast<const char*>(data), size);
  const Cards whole = ReadCards(stream);
  const Cards pieces = ReadCards(stream, 1 + size % 7);
  Require(whole.isDamaged == pieces.isDamaged, "damage does not depend on the pieces");
  const auto identities = vcard::IdentitiesOf(whole.contacts);
  Require(identities == vcard::IdentitiesOf(pieces.contacts),
          "contacts do not depend on the pieces");
  auto sorted = identities;
  std::sort(sorted.begin(), sorted.end());
  Require(std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end(),
          "no two contacts are the same");
  const auto line = vcard::ParseContentLine(stream);
  Require(line.has_value() == (stream.find(':') != std::string_view::npos),
          "a line is one by its colon");
  Require(!line || !line->components.empty(), "a value has a component");
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
