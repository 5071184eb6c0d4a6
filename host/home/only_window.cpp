#include "host/home/only_window.h"

#include <QFile>
#include <utility>

namespace home {
namespace {

// Not the bell of the Learning page, which hangs in the same folder for the same root.
constexpr const char* kSuffixOfBell = "/window";

}  // namespace

OnlyWindow::OnlyWindow(const std::string& runtimeFolder, const std::string& root)
    : m_path(posix::Doorbell::PathFor(runtimeFolder, root + kSuffixOfBell)),
      m_lock(QFile::decodeName(QByteArray::fromStdString(m_path + ".lock"))) {
  // A lock is old if its program has ended, and not after some time.
  m_lock.setStaleLockTime(0);
}

bool OnlyWindow::Claim(const std::string& message) {
  if (!m_lock.tryLock(0) && m_lock.error() == QLockFile::LockFailedError) {
    // Without a bell the other program is just starting, and its window is about to appear.
    static_cast<void>(posix::Doorbell::Ring(m_path, message));
    return false;
  }
  // Without one, a second window does no harm: each finds what the other has changed.
  static_cast<void>(m_bell.Hang(m_path));
  return true;
}

void OnlyWindow::OnCall(std::function<void(const std::string& message)> answer) {
  m_answer = std::move(answer);
  if (m_bell.GetDescriptor() >= 0) {
    m_watch.emplace(m_bell.GetDescriptor(), [this] {
      while (const auto message = m_bell.Answer()) {
        m_answer(*message);
      }
    });
  }
}

}  // namespace home
