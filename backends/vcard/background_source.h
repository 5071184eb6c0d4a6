#pragma once

#include <string>
#include <vector>

#include "backends/vcard/contact_source.h"
#include "platform/threads.h"

namespace vcard {

/// Another source, read on a thread of its own while the caller waits as `threads` have it: a
/// window goes on painting, however long a server takes to answer.
class BackgroundSource final : public ContactSource {
 public:
  /// Both outlive this.
  BackgroundSource(ContactSource& inner, platform::Threads& threads)
      : m_inner(inner), m_threads(threads) {}

  /// Where there is no thread to be had, the caller's own does it. kUnreadable where the inner
  /// source throws, as for want of memory.
  [[nodiscard]] ReadResult Read(std::vector<Book>& books) override;
  [[nodiscard]] std::string GetReason() const override { return m_reason; }
  [[nodiscard]] std::vector<Remark> GetRemarks() const override { return m_remarks; }

 private:
  [[nodiscard]] ReadResult ReadInner(std::vector<Book>& books);

  ContactSource& m_inner;
  platform::Threads& m_threads;
  std::string m_reason;
  std::vector<Remark> m_remarks;
};

}  // namespace vcard
