#pragma once

#include "backends/vcard/contact_source.h"
#include "platform/threads.h"

namespace vcard {

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
