#include "backends/posix/doorbell.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <filesystem>
#include <optional>

#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace {

using posix::DoorbellError;
using support::ErrorOf;

class Doorbell : public testing::Test {
 protected:
  Doorbell() : m_path((m_folder.Path() / "bell").string()) {}

  [[nodiscard]] static bool IsRung(const posix::Doorbell& bell) {
    pollfd waited{bell.GetDescriptor(), POLLIN, 0};
    return ::poll(&waited, 1, 0) == 1;
  }

  support::TempFolder m_folder;
  const std::string m_path;
};

TEST_F(Doorbell, BringsTheMessagesInTheirOrder) {
  posix::Doorbell bell;
  ASSERT_TRUE(bell.Hang(m_path));
  EXPECT_FALSE(IsRung(bell));
  EXPECT_EQ(bell.Answer(), std::nullopt);
  EXPECT_TRUE(posix::Doorbell::Ring(m_path, "first"));
  EXPECT_TRUE(posix::Doorbell::Ring(m_path, ""));
  EXPECT_TRUE(IsRung(bell));
  EXPECT_EQ(bell.Answer(), "first");
  EXPECT_EQ(bell.Answer(), "");
  EXPECT_EQ(bell.Answer(), std::nullopt);
}

TEST_F(Doorbell, DoesNotRingIfThereIsNone) {
  EXPECT_EQ(ErrorOf(posix::Doorbell::Ring(m_path, "x")), DoorbellError::kNoBell);
  EXPECT_EQ(ErrorOf(posix::Doorbell::Ring("", "x")), DoorbellError::kBadPath);
}

TEST_F(Doorbell, GoesWithItsOwner) {
  {
    posix::Doorbell bell;
    ASSERT_TRUE(bell.Hang(m_path));
  }
  EXPECT_FALSE(std::filesystem::exists(m_path));
  EXPECT_FALSE(posix::Doorbell::Ring(m_path, "x"));
}

TEST_F(Doorbell, TakesThePlaceOfOneThatWasLeftBehind) {
  {
    // A process that was killed leaves the name of its socket.
    const int left = ::socket(AF_UNIX, SOCK_DGRAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::ranges::copy(m_path, static_cast<char*>(address.sun_path));
    ASSERT_EQ(::bind(left, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    ::close(left);
  }
  ASSERT_TRUE(std::filesystem::exists(m_path));
  EXPECT_FALSE(posix::Doorbell::Ring(m_path, "x"));
  posix::Doorbell bell;
  EXPECT_TRUE(bell.Hang(m_path));
  EXPECT_TRUE(posix::Doorbell::Ring(m_path, "x"));
  EXPECT_EQ(bell.Answer(), "x");
}

TEST_F(Doorbell, IsForItsOwnUserAlone) {
  posix::Doorbell bell;
  ASSERT_TRUE(bell.Hang(m_path));
  using std::filesystem::perms;
  EXPECT_EQ(std::filesystem::status(m_path).permissions(), perms::owner_read | perms::owner_write);
}

TEST_F(Doorbell, ANameTooLongForASocketIsRefused) {
  posix::Doorbell bell;
  const std::string path = "/" + std::string(200, 'x');
  EXPECT_EQ(ErrorOf(bell.Hang(path)), DoorbellError::kBadPath);
  EXPECT_EQ(ErrorOf(posix::Doorbell::Ring(path, "")), DoorbellError::kBadPath);
}

TEST_F(Doorbell, NeedsAFolderThatIsThere) {
  posix::Doorbell bell;
  EXPECT_EQ(ErrorOf(bell.Hang((m_folder.Path() / "missing" / "bell").string())),
            DoorbellError::kFailed);
}

TEST_F(Doorbell, AMessageTooLongDoesNotArrive) {
  posix::Doorbell bell;
  ASSERT_TRUE(bell.Hang(m_path));
  EXPECT_EQ(
      ErrorOf(posix::Doorbell::Ring(m_path, std::string(posix::Doorbell::kMaxMessage + 1, 'x'))),
      DoorbellError::kMessageTooLong);
  EXPECT_FALSE(IsRung(bell));
  EXPECT_TRUE(posix::Doorbell::Ring(m_path, std::string(posix::Doorbell::kMaxMessage, 'x')));
}

TEST_F(Doorbell, NobodyWhoRingsIsKeptWaiting) {
  posix::Doorbell bell;
  ASSERT_TRUE(bell.Hang(m_path));
  int rung = 0;
  // Until the system takes no more; a call that waited would not return.
  while (rung < 100000 && posix::Doorbell::Ring(m_path, "x")) {
    ++rung;
  }
  EXPECT_GT(rung, 0);
  EXPECT_LT(rung, 100000);
}

TEST_F(Doorbell, HasOnePlaceForEachDevice) {
  const auto path = [](const std::string& root) {
    return posix::Doorbell::PathFor("/run/user/1", root);
  };
  EXPECT_EQ(path("/a/b"), path("/a/./c/../b/"));
  EXPECT_NE(path("/a/b"), path("/a/c"));
  EXPECT_TRUE(path("/a/b").starts_with("/run/user/1/voxtrel-"));
  EXPECT_LT(path("/a/" + std::string(300, 'b')).size(), 60U);
  EXPECT_TRUE(posix::Doorbell::PathFor("", "/a/b").starts_with("/a/b/voxtrel-"));
  EXPECT_TRUE(posix::Doorbell::PathFor("relative", "/a/b").starts_with("/a/b/voxtrel-"));
}

}  // namespace
