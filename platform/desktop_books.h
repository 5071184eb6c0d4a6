#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace platform {

enum class ReadResult : std::uint8_t {
  kRead,
  kNoAnswer,    ///< There is nobody to ask.
  kUnreadable,  ///< There is something, and it cannot be read to its end.
};

/// One address book of the desktop.
struct DesktopBook {
  std::string uid;    ///< Stays the same, and no other address book has it.
  std::string cards;  ///< vCards in no particular order.
  /// What is shown is the book itself. It is no copy of a book elsewhere that may still grow.
  bool isSettled = false;
};

/// Reads every enabled address book of the desktop, in the order of their `uid`. This may take
/// `milliseconds` in all. If the result is not kRead, `books` is empty, and `reason` says why in
/// the words of the program that refused, if those are known. If one of several books fails, the
/// result is kUnreadable: a reader that saw only the others would take its contacts for deleted.
/// Throws nothing. May be called from any thread.
using ReadDesktopBooksFunction = ReadResult(std::uint32_t milliseconds,
                                            std::vector<DesktopBook>& books, std::string& reason);

}  // namespace platform
