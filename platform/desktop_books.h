#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/result.h"

namespace platform {

/// One address book of the desktop.
struct DesktopBook {
  std::string uid;    ///< Stays the same, and no other address book has it.
  std::string cards;  ///< vCards in no particular order.
  /// The cards are the book itself, and no copy of a book elsewhere that may still grow.
  bool isSettled = false;
};

/// Why address books could not be read: the desktop's, or a file.
struct BooksError {
  enum class Kind : std::uint8_t {
    kNoAnswer,    ///< There is nobody to ask.
    kUnreadable,  ///< There is something, and it cannot be read to its end.
  };
  Kind kind = Kind::kUnreadable;
  std::string reason;  ///< In the words of the program that refused. Empty: not known.
};

using DesktopBooks = Result<std::vector<DesktopBook>, BooksError>;

/// Reads every enabled address book of the desktop, in the order of their `uid`. This may take
/// `milliseconds` in all. If one of several books fails, this fails with kUnreadable: a reader that
/// saw only the others would take its contacts for deleted. Throws nothing. May be called from any
/// thread. The books go into a parameter, since a function with a name of C returns nothing of C++.
using ReadDesktopBooksFunction = void(std::uint32_t milliseconds, DesktopBooks& books);

}  // namespace platform
