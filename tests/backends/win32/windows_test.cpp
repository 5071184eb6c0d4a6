#include <commctrl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <prsht.h>

#include <array>

#include "backends/win32/win32_ui.h"
#include "framework/dialog.h"
#include "tests/backends/win32/user.h"

namespace {

using platform::CommandEvent;
using resources::ControlKind;
using support::User;

constexpr int kList = 15;
constexpr int kGo = 16;
constexpr int kWipe = 17;
constexpr int kBar = 30;

constexpr std::array<resources::ControlTemplate, 3> kControls{{
    {kList, ControlKind::kListBox, u"", {6, 70, 100, 40}},
    {kGo, ControlKind::kDefaultPushButton, u"R&D", {6, 48, 50, 13}},
    {kWipe, ControlKind::kPushButton, u"Wipe", {60, 48, 50, 13}},
}};
constexpr std::array<resources::KeyTemplate, 2> kKeys{{
    {kList, resources::Key::kDelete, kWipe},
    {kList, resources::Key::kSpace, kGo},
}};
constexpr resources::DialogTemplate kFirst{81, u"First", 160, 167, kControls, kKeys};
constexpr resources::DialogTemplate kSecond{82, u"Second", 160, 167, {}};

/// A page that notes what it hears.
class Page : public framework::CPropertyPage {
 public:
  using CPropertyPage::CPropertyPage;

  bool OnInitDialog() override {
    heard += "init ";
    if (onInit) onInit();
    return true;
  }
  void OnCommand(int id, CommandEvent event) override {
    heard += std::to_string(id) + (event == CommandEvent::kClick ? " " : "? ");
    if (onCommand) onCommand();
  }
  void OnPaint(platform::Canvas& canvas) override {
    canvas.DrawLine({10, 4}, {20, 4}, {255, 0, 0});
    ++paintings;
  }
  void OnLButtonDown(platform::Point point) override {
    heard += "press(" + std::to_string(point.x) + "," + std::to_string(point.y) + ") ";
  }
  [[nodiscard]] std::vector<platform::PaintedLink> GetLinks() const override { return links; }
  bool OnHelp() override {
    heard += "help ";
    return hasHelp;
  }
  void OnOK() override { heard += "ok "; }
  void Detach() override {
    heard += "detach";
    CPropertyPage::Detach();
  }
  [[nodiscard]] platform::DialogWindow& Window() const { return GetWindow(); }

  std::function<void()> onInit;
  std::function<void()> onCommand;
  std::vector<platform::PaintedLink> links;
  bool hasHelp = false;
  int paintings = 0;
  std::string heard;
};

class Sheet final : public framework::CPropertySheet {
 public:
  using CPropertySheet::CPropertySheet;

  bool OnInitDialog() override {
    GetWindow().SetTabText(1, u"Deuxième");
    return CPropertySheet::OnInitDialog();
  }
  void OnHelp() override { ++helps; }

  int helps = 0;
};

/// What the test does in front of the sheet is done on the user-interface thread, while it is
/// shown.
class Win32Sheet : public testing::Test {
 protected:
  /// Returns whether the sheet was closed by OK. Closes it after the last act.
  bool Show(std::vector<std::function<void(HWND)>> acts) {
    m_sheet.AddPage(m_first);
    m_sheet.AddPage(m_second);
    for (auto& act : acts) {
      User::WhenShown(std::move(act));
    }
    User::WhenShown([](HWND window) { PostMessageW(window, WM_SYSCOMMAND, SC_CLOSE, 0); });
    const bool accepted = m_sheet.DoModal();
    User::Leave();
    return accepted;
  }

  static void PressOk(HWND window) { User::Press(GetDlgItem(window, IDOK)); }
  static HWND PageOf(HWND window) {
    return reinterpret_cast<HWND>(SendMessageW(window, PSM_GETCURRENTPAGEHWND, 0, 0));
  }
  static HWND Control(HWND window, int id) { return User::FindControl(PageOf(window), id); }
  static void TurnTo(HWND window, int page) {
    SendMessageW(window, PSM_SETCURSEL, static_cast<WPARAM>(page), 0);
  }
  static std::wstring TabText(HWND window, int tab) {
    std::array<wchar_t, 40> text{};
    TCITEMW item{};
    item.mask = TCIF_TEXT;
    item.pszText = text.data();
    item.cchTextMax = static_cast<int>(text.size());
    SendMessageW(reinterpret_cast<HWND>(SendMessageW(window, PSM_GETTABCONTROL, 0, 0)),
                 TCM_GETITEMW, static_cast<WPARAM>(tab), reinterpret_cast<LPARAM>(&item));
    return text.data();
  }

  win32::UiThread m_thread;
  win32::Win32Ui m_ui{m_thread, u"Zedra", nullptr};
  Page m_first{kFirst, m_ui};
  Page m_second{kSecond, m_ui};
  Sheet m_sheet{u"Property & more", m_ui};
};

TEST_F(Win32Sheet, HasItsCaptionItsTabsAndTheOneButton) {
  Show({[](HWND window) {
    EXPECT_EQ(User::TextOf(window), L"Property & more");
    EXPECT_EQ(TabText(window, 0), L"First");
    EXPECT_EQ(TabText(window, 1), L"Deuxième");
    EXPECT_TRUE(IsWindowVisible(GetDlgItem(window, IDOK)));
    EXPECT_FALSE(IsWindowVisible(GetDlgItem(window, IDCANCEL)));
  }});
}

TEST_F(Win32Sheet, OkReachesThePagesThatWereSetUpAndNoOther) {
  EXPECT_TRUE(Show({&PressOk}));
  EXPECT_EQ(m_first.heard, "init ok detach");
  EXPECT_EQ(m_second.heard, "");
}

TEST_F(Win32Sheet, APageIsSetUpWhenItIsFirstShownAndOnce) {
  EXPECT_TRUE(Show({[](HWND window) {
    TurnTo(window, 1);
    TurnTo(window, 0);
    TurnTo(window, 1);
    PressOk(window);
  }}));
  EXPECT_EQ(m_first.heard, "init ok detach");
  EXPECT_EQ(m_second.heard, "init ok detach");
}

TEST_F(Win32Sheet, TheCloseBoxIsNoOk) {
  EXPECT_FALSE(Show({}));
  EXPECT_EQ(m_first.heard, "init detach");
}

TEST_F(Win32Sheet, OpensASecondTime) {
  EXPECT_FALSE(Show({}));
  EXPECT_TRUE(Show({&PressOk}));
}

TEST_F(Win32Sheet, ThePageAnswersTheHelpKeyAndTheSheetDoesIfThePageHasNone) {
  HELPINFO help{};
  help.cbSize = sizeof(help);
  const auto ask = [&help](HWND window) {
    help.hItemHandle = Control(window, kList);
    SendMessageW(Control(window, kList), WM_HELP, 0, reinterpret_cast<LPARAM>(&help));
  };
  Show({ask, [&](HWND window) {
          m_first.hasHelp = true;
          ask(window);
        }});
  EXPECT_EQ(m_first.heard, "init help help detach");
  EXPECT_EQ(m_sheet.helps, 1);
}

TEST_F(Win32Sheet, EnterPressesTheDefaultButtonOfThePageAndOkIfThereIsNone) {
  const auto pressEnter = [](HWND window) {
    MSG enter{};
    enter.hwnd = Control(window, kList) == nullptr ? PageOf(window) : Control(window, kList);
    enter.message = WM_KEYDOWN;
    enter.wParam = VK_RETURN;
    SetFocus(enter.hwnd);
    SendMessageW(window, PSM_ISDIALOGMESSAGE, 0, reinterpret_cast<LPARAM>(&enter));
  };
  EXPECT_TRUE(Show({pressEnter, [&](HWND window) {
                      EXPECT_THAT(m_first.heard, testing::HasSubstr("16 "));
                      TurnTo(window, 1);
                      pressEnter(window);
                    }}));
  EXPECT_EQ(m_first.heard, "init 16 ok detach");
}

TEST_F(Win32Sheet, KeysOfAListPressTheirButtons) {
  Show({[](HWND window) {
    User::PressKey(Control(window, kList), VK_DELETE);
    User::PressKey(Control(window, kList), VK_SPACE);
    EnableWindow(Control(window, kWipe), FALSE);
    User::PressKey(Control(window, kList), VK_DELETE);
  }});
  EXPECT_EQ(m_first.heard, "init 17 16 detach");
}

TEST_F(Win32Sheet, AnAmpersandInAButtonIsALetter) {
  Show({[](HWND window) { EXPECT_EQ(User::TextOf(Control(window, kGo)), L"R&&D"); }});
}

TEST_F(Win32Sheet, ATextThatIsTooLongForItsButtonHasNarrowerLetters) {
  Show({[&](HWND window) {
    const auto letters = [&] {
      LOGFONTW form{};
      GetObjectW(reinterpret_cast<HFONT>(SendMessageW(Control(window, kGo), WM_GETFONT, 0, 0)),
                 sizeof(form), &form);
      return form.lfWidth;
    };
    m_first.Window().SetText(kGo, u"Record");
    EXPECT_EQ(letters(), 0);
    m_first.Window().SetText(kGo, u"Enregistrement");
    EXPECT_GT(letters(), 0);
    m_first.Window().SetText(kGo, u"Record");
    EXPECT_EQ(letters(), 0);
  }});
}

TEST_F(Win32Sheet, TheFocusNeverStaysOnWhatIsDisabledNorGoesToAButton) {
  m_first.onCommand = [&] { m_first.Window().Enable(kWipe, false); };
  Show({[](HWND window) {
    SetFocus(Control(window, kWipe));
    User::Press(Control(window, kWipe));
    EXPECT_EQ(GetFocus(), Control(window, kList));
  }});
}

TEST_F(Win32Sheet, ALinkAnswersThePressOfTheMouseAndTheKeyboard) {
  m_first.links = {{{55, 20, 65, 30}, u"https://example.org"}};
  Show({[](HWND window) {
    const HWND link = FindWindowExW(PageOf(window), nullptr, L"Button", L"https://example.org");
    ASSERT_NE(link, nullptr);
    SendMessageW(link, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(2, 3));
    SendMessageW(link, WM_LBUTTONUP, 0, MAKELPARAM(2, 3));
    SendMessageW(link, WM_KEYDOWN, VK_SPACE, 1);
    SendMessageW(link, WM_KEYUP, VK_SPACE, 1);
  }});
  EXPECT_THAT(m_first.heard, testing::StartsWith("init press(60,25) press(60,25) detach"));
}

TEST_F(Win32Sheet, APressBesideAllControlsIsReported) {
  Show({[](HWND window) {
    SendMessageW(PageOf(window), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(100, 4));
    // A disabled button lets the press through to the page.
    EnableWindow(Control(window, kWipe), FALSE);
    RECT place{};
    GetWindowRect(Control(window, kWipe), &place);
    POINT point{place.left + 2, place.top + 2};
    ScreenToClient(PageOf(window), &point);
    SendMessageW(PageOf(window), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(point.x, point.y));
  }});
  EXPECT_EQ(m_first.heard, "init press(100,4) detach");
}

TEST_F(Win32Sheet, APageThatIsInTheMiddleOfItsWorkKeepsTheSheetOpenAndHearsNothing) {
  m_first.onCommand = [&] {
    const HWND window = User::FindShown();
    SendMessageW(window, WM_SYSCOMMAND, SC_CLOSE, 0);
    SendMessageW(window, WM_COMMAND, IDOK, 0);
    SendMessageW(Control(window, kWipe), BM_CLICK, 0, 0);
    User::Choose(Control(window, kList), 0);
    EXPECT_TRUE(IsWindow(window));
  };
  m_first.onInit = [&] { m_first.Window().AddItem(kList, u"one"); };
  Show({[](HWND window) { User::Press(Control(window, kGo)); }});
  EXPECT_EQ(m_first.heard, "init 16 detach");
}

TEST_F(Win32Sheet, AProgressBarStandsWhereThePageWantsItAndStopsAtItsEnd) {
  m_first.onInit = [&] {
    m_first.Window().CreateProgressBar(kBar,
                                       {.rect = {12, 26, 112, 39}, .maximum = 100, .step = 40});
  };
  Show({[&](HWND window) {
    const HWND bar = FindWindowExW(PageOf(window), nullptr, L"msctls_progress32", nullptr);
    ASSERT_NE(bar, nullptr);
    for (const int expected : {40, 80, 100, 100}) {
      m_first.Window().StepProgress(kBar);
      EXPECT_EQ(SendMessageW(bar, PBM_GETPOS, 0, 0), expected);
    }
    m_first.Window().DestroyProgressBar(kBar);
    EXPECT_FALSE(IsWindow(bar));
  }});
}

TEST_F(Win32Sheet, PaintsAgainWhatThePageInvalidates) {
  Show({[&](HWND window) {
    UpdateWindow(PageOf(window));
    const int before = m_first.paintings;
    m_first.Window().Invalidate();
    UpdateWindow(PageOf(window));
    EXPECT_EQ(m_first.paintings, before + 1);
  }});
}

/// A canvas on a picture in memory, twice as large as the device.
class GdiCanvas : public testing::Test {
 protected:
  GdiCanvas() {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = 100;
    info.bmiHeader.biHeight = -100;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    m_bitmap = CreateDIBSection(m_context, &info, DIB_RGB_COLORS, &m_bits, nullptr, 0);
    m_earlier = SelectObject(m_context, m_bitmap);
    PatBlt(m_context, 0, 0, 100, 100, WHITENESS);
  }
  ~GdiCanvas() override {
    SelectObject(m_context, m_earlier);
    DeleteObject(m_bitmap);
    DeleteDC(m_context);
  }
  /// Returns the place of everything that is not white, and an empty one if all is.
  [[nodiscard]] platform::Rect Painted() const {
    platform::Rect painted{100, 100, 0, 0};
    for (int y = 0; y < 100; ++y) {
      for (int x = 0; x < 100; ++x) {
        if (GetPixel(m_context, x, y) != RGB(255, 255, 255)) {
          painted = {std::min(painted.left, x), std::min(painted.top, y),
                     std::max(painted.right, x + 1), std::max(painted.bottom, y + 1)};
        }
      }
    }
    return painted.left < painted.right ? painted : platform::Rect();
  }

  const HDC m_context = CreateCompatibleDC(nullptr);
  HBITMAP m_bitmap = nullptr;
  HGDIOBJ m_earlier = nullptr;
  void* m_bits = nullptr;
  win32::Pictures m_pictures{nullptr};
  win32::GdiCanvas m_canvas{m_context, {0, 0, 50, 50}, win32::Scale(12, 26), m_pictures};
};

TEST_F(GdiCanvas, ALineIncludesBothEndsAtEveryScale) {
  m_canvas.DrawLine({5, 10}, {9, 10}, {255, 0, 0});
  EXPECT_EQ(Painted(), (platform::Rect{10, 20, 20, 22}));
  EXPECT_EQ(GetPixel(m_context, 10, 20), RGB(255, 0, 0));
}

TEST_F(GdiCanvas, ATextInAnAreaIsCutOffAtItsEdges) {
  m_canvas.DrawTextIn({5, 5, 20, 10}, u"MMMMMMMMMM", {}, {0, 0, 0});
  const platform::Rect painted = Painted();
  EXPECT_NE(painted, platform::Rect());
  EXPECT_GE(painted.left, 10);
  EXPECT_GE(painted.top, 10);
  EXPECT_LE(painted.right, 40);
  EXPECT_LE(painted.bottom, 20);
}

TEST_F(GdiCanvas, ALineBreakInATextIsABlank) {
  EXPECT_EQ(m_canvas.GetTextWidth(u"a\nb", {}), m_canvas.GetTextWidth(u"a b", {}));
  EXPECT_GT(m_canvas.GetTextWidth(u"a b", {}), 0);
}

TEST_F(GdiCanvas, APictureThatIsNotThereIsNotDrawn) {
  m_canvas.DrawPicture({0, 0}, 4711);
  m_canvas.DrawPicture({0, 0}, 136);
  EXPECT_EQ(Painted(), platform::Rect());
}

}  // namespace
