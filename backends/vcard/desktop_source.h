#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "backends/vcard/contact_source.h"
#include "platform/desktop_books.h"
#include "platform/threads.h"

namespace vcard {

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
