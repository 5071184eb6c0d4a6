#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "backends/vcard/contact_data.h"
#include "backends/vcard/remark.h"

namespace vcard {

enum class ReadResult : std::uint8_t {
  kRead,
  kNoAnswer,    ///< There is nobody to ask.
  kUnreadable,  ///< There is something, and it cannot be read to its end.
};

/// One address book as it was read.
struct Book {
  std::u16string name;  ///< Lasting, and its own among all address books.
  std::vector<ContactData> contacts;
  /// Whether a contact that is not in `contacts` is gone. Not so where something in the book could
  /// not be read, or where it may not have been filled yet.
  bool isComplete = false;
  /// What could be read of cards that are cut off. They are no contacts, but may have been some.
  std::vector<ContactData> torn = {};
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

  /// Why the latest reading failed, for a reader of messages; empty where nobody said.
  [[nodiscard]] virtual std::string GetReason() const { return {}; }

  /// What was passed over in the latest reading, also in one that failed.
  [[nodiscard]] virtual std::vector<Remark> GetRemarks() const { return {}; }
};

}  // namespace vcard
