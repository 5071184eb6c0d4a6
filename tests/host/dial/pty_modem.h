#pragma once

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <array>
#include <functional>
#include <string>
#include <thread>

/// A modem on a pseudo terminal, as a program finds one at a serial port. It has a thread of its
/// own, which plays the modem until the object goes.
class PtyModem {
 public:
  /// Returns what the modem says after a line, which comes without its CR. "unplug" takes the port
  /// away.
  using Answer = std::function<std::string(const std::string& line)>;

  static constexpr const char* kUnplug = "unplug";

  explicit PtyModem(Answer answer) : m_answer(std::move(answer)) {
    std::array<char, 256> name{};
    // The other end stays open here, so that it keeps its settings while nobody uses it.
    if (::openpty(&m_modem, &m_keeper, name.data(), nullptr, nullptr) == 0 &&
        ::pipe2(m_end.data(), O_CLOEXEC) == 0) {
      ::fcntl(m_modem, F_SETFD, FD_CLOEXEC);
      ::fcntl(m_keeper, F_SETFD, FD_CLOEXEC);
      m_name = name.data();
      m_thread = std::thread([this] { Play(); });
    }
  }
  PtyModem(const PtyModem&) = delete;
  PtyModem& operator=(const PtyModem&) = delete;
  ~PtyModem() { End(); }

  [[nodiscard]] const std::string& GetName() const { return m_name; }

  /// Ends the modem. Returns the lines that it was sent, with a "|" after each.
  std::string End() {
    if (m_thread.joinable()) {
      // A process that was forked meanwhile may have the pipe, too. So to close it is not enough.
      static_cast<void>(::write(m_end[1], "", 1));
      m_thread.join();
      ::close(m_end[0]);
      ::close(m_end[1]);
      Close(m_modem);
      Close(m_keeper);
    }
    return m_received;
  }

 private:
  static void Close(int& descriptor) {
    if (descriptor >= 0) {
      ::close(descriptor);
    }
    descriptor = -1;
  }

  void Play() {
    std::string line;
    while (m_modem >= 0) {
      std::array<pollfd, 2> waited{{{m_modem, POLLIN, 0}, {m_end[0], POLLIN, 0}}};
      if (::poll(waited.data(), waited.size(), -1) < 0 || waited[1].revents != 0) {
        return;
      }
      char byte = 0;
      if (::read(m_modem, &byte, 1) != 1) {
        return;
      }
      if (byte != '\r') {
        line += byte;
        continue;
      }
      m_received += line + "|";
      const std::string says = m_answer(line);
      line.clear();
      if (says == kUnplug) {
        Close(m_modem);
        Close(m_keeper);
      } else if (::write(m_modem, says.data(), says.size()) < 0) {
        return;
      }
    }
  }

  const Answer m_answer;
  int m_modem = -1;
  int m_keeper = -1;
  std::array<int, 2> m_end{-1, -1};
  std::string m_name;
  std::string m_received;  ///< Of the thread until it has ended.
  std::thread m_thread;
};
