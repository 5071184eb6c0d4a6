#pragma once

#include <string>
#include <vector>

#include "backends/vcard/contact_data.h"
#include "backends/vcard/remark.h"
#include "platform/desktop_books.h"
#include "platform/result.h"

namespace vcard {

/// One address book as it was read.
struct Book {
  std::u16string name;  ///< Lasting, and its own among all address books.
  std::vector<ContactData> contacts;
  /// Whether a contact that is not in `contacts` is gone. It is not if something in the book could
  /// not be read, or if the book may not have been filled yet.
  bool isComplete = false;
  /// What could be read of cards that are cut off. They are no contacts, but may have been some.
  std::vector<ContactData> torn = {};
};

using ReadBooks = platform::Result<std::vector<Book>, platform::BooksError>;

/// Gives contacts.
class ContactSource {
 public:
  ContactSource() = default;
  ContactSource(const ContactSource&) = delete;
  ContactSource& operator=(const ContactSource&) = delete;
  virtual ~ContactSource() = default;

  /// Reads every address book of the source. The order of contacts depends on nothing but the
  /// contacts. Adds to `remarks` what was passed over, also if the reading fails.
  [[nodiscard]] virtual ReadBooks Read(RemarkList& remarks) = 0;
};

}  // namespace vcard
