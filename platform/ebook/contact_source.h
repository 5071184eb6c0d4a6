#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/ebook/contact_data.h"

namespace ebook {

/// One address book as it was read.
struct Book {
  std::u16string name;  ///< Lasting, and its own among all address books.
  std::vector<ContactData> contacts;
  /// Whether a contact that is not in `contacts` is gone. Not so where something in the book could
  /// not be read, or where it may not have been filled yet.
  bool isComplete = false;
};

enum class ReadResult : std::uint8_t {
  kRead,
  kNoAnswer,    ///< Nobody is there to ask.
  kUnreadable,  ///< There is something, and it cannot be read to its end.
};

/// Where contacts come from.
class ContactSource {
 public:
  ContactSource() = default;
  ContactSource(const ContactSource&) = delete;
  ContactSource& operator=(const ContactSource&) = delete;
  virtual ~ContactSource() = default;

  /// Reads every address book of the source; `books` is empty unless this gives kRead. The order
  /// of contacts depends on nothing but the contacts.
  [[nodiscard]] virtual ReadResult Read(std::vector<Book>& books) = 0;
};

}  // namespace ebook
