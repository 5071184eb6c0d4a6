// The library as a control panel of Windows meets it: loaded, asked, freed.

#include <gtest/gtest.h>

#include "backends/win32/windows.h"

// After the header above, without which it does not compile.
#include <cpl.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "resources/pictures.h"
#include "resources/strings.h"

namespace {

constexpr int kRawData = 10;
constexpr int kTwiceAsLarge = 20000;

class WindowsLibrary : public testing::Test {
 protected:
  WindowsLibrary()
      : m_module(LoadLibraryW(std::filesystem::path(VOXTREL_CPL).c_str())),
        m_entry(reinterpret_cast<APPLET_PROC>(
            reinterpret_cast<void*>(GetProcAddress(m_module, "CPlApplet")))) {}
  ~WindowsLibrary() override { FreeLibrary(m_module); }

  [[nodiscard]] LONG Send(UINT message, LPARAM first = 0, LPARAM second = 0) const {
    return m_entry(nullptr, message, first, second);
  }

  const HMODULE m_module;
  const APPLET_PROC m_entry;
};

TEST_F(WindowsLibrary, AnswersThePanelInItsOrderAndIsFreed) {
  ASSERT_NE(m_entry, nullptr);
  NEWCPLINFOW record;
  std::memset(&record, 0xA5, sizeof(record));
  EXPECT_EQ(Send(CPL_INIT), 1);
  EXPECT_EQ(Send(CPL_GETCOUNT), 1);
  EXPECT_EQ(Send(CPL_INQUIRE), 0);
  EXPECT_EQ(Send(CPL_NEWINQUIRE, 0, reinterpret_cast<LPARAM>(&record)), 0);
  EXPECT_EQ(Send(CPL_STARTWPARMSW), 0);
  EXPECT_EQ(record.dwSize, sizeof(record));
  EXPECT_EQ(static_cast<int>(record.lData), resources::kAppletIcon);
  EXPECT_NE(record.hIcon, nullptr);
  EXPECT_EQ(std::wstring(record.szName), L"Zedra Voxtrel");
  // The rest is the caller's.
  EXPECT_EQ(record.dwFlags, 0xA5A5A5A5U);
  EXPECT_EQ(record.dwHelpContext, 0xA5A5A5A5U);
  EXPECT_EQ(record.szInfo[0], 0xA5A5);
  EXPECT_EQ(record.szHelpFile[0], 0xA5A5);
  EXPECT_EQ(Send(CPL_STOP, 1), 1);
  EXPECT_EQ(Send(CPL_STOP, 0), 0);
  EXPECT_EQ(Send(CPL_EXIT), 0);
}

TEST_F(WindowsLibrary, IsLoadedAndFreedAgainAndAgain) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(Send(CPL_INIT), 1);
    EXPECT_EQ(Send(CPL_EXIT), 0);
  }
}

TEST_F(WindowsLibrary, HoldsTheNameTheIconAndEveryPictureByTheirNumbers) {
  std::array<wchar_t, 40> name{};
  LoadStringW(m_module, resources::kAppletNameString, name.data(), static_cast<int>(name.size()));
  const std::wstring_view read = name.data();
  EXPECT_EQ(std::u16string(read.begin(), read.end()), resources::kAppletName);
  EXPECT_NE(LoadIconW(m_module, MAKEINTRESOURCEW(resources::kAppletIcon)), nullptr);
  for (const int picture : {resources::kMakerPicture, resources::kHelpPicture,
                            resources::kWebSitePicture, resources::kProductPicture}) {
    for (const int number : {picture, kTwiceAsLarge + picture}) {
      EXPECT_NE(FindResourceW(m_module, MAKEINTRESOURCEW(number), MAKEINTRESOURCEW(kRawData)),
                nullptr)
          << number;
    }
  }
}

}  // namespace
