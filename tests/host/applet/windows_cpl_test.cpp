// The library as a control panel of Windows meets it: loaded, asked, freed.

#include <gtest/gtest.h>

#include "backends/win32/windows.h"

// After the header above, without which it does not compile.
#include <cpl.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <utility>

#include "host/machine/backends.h"
#include "resources/pictures.h"
#include "resources/strings.h"
#include "storage/device_paths.h"
#include "storage/folders.h"
#include "storage/registry_keys.h"
#include "tests/backends/win32/user.h"
#include "tests/support/file_bytes.h"
#include "tests/support/temp_folder.h"

namespace {

constexpr int kRawData = 10;
constexpr int kTwiceAsLarge = 20000;

class WindowsLibrary : public testing::Test {
 protected:
  WindowsLibrary()
      : m_module(Load()),
        m_entry(reinterpret_cast<APPLET_PROC>(
            reinterpret_cast<void*>(GetProcAddress(m_module, "CPlApplet")))) {}
  ~WindowsLibrary() override {
    if (m_module != nullptr) {
      FreeLibrary(m_module);
    }
  }

  [[nodiscard]] LONG Send(UINT message, LPARAM first = 0, LPARAM second = 0) const {
    return m_entry(nullptr, message, first, second);
  }

  [[nodiscard]] static HMODULE Load() {
    return LoadLibraryW(std::filesystem::path(VOXTREL_CPL).c_str());
  }
  /// Frees the library as a panel does that has no more use for it.
  void Free() { FreeLibrary(std::exchange(m_module, nullptr)); }

  HMODULE m_module;
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

TEST_F(WindowsLibrary, ExportsItsEntryUndecoratedAndNothingElse) {
  const auto* const base = reinterpret_cast<const std::byte*>(m_module);
  const auto* const file = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + file->e_lfanew);
  const auto* const exports = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(
      base + headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress);
  ASSERT_EQ(exports->NumberOfFunctions, 1U);
  ASSERT_EQ(exports->NumberOfNames, 1U);
  const auto* const names = reinterpret_cast<const DWORD*>(base + exports->AddressOfNames);
  EXPECT_STREQ(reinterpret_cast<const char*>(base + names[0]), "CPlApplet");
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

/// The sheet, with a folder and a contact of the test's own.
class WindowsLibrarySheet : public WindowsLibrary {
 protected:
  WindowsLibrarySheet() {
    const auto cards = m_folder.Path() / "cards.vcf";
    std::ofstream(cards) << "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:a\r\nN:Lee;Ann;;;\r\nFN:Ann Lee\r\n"
                            "TEL;TYPE=CELL:5551234\r\nEND:VCARD\r\n";
    Set("VOXTREL_ROOT", (m_folder.Path() / "root").string());
    Set("VOXTREL_CONTACTS", cards.string());
  }
  ~WindowsLibrarySheet() override {
    Set("VOXTREL_ROOT", "");
    Set("VOXTREL_CONTACTS", "");
  }

  /// Opens the sheet above `parent`. Calls `look` when it is shown, and closes it.
  LONG Open(HWND parent, const std::function<void(HWND sheet)>& look) {
    support::User::WhenShown(look);
    support::User::WhenShown([](HWND sheet) { PostMessageW(sheet, WM_COMMAND, IDOK, 0); });
    const LONG answer = m_entry(parent, CPL_DBLCLK, 0, 0);
    support::User::Leave();
    return answer;
  }

  [[nodiscard]] machine::Options GetOptions() const {
    return {.root = (m_folder.Path() / "root").string(),
            .microphone = {},
            .speaker = {},
            .contacts = {}};
  }

 private:
  static void Set(const char* name, const std::string& value) {
    static_cast<void>(_putenv_s(name, value.c_str()));
  }

  support::TempFolder m_folder;
};

TEST_F(WindowsLibrarySheet, ThePanelsWindowOwnsItAndTakesNothingMeanwhile) {
  const HWND panel = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPED | WS_VISIBLE, 0, 0, 90, 90,
                                     nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(Send(CPL_INIT), 1);
  EXPECT_EQ(Open(panel,
                 [&](HWND sheet) {
                   EXPECT_EQ(support::User::TextOf(sheet), L"Property");
                   EXPECT_EQ(GetWindow(sheet, GW_OWNER), panel);
                   EXPECT_FALSE(IsWindowEnabled(panel));
                 }),
            0);
  EXPECT_TRUE(IsWindowEnabled(panel));
  EXPECT_EQ(Send(CPL_EXIT), 0);
  DestroyWindow(panel);
}

TEST_F(WindowsLibrarySheet, ADoubleClickWhileItIsOpenIsAnsweredAtOnceAndOpensNoOther) {
  EXPECT_EQ(Send(CPL_INIT), 1);
  Open(nullptr, [&](HWND sheet) {
    EXPECT_EQ(Send(CPL_DBLCLK), 0);
    EXPECT_EQ(Send(CPL_DBLCLK, 1), 1);
    // A panel that ends while its sheet is open does not take the sheet's parts away.
    EXPECT_EQ(Send(CPL_EXIT), 0);
    EXPECT_EQ(support::User::FindShown(), sheet);
  });
  EXPECT_EQ(Send(CPL_EXIT), 0);
}

TEST_F(WindowsLibrarySheet, TheLibraryGoesWhenItIsFreedAfterTheLastMessage) {
  EXPECT_EQ(Send(CPL_INIT), 1);
  Open(nullptr, [](HWND /*sheet*/) {});
  EXPECT_EQ(Send(CPL_EXIT), 0);
  Free();
  EXPECT_EQ(GetModuleHandleW(L"voxtrel.cpl"), nullptr);
}

// Code that runs must not go away, and what it has made cannot be destroyed while the system frees
// a library: the loader's lock is held then, and a thread that was waited for would never end.
TEST_F(WindowsLibrarySheet, ALibraryThatIsFreedWhileItIsOpenStaysUntilTheProcessEnds) {
  EXPECT_EQ(Send(CPL_INIT), 1);
  EXPECT_EQ(Open(nullptr,
                 [&](HWND sheet) {
                   Free();
                   UpdateWindow(sheet);
                   EXPECT_TRUE(IsWindow(sheet));
                 }),
            0);
  EXPECT_NE(GetModuleHandleW(L"voxtrel.cpl"), nullptr);
  m_module = Load();
  EXPECT_EQ(Send(CPL_EXIT), 0);
}

/// Does `act` once, when a window of this thread with a title becomes the active one. That is
/// before the window takes any message, and so before any thread can close it.
class WhenActive {
 public:
  WhenActive(std::wstring title, std::function<void()> act)
      : m_hook(SetWindowsHookExW(WH_CBT, &OnEvent, nullptr, GetCurrentThreadId())) {
    s_title = std::move(title);
    s_act = std::move(act);
  }
  WhenActive(const WhenActive&) = delete;
  WhenActive& operator=(const WhenActive&) = delete;
  ~WhenActive() { UnhookWindowsHookEx(m_hook); }

 private:
  static LRESULT CALLBACK OnEvent(int code, WPARAM window, LPARAM more) {
    if (code == HCBT_ACTIVATE && s_act &&
        support::User::TextOf(reinterpret_cast<HWND>(window)) == s_title) {  // NOLINT
      std::exchange(s_act, nullptr)();
    }
    return CallNextHookEx(nullptr, code, window, more);
  }

  static inline std::wstring s_title;
  static inline std::function<void()> s_act;
  const HHOOK m_hook;
};

TEST_F(WindowsLibrarySheet, AWorkerGoesOnInALibraryThatIsFreedMeanwhile) {
  const machine::Options options = GetOptions();
  machine::Backends store(options);
  std::ifstream sample(std::filesystem::path(VOXTREL_SAMPLES_DIR) / "anna_1.wav", std::ios::binary);
  const std::string recording((std::istreambuf_iterator<char>(sample)),
                              std::istreambuf_iterator<char>());
  std::filesystem::create_directories(options.root);
  ASSERT_TRUE(storage::CreateStoreFolders(store.GetFiles()));
  const std::array<std::u16string, 2> tags{u"100", u"200"};
  for (const std::u16string& tag : tags) {
    // A tag that names no contact is nobody's to delete. It has no template yet.
    ASSERT_TRUE(store.GetRegistry().CreateKey(storage::EntryPath(tag)));
    ASSERT_TRUE(support::WriteWhole(store.GetFiles(), storage::WavePath(tag), recording));
  }
  EXPECT_EQ(Send(CPL_INIT), 1);
  bool wasFreed = false;
  const WhenActive freeing(L"Reinitialization", [&] {
    Free();
    wasFreed = true;
  });
  // The sheet takes no press before the page has seen the end of its worker.
  const std::function<void(HWND)> close = [&](HWND window) {
    if (wasFreed && support::User::TextOf(window) == L"Property") {
      PostMessageW(window, WM_COMMAND, IDOK, 0);
    }
    support::User::WhenShown(close);
  };
  support::User::WhenShown(close);
  EXPECT_EQ(Send(CPL_DBLCLK), 0);
  support::User::Leave();
  EXPECT_TRUE(wasFreed);
  for (const std::u16string& tag : tags) {
    EXPECT_TRUE(store.GetFiles().Find(storage::TemplatePath(tag)));
  }
  EXPECT_NE(GetModuleHandleW(L"voxtrel.cpl"), nullptr);
  m_module = Load();
  EXPECT_EQ(Send(CPL_EXIT), 0);
  EXPECT_TRUE(store.GetRegistry().DeleteKey(storage::kTagKey));
}

}  // namespace
