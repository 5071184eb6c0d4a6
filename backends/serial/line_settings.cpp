#include "backends/serial/line_settings.h"

// The kernel's own structure, since that of the C library knows some rates only by name. Both
// cannot be included together.
#include <asm/termbits.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <optional>

namespace serial {
namespace {

using platform::FlowControl;
using platform::SerialError;
using platform::StopBits;

std::optional<tcflag_t> SizeFlag(int dataBits) {
  constexpr int kFewest = 5;
  constexpr tcflag_t kFlags[] = {CS5, CS6, CS7, CS8};
  const int index = dataBits - kFewest;
  return index >= 0 && index < 4 ? std::optional(kFlags[index]) : std::nullopt;
}

struct NamedRate {
  std::uint32_t rate;
  tcflag_t flag;
};

/// Returns how the rate is set. A rate that has a name gets it, since most programs, `stty` among
/// them, know a rate by its name only.
tcflag_t RateFlag(std::uint32_t rate) {
  constexpr NamedRate kNamed[] = {{110, B110},     {300, B300},       {600, B600},
                                  {1200, B1200},   {2400, B2400},     {4800, B4800},
                                  {9600, B9600},   {19200, B19200},   {38400, B38400},
                                  {57600, B57600}, {115200, B115200}, {230400, B230400}};
  const auto* const found = std::ranges::find(kNamed, rate, &NamedRate::rate);
  return found == std::end(kNamed) ? tcflag_t{BOTHER} : found->flag;
}

/// Returns whether the rate is so near to the wanted one that both ends understand each other. A
/// driver takes the nearest rate that its clock can make.
bool IsNear(std::uint32_t rate, std::uint32_t wanted) {
  constexpr std::uint32_t kPercent = 100;
  constexpr std::uint32_t kTolerance = 2;
  const std::uint32_t difference = rate > wanted ? rate - wanted : wanted - rate;
  return difference <= wanted / kPercent * kTolerance;
}

}  // namespace

platform::Result<void, SerialError> SetLine(int descriptor, const platform::SerialLine& line) {
  const auto size = SizeFlag(line.dataBits);
  if (!size) {
    return platform::Failure(SerialError::kUnsupported);
  }
  termios2 settings{};
  if (::ioctl(descriptor, TCGETS2, &settings) != 0) {
    return platform::Failure(errno == ENOTTY ? SerialError::kNoPort : SerialError::kFailed);
  }
  settings.c_iflag = IGNBRK | IGNPAR;
  settings.c_oflag = 0;
  settings.c_lflag = 0;
  // CLOCAL: a modem that is not in a call has no carrier, and must be heard all the same.
  settings.c_cflag = *size | RateFlag(line.baudRate) | CREAD | CLOCAL | HUPCL;
  if (line.stopBits != StopBits::kOne) {
    // With five data bits these are one and a half, else two. A receiver that wants one and a half
    // takes two as well: the second half is a pause.
    settings.c_cflag |= CSTOPB;
  }
  if (line.flowControl == FlowControl::kHardware) {
    settings.c_cflag |= CRTSCTS;
  } else if (line.flowControl == FlowControl::kSoftware) {
    settings.c_iflag |= IXON | IXOFF;
  }
  // With none, a read of an empty line would look like the end of the device.
  settings.c_cc[VMIN] = 1;
  settings.c_cc[VTIME] = 0;
  settings.c_ispeed = line.baudRate;
  settings.c_ospeed = line.baudRate;
  if (::ioctl(descriptor, TCSETSF2, &settings) != 0) {
    return platform::Failure(errno == EINVAL ? SerialError::kUnsupported : SerialError::kFailed);
  }
  // A driver changes in silence what it cannot do. The size is not looked at, since the kernel's
  // pseudo terminals have eight bits whatever is asked for.
  termios2 taken{};
  if (::ioctl(descriptor, TCGETS2, &taken) != 0 || !IsNear(taken.c_ospeed, line.baudRate)) {
    return platform::Failure(SerialError::kUnsupported);
  }
  return {};
}

void SetHangUpOnClose(int descriptor, bool hangsUp) {
  termios2 settings{};
  if (::ioctl(descriptor, TCGETS2, &settings) == 0) {
    settings.c_cflag = hangsUp ? settings.c_cflag | HUPCL : settings.c_cflag & ~tcflag_t{HUPCL};
    static_cast<void>(::ioctl(descriptor, TCSETS2, &settings));
  }
}

}  // namespace serial
