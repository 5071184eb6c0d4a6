#include "backends/posix/posix_module.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <string>
#include <string_view>

namespace {

constexpr int kIcon = 129;
constexpr std::string_view kDrawing = "<svg/>";

[[nodiscard]] posix::PosixModule MakeModule() {
  return posix::PosixModule([](int id) {
    return id == kIcon ? std::as_bytes(std::span(kDrawing)) : std::span<const std::byte>();
  });
}

[[nodiscard]] bool IsOpen(platform::IconHandle icon) {
  return ::fcntl(static_cast<int>(icon), F_GETFD) >= 0;
}

TEST(PosixModule, AnIconIsADescriptorOfItsPicture) {
  posix::PosixModule module = MakeModule();
  const platform::IconHandle icon = module.LoadIcon(kIcon);
  ASSERT_GT(icon, 2U);
  struct stat file {};
  ASSERT_EQ(::fstat(static_cast<int>(icon), &file), 0);
  EXPECT_EQ(file.st_size, static_cast<off_t>(kDrawing.size()));
  std::array<char, 100> content{};
  const ssize_t length = ::pread(static_cast<int>(icon), content.data(), content.size(), 0);
  EXPECT_EQ(std::string_view(content.data(), static_cast<std::size_t>(length)), kDrawing);
}

TEST(PosixModule, NobodyChangesAnIcon) {
  posix::PosixModule module = MakeModule();
  const int icon = static_cast<int>(module.LoadIcon(kIcon));
  EXPECT_LT(::pwrite(icon, "x", 1, 0), 0);
  EXPECT_NE(::ftruncate(icon, 0), 0);
  EXPECT_NE(::fcntl(icon, F_GETFD) & FD_CLOEXEC, 0);
}

TEST(PosixModule, AnIconKeepsItsHandleUntilItIsDestroyed) {
  posix::PosixModule module = MakeModule();
  const platform::IconHandle icon = module.LoadIcon(kIcon);
  EXPECT_EQ(module.LoadIcon(kIcon), icon);
  module.DestroyIcon(icon);
  EXPECT_FALSE(IsOpen(icon));
  EXPECT_NE(module.LoadIcon(kIcon), platform::kNoIcon);
}

TEST(PosixModule, DestroysItsOwnIconsAlone) {
  posix::PosixModule module = MakeModule();
  const platform::IconHandle icon = module.LoadIcon(kIcon);
  const int other = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  module.DestroyIcon(static_cast<platform::IconHandle>(other));
  module.DestroyIcon(platform::kNoIcon);
  EXPECT_TRUE(IsOpen(static_cast<platform::IconHandle>(other)));
  EXPECT_TRUE(IsOpen(icon));
  ::close(other);
}

TEST(PosixModule, AnIconGoesWithTheModule) {
  platform::IconHandle icon = platform::kNoIcon;
  {
    posix::PosixModule module = MakeModule();
    icon = module.LoadIcon(kIcon);
  }
  EXPECT_FALSE(IsOpen(icon));
}

TEST(PosixModule, ANumberWithoutAPictureIsNoIcon) {
  posix::PosixModule module = MakeModule();
  EXPECT_EQ(module.LoadIcon(1), platform::kNoIcon);
}

TEST(PosixModule, CopiesWhatFitsOfAString) {
  posix::PosixModule module = MakeModule();
  std::array<char16_t, 32> name{};
  EXPECT_EQ(module.LoadString(1, name), 13);
  EXPECT_EQ(std::u16string_view(name.data()), u"Zedra Voxtrel");
  std::array<char16_t, 6> little{};
  EXPECT_EQ(module.LoadString(1, little), 5);
  EXPECT_EQ(std::u16string_view(little.data()), u"Zedra");
}

TEST(PosixModule, LeavesTheBufferAloneIfThereIsNoString) {
  posix::PosixModule module = MakeModule();
  std::array<char16_t, 2> buffer{u'a', u'b'};
  EXPECT_EQ(module.LoadString(2, buffer), 0);
  EXPECT_EQ(module.LoadString(1, {}), 0);
  EXPECT_EQ(buffer, (std::array<char16_t, 2>{u'a', u'b'}));
}

}  // namespace
