#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace platform {

enum class ReadResult : std::uint8_t {
  kRead,
  kNoAnswer,    ///< Nobody is there to ask.
  kUnreadable,  ///< There is something, and it cannot be read to its end.
};

/// One address book of the desktop.
struct DesktopBook {
  std::string uid;    ///< Lasting, and its own among all address books.
  std::string cards;  ///< vCards in no particular order.
  /// What is shown is the book itself, and no copy of one elsewhere that may still be filling up.
  bool isSettled = false;
};

/// The door of the library that knows the desktop's address books: apart from the rest, since it
/// brings dozens of others with it, and loaded only where somebody wants those books.
///
/// Reads every enabled address book in the order of their lasting names, which may take
/// `milliseconds` in all. `books` is empty unless this gives kRead; `reason` then says why not, in
/// the words of whoever refused, where those are known. kUnreadable also where one of several books
/// fails: whoever then saw the others alone would take its contacts for deleted. Throws nothing.
/// May be called from any thread; once it was, the library stays loaded for good.
using ReadDesktopBooksFunction = ReadResult(std::uint32_t milliseconds,
                                            std::vector<DesktopBook>& books, std::string& reason);

inline constexpr const char* kReadDesktopBooksName = "VoxtrelReadDesktopBooks";
inline constexpr const char* kDesktopBooksLibrary = "voxtrel-ebook.so";

}  // namespace platform
