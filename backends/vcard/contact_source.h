#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "backends/vcard/contact_pool.h"
#include "platform/desktop_books.h"
#include "platform/registry.h"
#include "platform/result.h"
#include "platform/threads.h"

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

/// Holds the choice of the address book and the numbers of its contacts. It is not the key of the
/// tags, which holds nothing but tags.
inline constexpr std::u16string_view kContactsKey = u"Software\\Zedra\\Voxtrel Contacts";

/// Which address book is used.
struct SourceChoice {
  std::u16string path;  ///< Of a vCard file or folder; empty: the desktop's address books.

  friend bool operator==(const SourceChoice&, const SourceChoice&) = default;
};

/// Returns what the user wrote: "eds" for the desktop's address books, else a path. The path is
/// made absolute, so it means the same in whatever folder the program is started the next time.
[[nodiscard]] SourceChoice ParseChoice(std::u16string_view text);

/// Returns the remembered choice. Returns nothing if there is none. A value of another program that
/// is no choice is named in `remarks` and counts as none. Fails if the registry cannot be asked.
[[nodiscard]] platform::Result<std::optional<SourceChoice>, platform::RegistryError> RecallChoice(
    platform::Registry& registry, std::vector<Remark>& remarks);

/// Writes nothing if this choice is remembered already.
[[nodiscard]] platform::Result<void, platform::RegistryError> RememberChoice(
    platform::Registry& registry, const SourceChoice& choice);

/// Every enabled address book of the desktop, in the order of their lasting names. A server gives
/// contacts in any order, so each book is sorted here as a reader expects.
class DesktopSource final : public ContactSource {
 public:
  /// The function that reads the desktop's address books. The error says why there is none.
  using Library = platform::Result<platform::ReadDesktopBooksFunction*, std::string>;
  using Load = std::function<Library()>;

  /// `limit` is how long all books together may take.
  explicit DesktopSource(Load load, std::chrono::milliseconds limit = std::chrono::seconds(20));

  /// Loads the library. Without it nobody answers. The remarks have no lines, since nobody can look
  /// up the lines of what a server hands over.
  [[nodiscard]] ReadBooks Read(RemarkList& remarks) override;

 private:
  const Load m_load;
  const std::chrono::milliseconds m_limit;
};

/// Another source, read on a thread of its own. The caller waits as `threads` do it: a window goes
/// on painting, however long a server takes to answer.
class BackgroundSource final : public ContactSource {
 public:
  /// Both outlive this.
  BackgroundSource(ContactSource& inner, platform::Threads& threads)
      : m_inner(inner), m_threads(threads) {}

  /// If no thread can be had, the caller's own one reads. Fails with kUnreadable if the inner
  /// source throws, as it does if there is no memory.
  [[nodiscard]] ReadBooks Read(RemarkList& remarks) override;

 private:
  [[nodiscard]] ReadBooks ReadInner(RemarkList& remarks);

  ContactSource& m_inner;
  platform::Threads& m_threads;
};

}  // namespace vcard
