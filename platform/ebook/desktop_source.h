#pragma once

#include <chrono>

#include "platform/ebook/contact_source.h"

namespace ebook {

/// Every enabled address book of the desktop, in the order of their lasting names, each sorted as a
/// reader expects.
class DesktopSource final : public ContactSource {
 public:
  /// `limit` is how long all books together may take.
  explicit DesktopSource(std::chrono::milliseconds limit = std::chrono::seconds(20))
      : m_limit(limit) {}

  /// kUnreadable also where one of several books fails: whoever then saw the others alone would
  /// take its contacts for deleted.
  [[nodiscard]] ReadResult Read(std::vector<Book>& books) override;

 private:
  std::chrono::milliseconds m_limit;
};

}  // namespace ebook
