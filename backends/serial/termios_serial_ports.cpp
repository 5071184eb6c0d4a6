#include "backends/serial/termios_serial_ports.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <string>

#include "backends/serial/line_settings.h"
#include "backends/text/utf.h"

namespace serial {
namespace {

using platform::Failure;
using platform::SerialError;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// Time that is left of a limit.
class Limit {
 public:
  explicit Limit(std::uint32_t limit) : m_end(steady_clock::now() + milliseconds(limit)) {}

  [[nodiscard]] int GetLeft() const {
    const auto left = std::chrono::ceil<milliseconds>(m_end - steady_clock::now()).count();
    return static_cast<int>(std::max<decltype(left)>(left, 0));
  }

 private:
  const steady_clock::time_point m_end;
};

SerialError ErrorOfOpening(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ENXIO:
    case ENODEV:
    case EIO:  // A pseudo terminal whose other end has gone.
      return SerialError::kMissing;
    case EACCES:
    case EPERM:
      return SerialError::kDenied;
    case EBUSY:
      return SerialError::kInUse;
    default:
      return SerialError::kFailed;
  }
}

class TermiosSerialPort final : public platform::SerialPort {
 public:
  explicit TermiosSerialPort(int descriptor) : m_descriptor(descriptor) {}

  ~TermiosSerialPort() override {
    if (m_isOurs) {
      // A driver would wait up to 30 seconds for a modem that takes nothing.
      ::tcflush(m_descriptor, TCOFLUSH);
      ::ioctl(m_descriptor, TIOCNXCL);
    }
    ::close(m_descriptor);
  }

  /// Keeps other programs away. Fails with kInUse if another one has the port.
  [[nodiscard]] platform::Result<void, SerialError> TakeAlone() {
    int isTaken = 0;
    // The superuser gets a port that is taken all the same, and so has to ask.
    if ((::ioctl(m_descriptor, TIOCGEXCL, &isTaken) == 0 && isTaken != 0) ||
        ::flock(m_descriptor, LOCK_EX | LOCK_NB) != 0) {
      return Failure(SerialError::kInUse);
    }
    m_isOurs = true;
    ::ioctl(m_descriptor, TIOCEXCL);
    return {};
  }

  [[nodiscard]] platform::Result<void, SerialError> Write(std::span<const std::byte> bytes,
                                                          std::uint32_t limit) override {
    const Limit wait(limit);
    while (!bytes.empty()) {
      const ssize_t count = ::write(m_descriptor, bytes.data(), bytes.size());
      if (count > 0) {
        bytes = bytes.subspan(static_cast<std::size_t>(count));
      } else if (count < 0 && errno != EAGAIN && errno != EINTR) {
        return Failure(SerialError::kLost);
      } else if (const auto ready = Await(POLLOUT, wait); !ready || !*ready) {
        return Failure(ready ? SerialError::kFailed : ready.error());
      }
    }
    return {};
  }

  [[nodiscard]] platform::Result<std::size_t, SerialError> Read(std::span<std::byte> bytes,
                                                                std::uint32_t limit) override {
    const Limit wait(limit);
    while (true) {
      const auto ready = Await(POLLIN, wait);
      if (!ready || !*ready) {
        return ready ? platform::Result<std::size_t, SerialError>(0) : Failure(ready.error());
      }
      const ssize_t count = ::read(m_descriptor, bytes.data(), bytes.size());
      if (count > 0) {
        return static_cast<std::size_t>(count);
      }
      // Ready and nothing to read: the other end has gone.
      if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
        return Failure(SerialError::kLost);
      }
    }
  }

  void KeepLineUp() override { SetHangUpOnClose(m_descriptor, false); }

 private:
  /// Returns whether the device is ready before the limit. Fails if it has gone.
  [[nodiscard]] platform::Result<bool, SerialError> Await(short event, const Limit& limit) const {
    pollfd waited{m_descriptor, event, 0};
    int ready = -1;
    do {
      ready = ::poll(&waited, 1, limit.GetLeft());
    } while (ready < 0 && errno == EINTR);
    if (ready < 0) {
      return Failure(SerialError::kFailed);
    }
    if (ready > 0 && (waited.revents & event) == 0) {
      return Failure(SerialError::kLost);  // POLLHUP or POLLERR.
    }
    return ready > 0;
  }

  const int m_descriptor;
  bool m_isOurs = false;  ///< False while another program may have it, whose output must stay.
};

}  // namespace

platform::Result<std::unique_ptr<platform::SerialPort>, SerialError> TermiosSerialPorts::Open(
    std::u16string_view device, const platform::SerialLine& line) {
  const std::string path = text::ToHostName(device);
  struct stat found {};
  if (::stat(path.c_str(), &found) != 0) {
    return Failure(ErrorOfOpening(errno));
  }
  // Opening may do something to other kinds of files, as it does to a named pipe.
  if (!S_ISCHR(found.st_mode)) {
    return Failure(SerialError::kNoPort);
  }
  // Without O_NONBLOCK it would wait for a carrier.
  const int descriptor = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) {
    return Failure(ErrorOfOpening(errno));
  }
  auto port = std::make_unique<TermiosSerialPort>(descriptor);
  if (::isatty(descriptor) == 0) {
    return Failure(SerialError::kNoPort);
  }
  if (const auto taken = port->TakeAlone(); !taken) {
    return Failure(taken.error());
  }
  if (const auto set = SetLine(descriptor, line); !set) {
    return Failure(set.error());
  }
  return std::unique_ptr<platform::SerialPort>(std::move(port));
}

}  // namespace serial
