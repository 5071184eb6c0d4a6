#include "backends/vcard/background_source.h"

#include <exception>

namespace vcard {

ReadResult BackgroundSource::Read(std::vector<Book>& books) {
  ReadResult result = ReadResult::kUnreadable;
  const auto body = [&] { result = ReadInner(books); };
  if (const auto thread = m_threads.Start(body, platform::ThreadStart::kRunning)) {
    // Should the wait fail, the end of the handle still waits for the thread.
    static_cast<void>(thread->Wait(platform::kNoLimit));
  } else {
    body();
  }
  return result;
}

ReadResult BackgroundSource::ReadInner(std::vector<Book>& books) {
  // A thread that lets an exception out ends the process.
  try {
    const ReadResult result = m_inner.Read(books);
    m_reason = m_inner.GetReason();
    m_remarks = m_inner.GetRemarks();
    return result;
  } catch (const std::exception& error) {
    books.clear();
    m_remarks.clear();
    m_reason = error.what();
    return ReadResult::kUnreadable;
  }
}

}  // namespace vcard
