#include "backends/posix/library.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/results.h"
#include "tests/support/temp_folder.h"

namespace posix {
namespace {

using Paths = std::vector<std::filesystem::path>;

TEST(LoadedLibrary, TheOwnFileOfAProgramIsItself) {
  EXPECT_EQ(FindOwnFile(), std::filesystem::canonical(POSIX_TEST));
}

TEST(LoadedLibrary, TheOwnFileOfALibraryIsTheLibrary) {
  const auto found = LoadFunction(Paths{SMALL_DOOR}, "TellOwnFile");
  ASSERT_TRUE(found) << found.error();
  std::string file;
  reinterpret_cast<void (*)(std::string&)> (*found)(file);
  EXPECT_EQ(file, std::filesystem::canonical(SMALL_DOOR));
}

TEST(LoadedLibrary, AFunctionIsFoundInTheFirstLibraryThatIsThere) {
  const auto found = LoadFunction(Paths{"/nowhere/a.so", SMALL_DOOR}, "TellFortyTwo");
  ASSERT_TRUE(found) << found.error();
  EXPECT_EQ(reinterpret_cast<int (*)()>(*found)(), 42);
}

TEST(LoadedLibrary, ALibraryThatIsNowhereIsReported) {
  const auto found = LoadFunction(Paths{"/nowhere/a.so", "/nobody/a.so"}, "TellFortyTwo");
  EXPECT_EQ(support::ErrorOf(found), "a.so is missing");
  EXPECT_FALSE(LoadFunction(Paths{}, "TellFortyTwo"));
}

TEST(LoadedLibrary, AFileThatIsNoLibraryIsReported) {
  const support::TempFolder folder;
  const std::filesystem::path file = folder.Path() / "text.so";
  std::ofstream(file) << "no library at all, and long enough to look like one";
  const auto found = LoadFunction(Paths{file, SMALL_DOOR}, "TellFortyTwo");
  ASSERT_FALSE(found);
  EXPECT_THAT(found.error(), testing::HasSubstr("text.so"));
}

TEST(LoadedLibrary, AFunctionThatIsNotExportedIsReported) {
  const auto found = LoadFunction(Paths{SMALL_DOOR}, "TellNothing");
  ASSERT_FALSE(found);
  EXPECT_THAT(found.error(), testing::HasSubstr("TellNothing"));
}

constexpr int kIcon = 129;
constexpr std::string_view kDrawing = "<svg/>";

[[nodiscard]] PosixModule MakeModule() {
  return PosixModule([](int id) {
    return id == kIcon ? std::as_bytes(std::span(kDrawing)) : std::span<const std::byte>();
  });
}

[[nodiscard]] bool IsOpen(platform::IconHandle icon) {
  return ::fcntl(static_cast<int>(icon), F_GETFD) >= 0;
}

TEST(PosixModule, AnIconIsADescriptorOfItsPicture) {
  PosixModule module = MakeModule();
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
  PosixModule module = MakeModule();
  const int icon = static_cast<int>(module.LoadIcon(kIcon));
  EXPECT_LT(::pwrite(icon, "x", 1, 0), 0);
  EXPECT_NE(::ftruncate(icon, 0), 0);
  EXPECT_NE(::fcntl(icon, F_GETFD) & FD_CLOEXEC, 0);
}

TEST(PosixModule, AnIconKeepsItsHandleUntilItIsDestroyed) {
  PosixModule module = MakeModule();
  const platform::IconHandle icon = module.LoadIcon(kIcon);
  EXPECT_EQ(module.LoadIcon(kIcon), icon);
  module.DestroyIcon(icon);
  EXPECT_FALSE(IsOpen(icon));
  EXPECT_NE(module.LoadIcon(kIcon), platform::kNoIcon);
}

TEST(PosixModule, DestroysItsOwnIconsAlone) {
  PosixModule module = MakeModule();
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
    PosixModule module = MakeModule();
    icon = module.LoadIcon(kIcon);
  }
  EXPECT_FALSE(IsOpen(icon));
}

TEST(PosixModule, ANumberWithoutAPictureIsNoIcon) {
  PosixModule module = MakeModule();
  EXPECT_EQ(module.LoadIcon(1), platform::kNoIcon);
}

TEST(PosixModule, CopiesWhatFitsOfAString) {
  PosixModule module = MakeModule();
  std::array<char16_t, 32> name{};
  EXPECT_EQ(module.LoadString(1, name), 13);
  EXPECT_EQ(std::u16string_view(name.data()), u"Zedra Voxtrel");
  std::array<char16_t, 6> little{};
  EXPECT_EQ(module.LoadString(1, little), 5);
  EXPECT_EQ(std::u16string_view(little.data()), u"Zedra");
}

TEST(PosixModule, LeavesTheBufferAloneIfThereIsNoString) {
  PosixModule module = MakeModule();
  std::array<char16_t, 2> buffer{u'a', u'b'};
  EXPECT_EQ(module.LoadString(2, buffer), 0);
  EXPECT_EQ(module.LoadString(1, {}), 0);
  EXPECT_EQ(buffer, (std::array<char16_t, 2>{u'a', u'b'}));
}

}  // namespace
}  // namespace posix
