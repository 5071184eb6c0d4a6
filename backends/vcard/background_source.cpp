#include "backends/vcard/background_source.h"

#include <exception>

namespace vcard {

ReadBooks BackgroundSource::Read(RemarkList& remarks) {
  ReadBooks read = platform::Failure(platform::BooksError());
  const auto body = [&] { read = ReadInner(remarks); };
  if (const auto thread = m_threads.Start(body, platform::ThreadStart::kRunning)) {
    // Should the wait fail, the end of the handle still waits for the thread.
    static_cast<void>((*thread)->Wait(platform::kNoLimit));
  } else {
    body();
  }
  return read;
}

ReadBooks BackgroundSource::ReadInner(RemarkList& remarks) {
  // A thread that lets an exception out ends the process.
  try {
    return m_inner.Read(remarks);
  } catch (const std::exception& error) {
    remarks.Clear();
    return platform::Failure(platform::BooksError{.reason = error.what()});
  }
}

}  // namespace vcard
