#include "host/dial/terminal.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <string_view>

#include "platform/threads.h"

// Keys as they are pressed. For that the terminal gives each byte at once and shows none. This
// setting outlives the process that made it. So the destructor takes it back, and so does a handler
// of each signal that may end or stop the process.
namespace dial {
namespace {

constexpr int kInput = STDIN_FILENO;

// A signal's handler finds nothing but what is static.
termios g_before{};
termios g_keyByKey{};

/// Those that end or stop a process unless it says otherwise, and that a user or a system sends.
constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP};
std::array<struct sigaction, kSignals.size()> g_handledBefore{};
struct sigaction g_continuedBefore {};

extern "C" void GiveTerminalBack(int signal, siginfo_t* info, void* context);

/// What is ignored, as SIGHUP of a program that outlives its terminal, stays ignored.
void Handle(int signal, const struct sigaction& before) {
  if ((before.sa_flags & SA_SIGINFO) == 0 && before.sa_handler == SIG_IGN) {
    return;
  }
  struct sigaction action {};
  action.sa_sigaction = GiveTerminalBack;
  action.sa_flags = SA_SIGINFO | SA_NODEFER;  // Open to the same signal, which is raised again.
  ::sigaction(signal, &action, nullptr);
}

// Calls only what a handler may call. The signal then does what it would do without this handler.
// After Ctrl+Z that is a stop, and this goes on when the user brings the process back.
extern "C" void GiveTerminalBack(int signal, siginfo_t* info, void* context) {
  const int error = errno;
  ::tcsetattr(kInput, TCSANOW, &g_before);
  const auto place = std::ranges::find(kSignals, signal) - kSignals.begin();
  const struct sigaction& before = g_handledBefore[static_cast<std::size_t>(place)];
  if ((before.sa_flags & SA_SIGINFO) != 0) {
    before.sa_sigaction(signal, info, context);
  } else {
    ::sigaction(signal, &before, nullptr);
    static_cast<void>(std::raise(signal));
  }
  Handle(signal, before);
  errno = error;
}

// Also after a stop that no handler sees (SIGSTOP), since the shell sets the terminal as it likes.
// In the background the terminal belongs to somebody else.
extern "C" void TakeTerminalAgain(int /*signal*/) {
  const int error = errno;
  if (::tcgetpgrp(kInput) == ::getpgrp()) {
    ::tcsetattr(kInput, TCSANOW, &g_keyByKey);
  }
  errno = error;
}

constexpr char kEscapeByte = '\x1b';

bool IsAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

/// Returns how many of the bytes are one press. An arrow or a function key is "ESC [" or "ESC O"
/// with what follows, up to a letter; a key with Alt is "ESC" and the key. A letter that is not
/// ASCII has several bytes.
std::size_t LengthOfPress(std::string_view bytes) {
  std::size_t length = 1;
  if (bytes[0] == kEscapeByte && bytes.size() > 1) {
    length = 2;
    const bool isSequence = bytes[1] == '[' || bytes[1] == 'O';
    while (isSequence && length < bytes.size() && bytes[length] < '@') {
      ++length;
    }
    length += isSequence ? 1 : 0;
  } else if (!IsAscii(bytes[0])) {
    while (length < bytes.size() && (static_cast<unsigned char>(bytes[length]) & 0xC0U) == 0x80U) {
      ++length;
    }
  }
  return std::min(length, bytes.size());
}

Key ToKey(std::string_view press) {
  if (press.size() == 1 && IsAscii(press[0])) {
    return press[0] == kEscapeByte ? Key{.kind = Key::Kind::kEscape}
                                   : Key{.kind = Key::Kind::kLetter, .letter = press[0]};
  }
  return {.kind = Key::Kind::kOther};
}

}  // namespace

std::unique_ptr<Terminal> Terminal::Open(platform::Clock& clock) {
  if (::tcgetattr(kInput, &g_before) != 0) {
    return nullptr;
  }
  return std::unique_ptr<Terminal>(new Terminal(clock));
}

Terminal::Terminal(platform::Clock& clock) : m_clock(clock) {
  g_keyByKey = g_before;
  g_keyByKey.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
  // A read returns as soon as there is a byte. Only poll waits.
  g_keyByKey.c_cc[VMIN] = 1;
  g_keyByKey.c_cc[VTIME] = 0;
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    ::sigaction(kSignals[i], nullptr, &g_handledBefore[i]);
    Handle(kSignals[i], g_handledBefore[i]);
  }
  struct sigaction continued {};
  continued.sa_handler = TakeTerminalAgain;
  continued.sa_flags = SA_RESTART;
  ::sigaction(SIGCONT, &continued, &g_continuedBefore);
  // Keys that were pressed before this are dropped: nobody had asked anything yet.
  ::tcsetattr(kInput, TCSAFLUSH, &g_keyByKey);
}

Terminal::~Terminal() {
  ::tcsetattr(kInput, TCSANOW, &g_before);
  ::sigaction(SIGCONT, &g_continuedBefore, nullptr);
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    ::sigaction(kSignals[i], &g_handledBefore[i], nullptr);
  }
}

void Terminal::ForgetKeys() {
  m_bytes.clear();
  ::tcflush(kInput, TCIFLUSH);
}

/// Returns the next press that has been read.
Key Terminal::TakeKey() {
  if (m_bytes.empty()) {
    return {};
  }
  const std::size_t length = LengthOfPress(m_bytes);
  const Key key = ToKey(std::string_view(m_bytes).substr(0, length));
  m_bytes.erase(0, length);
  return key;
}

/// Reads what has been pressed. Returns false if no key will ever come.
bool Terminal::ReadBytes() {
  std::array<char, 64> bytes{};
  const ssize_t count = ::read(kInput, bytes.data(), bytes.size());
  if (count > 0) {
    m_bytes.append(bytes.data(), static_cast<std::size_t>(count));
  }
  return count > 0 || (count < 0 && (errno == EINTR || errno == EAGAIN));
}

// Escape and the first byte of an arrow key are the same. A terminal sends the bytes of one press
// together, so what one read returned is taken for whole presses.
// A key counts also when the time is over: a wait of 0 sees a key that is there.
Key Terminal::ReadKey(std::uint32_t milliseconds) {
  const std::uint32_t start = m_clock.GetTickCount();
  for (;;) {
    const std::uint32_t passed = m_clock.GetTickCount() - start;
    const bool isOver = milliseconds != platform::kNoLimit && passed >= milliseconds;
    pollfd input{.fd = kInput, .events = POLLIN, .revents = 0};
    const int left = milliseconds == platform::kNoLimit
                         ? -1
                         : static_cast<int>(milliseconds - std::min(passed, milliseconds));
    if (m_bytes.empty() && ::poll(&input, 1, left) > 0 && !ReadBytes()) {
      return {.kind = Key::Kind::kGone};
    }
    if (const Key key = TakeKey(); key.kind != Key::Kind::kNone || isOver) {
      return key;
    }
  }
}

}  // namespace dial
