#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "backends/vcard/contact_pool.h"
#include "platform/desktop_books.h"
#include "platform/result.h"

namespace vcard {

/// Something that was passed over while contacts were read, for the person who can correct it.
struct Remark {
  std::u16string place;  ///< A file, an address book of the desktop, or a key of the registry.
  std::size_t line = 0;  ///< Of the file, from 1; 0 if none is meant.
  std::string text;      ///< A sentence without its full stop; it may quote what was read.

  friend bool operator==(const Remark&, const Remark&) = default;
};

/// Keeps the first remarks and counts the others, so that a file of nothing but damage costs no
/// memory.
class RemarkList {
 public:
  static constexpr std::size_t kMaxRemarks = 100;

  void Clear() {
    m_remarks.clear();
    m_further = 0;
  }

  void Add(Remark remark) {
    if (m_remarks.size() < kMaxRemarks) {
      m_remarks.push_back(std::move(remark));
    } else {
      ++m_further;
    }
  }

  /// Returns how many there were, also of those that were not kept.
  [[nodiscard]] std::size_t Count() const { return m_remarks.size() + m_further; }

  /// For remarks about lines that nobody can look up.
  void ForgetLines() {
    for (Remark& remark : m_remarks) {
      remark.line = 0;
    }
  }

  /// Returns those that were kept. If there were more, one at the end says how many.
  [[nodiscard]] std::vector<Remark> GetAll() const {
    std::vector<Remark> all = m_remarks;
    if (m_further > 0) {
      all.push_back({m_remarks.back().place, 0,
                     "there are " + std::to_string(m_further) + " more such remarks"});
    }
    return all;
  }

 private:
  std::vector<Remark> m_remarks;
  std::size_t m_further = 0;
};

/// One address book as it was read.
struct Book {
  std::u16string name;  ///< Lasting, and its own among all address books.
  ContactPool contacts;
  /// Whether a contact that is not in `contacts` is gone. It is not if something in the book could
  /// not be read, or if the book may not have been filled yet.
  bool isComplete = false;
  /// What could be read of cards that are cut off. They are no contacts, but may have been some.
  std::vector<ContactData> torn = {};
};

using ReadBooks = platform::Result<std::vector<Book>, platform::BooksError>;

/// Something that address books are read from: files, or the desktop.
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
