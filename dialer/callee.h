#pragma once

#include <string>

#include "dialer/recognizer.h"
#include "platform/contacts_store.h"

namespace dialer {

/// Somebody who may be called, as the user knows that person.
struct Callee {
  Candidate candidate;
  /// First, middle and last name, else the company. If the contact is not known, its number among
  /// the contacts. Never empty.
  std::u16string name;
  /// The same as lists of contacts have it: the last name first. Never empty.
  std::u16string listedName{};
  std::u16string number{};  ///< As it is stored. Empty if it is not known.
  /// Why this number cannot be called, in UTF-8 and the user's language: a part of a sentence,
  /// which begins with a small letter and has no full stop. Empty if it can be.
  std::string fault{};
};

/// Returns what is known of a candidate. `contacts` are logged on, or null if they cannot be read.
[[nodiscard]] Callee FindCallee(platform::ContactsStore* contacts, const Candidate& candidate);

}  // namespace dialer
