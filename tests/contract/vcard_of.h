#pragma once

#include <string>

#include "backends/text/utf.h"
#include "tests/contract/contacts_contract.h"

namespace contract {

/// The contact as a desktop's address book writes it.
[[nodiscard]] inline std::string VcardOf(const WantedContact& contact) {
  constexpr const char* kTypes[] = {"CAR",      "X-EVOLUTION-RADIO",
                                    "CELL",     "X-EVOLUTION-ASSISTANT",
                                    "WORK",     "WORK",
                                    "WORK,FAX", "HOME",
                                    "HOME",     "HOME,FAX"};
  const auto escaped = [](const std::u16string& text) {
    std::string result;
    for (const char c : text::ToUtf8(text)) {
      result += c == ';' || c == ',' ? std::string{'\\', c} : std::string(1, c);
    }
    return result;
  };
  std::string card = "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:" + contact.uid + "\r\n";
  card += "N:" + escaped(contact.lastName) + ";" + escaped(contact.firstName) + ";" +
          escaped(contact.middleName) + ";;\r\n";
  card += "ORG:" + escaped(contact.companyName) + "\r\n";
  for (std::size_t i = 0; i < contact.numbers.size(); ++i) {
    if (!contact.numbers[i].empty()) {
      card += std::string("TEL;TYPE=") + kTypes[i] + ":" + escaped(contact.numbers[i]) + "\r\n";
    }
  }
  return card + "END:VCARD\r\n";
}

}  // namespace contract
