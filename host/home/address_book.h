#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "backends/vcard/address_books.h"
#include "host/machine/backends.h"

namespace home {

/// What an address book gave.
struct AddressBook {
  /// "eds" for the desktop's address books, or the path of a vCard file or folder. Empty if nobody
  /// ever chose one.
  std::string chosen;
  std::string defaultFile;  ///< Read if nobody ever chose one and the desktop has no contacts.
  std::size_t people = 0;   ///< Those with a telephone number.
  bool isRead = false;
  std::optional<vcard::AddressBooks::Problem> problem;
  std::string reason;                ///< What the system says of the problem. Can be empty.
  std::vector<std::string> remarks;  ///< Places that could not be read, as "FILE:LINE: sentence".
};

// These may take as long as the desktop's address books take to answer.

/// Reads the address book that is used now. Changes nothing.
[[nodiscard]] AddressBook ReadAddressBook(const machine::Options& options);

/// What became of a choice.
struct BookChoice {
  bool isTaken = false;
  AddressBook book;        ///< The one that was tried.
  std::u16string message;  ///< A sentence if the tags could not be held. Else empty.
};

/// Chooses the address book that "--contacts" of the command line would choose. It is taken, and
/// remembered, if the people of all tags are in it. Otherwise nothing is changed.
[[nodiscard]] BookChoice ChooseAddressBook(const machine::Options& options,
                                           const std::string& contacts);

}  // namespace home
