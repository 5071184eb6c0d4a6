#include "backends/serial/termios_serial_ports.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <string>

#include "backends/text/utf.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace {

using platform::SerialError;
using platform::SerialLine;

/// A limit that no machine reaches for something that has happened already.
constexpr std::uint32_t kLongEnough = 60'000;

/// A pseudo terminal: a test writes and reads at one end, and the port is the other one.
class SerialPortsTest : public testing::Test {
 protected:
  SerialPortsTest() {
    std::array<char, 256> name{};
    EXPECT_EQ(::openpty(&m_modem, &m_keeper, name.data(), nullptr, nullptr), 0);
    m_name = text::FromHostName(name.data());
  }
  ~SerialPortsTest() override {
    Close(m_modem);
    Close(m_keeper);
  }
  static void Close(int& descriptor) {
    if (descriptor >= 0) {
      ::close(descriptor);
    }
    descriptor = -1;
  }

  [[nodiscard]] std::optional<SerialError> ErrorOfOpening(const SerialLine& line = {}) {
    return support::ErrorOf(m_ports.Open(m_name, line));
  }

  [[nodiscard]] static std::string Read(platform::SerialPort& port,
                                        std::uint32_t milliseconds = kLongEnough) {
    std::array<std::byte, 100> bytes{};
    const auto count = port.Read(bytes, milliseconds);
    EXPECT_TRUE(count.has_value());
    return {reinterpret_cast<const char*>(bytes.data()), count.value_or(0)};
  }

  serial::TermiosSerialPorts m_ports;
  int m_modem = -1;
  int m_keeper = -1;  ///< Keeps the settings of the terminal while nobody has it open.
  std::u16string m_name;
};

TEST_F(SerialPortsTest, BytesGoBothWaysAsTheyAre) {
  const auto port = m_ports.Open(m_name, {});
  ASSERT_TRUE(port);
  const std::string sent = "ATD1;\r\n\x03\x11\x1A";
  ASSERT_TRUE((*port)->Write(std::as_bytes(std::span(sent)), kLongEnough));
  std::array<char, 100> got{};
  ASSERT_EQ(::read(m_modem, got.data(), got.size()), static_cast<ssize_t>(sent.size()));
  EXPECT_EQ(std::string(got.data(), sent.size()), sent);
  ASSERT_EQ(::write(m_modem, "\r\nOK\r\n", 6), 6);
  EXPECT_EQ(Read(**port), "\r\nOK\r\n");
}

TEST_F(SerialPortsTest, AReadEndsAtItsLimitIfNothingComes) {
  const auto port = m_ports.Open(m_name, {});
  ASSERT_TRUE(port);
  EXPECT_EQ(Read(**port, 0), "");
  EXPECT_EQ(Read(**port, 1), "");
}

TEST_F(SerialPortsTest, AWriteEndsAtItsLimitIfTheOtherEndTakesNothing) {
  const auto port = m_ports.Open(m_name, {});
  ASSERT_TRUE(port);
  const std::string much(1'000'000, 'x');
  EXPECT_EQ(support::ErrorOf((*port)->Write(std::as_bytes(std::span(much)), 1)),
            SerialError::kFailed);
}

TEST_F(SerialPortsTest, ThePortGetsTheRateThatIsAskedFor) {
  const auto takes = [this](std::uint32_t rate, speed_t name) {
    const auto port = m_ports.Open(m_name, {.baudRate = rate});
    termios settings{};
    return port && ::tcgetattr(m_keeper, &settings) == 0 && ::cfgetospeed(&settings) == name;
  };
  EXPECT_TRUE(takes(9600, B9600));
  EXPECT_TRUE(takes(115'200, B115200));
}

TEST_F(SerialPortsTest, ARateWithoutANameIsNoFault) {
  EXPECT_EQ(ErrorOfOpening({.baudRate = 14'400}), std::nullopt);
  EXPECT_EQ(ErrorOfOpening({.baudRate = 256'000}), std::nullopt);
}

TEST_F(SerialPortsTest, StopBitsAndFlowControlAreSet) {
  const auto port = m_ports.Open(m_name, {.stopBits = platform::StopBits::kTwo,
                                          .flowControl = platform::FlowControl::kSoftware});
  ASSERT_TRUE(port);
  termios settings{};
  ASSERT_EQ(::tcgetattr(m_keeper, &settings), 0);
  EXPECT_NE(settings.c_cflag & CSTOPB, 0U);
  EXPECT_EQ(settings.c_iflag & (IXON | IXOFF), tcflag_t{IXON | IXOFF});
  EXPECT_EQ(settings.c_cflag & CRTSCTS, 0U);
  EXPECT_NE(settings.c_cflag & CLOCAL, 0U);
  EXPECT_EQ(settings.c_lflag & (ECHO | ICANON | ISIG), 0U);
}

TEST_F(SerialPortsTest, FourDataBitsAreMoreThanThisMachineCan) {
  EXPECT_EQ(ErrorOfOpening({.dataBits = 4}), SerialError::kUnsupported);
}

TEST_F(SerialPortsTest, APortThatIsOpenHereIsClosedToOthers) {
  const auto port = m_ports.Open(m_name, {});
  ASSERT_TRUE(port);
  EXPECT_EQ(ErrorOfOpening(), SerialError::kInUse);
}

TEST_F(SerialPortsTest, APortIsFreeAfterItWasClosed) {
  EXPECT_EQ(ErrorOfOpening(), std::nullopt);
  EXPECT_EQ(ErrorOfOpening(), std::nullopt);
}

TEST_F(SerialPortsTest, APortThatAnotherProgramHasLockedIsInUse) {
  ASSERT_EQ(::flock(m_keeper, LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(ErrorOfOpening(), SerialError::kInUse);
}

TEST_F(SerialPortsTest, APortThatAnotherProgramKeepsForItselfIsInUseForTheSuperuserToo) {
  ASSERT_EQ(::ioctl(m_keeper, TIOCEXCL), 0);
  EXPECT_EQ(ErrorOfOpening(), SerialError::kInUse);
  // It still has it.
  int isTaken = 0;
  EXPECT_EQ(::ioctl(m_keeper, TIOCGEXCL, &isTaken), 0);
  EXPECT_NE(isTaken, 0);
}

TEST_F(SerialPortsTest, ClosingTakesTheLineDownUnlessItShallStayUp) {
  ASSERT_EQ(ErrorOfOpening(), std::nullopt);
  termios settings{};
  ASSERT_EQ(::tcgetattr(m_keeper, &settings), 0);
  EXPECT_NE(settings.c_cflag & HUPCL, 0U);
  {
    const auto port = m_ports.Open(m_name, {});
    ASSERT_TRUE(port);
    (*port)->KeepLineUp();
  }
  ASSERT_EQ(::tcgetattr(m_keeper, &settings), 0);
  EXPECT_EQ(settings.c_cflag & HUPCL, 0U);
}

TEST_F(SerialPortsTest, APortThatVanishesEndsEveryWait) {
  const auto port = m_ports.Open(m_name, {});
  ASSERT_TRUE(port);
  Close(m_modem);
  std::array<std::byte, 10> bytes{};
  EXPECT_EQ(support::ErrorOf((*port)->Read(bytes, kLongEnough)), SerialError::kLost);
  EXPECT_EQ(support::ErrorOf((*port)->Write(bytes, kLongEnough)), SerialError::kLost);
}

TEST_F(SerialPortsTest, WhatIsNoSerialPortIsNotOpened) {
  support::TempFolder folder;
  const std::string root = std::filesystem::path(folder.Path()).string();
  const std::string pipe = root + "/pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& name : {pipe, root, std::string("/dev/null")}) {
    m_name = text::FromHostName(name);
    EXPECT_EQ(ErrorOfOpening(), SerialError::kNoPort) << name;
  }
  m_name = text::FromHostName(root + "/none");
  EXPECT_EQ(ErrorOfOpening(), SerialError::kMissing);
}

}  // namespace
