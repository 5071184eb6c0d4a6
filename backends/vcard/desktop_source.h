#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "backends/vcard/contact_source.h"
#include "platform/desktop_books.h"

namespace vcard {

/// Every enabled address book of the desktop, in the order of their lasting names, each sorted as a
/// reader expects.
class DesktopSource final : public ContactSource {
 public:
  /// The function that reads the desktop's address books. The error is the reason why there is
  /// none.
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

}  // namespace vcard
