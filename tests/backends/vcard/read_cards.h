#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "backends/text/utf.h"
#include "backends/vcard/card_reader.h"
#include "backends/vcard/vcard_splitter.h"
#include "platform/contacts_store.h"

struct Cards {
  std::vector<vcard::ContactData> contacts;
  std::vector<vcard::ContactData> torn;
  std::string damage;  ///< "line: sentence" and a line feed, for each.
  bool isDamaged = false;
};

/// All contacts of a stream that arrives in pieces of `pieceSize` bytes.
inline Cards ReadCards(std::string_view stream, std::size_t pieceSize = std::string_view::npos) {
  Cards cards;
  vcard::VcardSplitter splitter(
      [&cards](const vcard::Card& card) { cards.contacts.push_back(vcard::ToContactData(card)); },
      [&cards](const vcard::Card& card) { cards.torn.push_back(vcard::ToContactData(card)); },
      [&cards](std::size_t line, std::string_view sentence) {
        cards.damage += std::to_string(line) + ": " + std::string(sentence) + "\n";
      });
  while (!stream.empty()) {
    const std::string_view piece = stream.substr(0, pieceSize);
    splitter.Feed(piece);
    stream.remove_prefix(piece.size());
  }
  splitter.Finish();
  cards.isDamaged = splitter.IsDamaged();
  return cards;
}

/// `lines` as one card of a version, with the ends of lines that the standard asks for.
inline std::string WriteCard(std::string_view lines, std::string_view version = "3.0") {
  std::string card = "BEGIN:VCARD\r\nVERSION:" + std::string(version) + "\r\n";
  while (!lines.empty()) {
    const std::size_t end = std::min(lines.find('\n'), lines.size());
    card += lines.substr(0, end);
    lines.remove_prefix(end);
    if (!lines.empty()) {
      card += "\r\n";
      lines.remove_prefix(1);
    }
  }
  return card + "\r\nEND:VCARD\r\n";
}

/// The numbers of a contact as "Kind=number" in the order of the codes, joined by "; ".
inline std::string NumbersOf(const vcard::ContactData& contact) {
  constexpr std::string_view kNames[] = {"Car",      "Radio",     "Mobile",      "Assistant",
                                         "Business", "Business2", "BusinessFax", "Home",
                                         "Home2",    "HomeFax"};
  std::string numbers;
  for (std::size_t i = 0; i < contact.numbers.size(); ++i) {
    if (!contact.numbers[i].empty()) {
      numbers += numbers.empty() ? "" : "; ";
      numbers += std::string(kNames[i]) + "=" + text::ToUtf8(contact.numbers[i]);
    }
  }
  return numbers;
}

/// "last|first|middle|company"
inline std::string NamesOf(const vcard::ContactData& contact) {
  return text::ToUtf8(contact.lastName) + "|" + text::ToUtf8(contact.firstName) + "|" +
         text::ToUtf8(contact.middleName) + "|" + text::ToUtf8(contact.companyName);
}
