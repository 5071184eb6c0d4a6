#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <string>
#include <thread>

#include "backends/win32/win32_ui.h"
#include "framework/dialog.h"
#include "resources/dialogs.h"
#include "tests/backends/win32/user.h"

namespace {

using support::User;

TEST(UiThread, ServesPostedCallsAndLosesTheUsersInputDuringAWait) {
  win32::UiThread thread;
  const HWND window = CreateWindowExW(0, L"EDIT", L"", WS_OVERLAPPED | WS_VISIBLE, 0, 0, 90, 90,
                                      nullptr, nullptr, nullptr, nullptr);
  ASSERT_NE(window, nullptr);
  PostMessageW(window, WM_CHAR, L'x', 1);
  PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, 0);
  PostMessageW(window, WM_SYSCOMMAND, SC_CLOSE, 0);
  std::promise<void> served;
  thread.Post([&] {
    EXPECT_TRUE(thread.IsWaiting());
    served.set_value();
  });
  thread.Await([&] { served.get_future().wait(); });
  EXPECT_FALSE(thread.IsWaiting());
  MSG left;
  while (PeekMessageW(&left, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&left);
  EXPECT_EQ(User::TextOf(window), L"");
  EXPECT_TRUE(IsWindow(window));
  DestroyWindow(window);
}

TEST(UiThread, PaintsDuringAWait) {
  win32::UiThread thread;
  const HWND window = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPED | WS_VISIBLE, 0, 0, 90, 90,
                                      nullptr, nullptr, nullptr, nullptr);
  InvalidateRect(window, nullptr, TRUE);
  ASSERT_TRUE(GetUpdateRect(window, nullptr, FALSE));
  std::promise<void> painted;
  // A timer comes only after all painting.
  static std::promise<void>* s_painted = &painted;
  SetTimer(nullptr, 0, USER_TIMER_MINIMUM, [](HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    s_painted->set_value();
  });
  thread.Await([&] { painted.get_future().wait(); });
  EXPECT_FALSE(GetUpdateRect(window, nullptr, FALSE));
  DestroyWindow(window);
}

TEST(UiThread, AProgramThatHasToQuitQuitsAfterTheWait) {
  win32::UiThread thread;
  std::promise<void> served;
  PostQuitMessage(7);
  thread.Post([&] { served.set_value(); });
  thread.Await([&] { served.get_future().wait(); });
  MSG quit{};
  ASSERT_TRUE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  EXPECT_EQ(quit.wParam, 7U);
}

TEST(UiThread, AWaitOfAnotherThreadIsJustAWait) {
  win32::UiThread thread;
  bool isDone = false;
  std::thread([&] {
    const auto own = std::this_thread::get_id();
    thread.Await([&] { isDone = std::this_thread::get_id() == own; });
  }).join();
  EXPECT_TRUE(isDone);
}

TEST(UiThread, ACallThatIsNotServedIsDropped) {
  const auto counted = std::make_shared<int>(0);
  {
    win32::UiThread thread;
    thread.Post([counted] { ++*counted; });
    EXPECT_EQ(counted.use_count(), 2);
  }
  EXPECT_EQ(counted.use_count(), 1);
  EXPECT_EQ(*counted, 0);
}

/// A dialog that is worked on by another thread, as the waiting dialog of the maintenance is.
class WorkedOn final : public framework::CDialog {
 public:
  explicit WorkedOn(platform::Ui& ui) : CDialog(resources::kReinitDialog, ui) {}

  bool OnInitDialog() override {
    GetWindow().CreateProgressBar(resources::kProgressBarId,
                                  {.rect = {10, 100, 200, 120}, .maximum = 2, .step = 1});
    m_worker = std::thread([this] {
      GetWindow().SetText(resources::kReinitWaitLine1Id, u"from a worker");
      GetWindow().StepProgress(resources::kProgressBarId);
      if (ask) ask();
      GetWindow().EndDialog(5);
    });
    return true;
  }
  void Detach() override {
    m_worker.join();
    text = GetWindow().GetText(resources::kReinitWaitLine1Id);
    CDialog::Detach();
  }

  std::function<void()> ask;  ///< What the worker does before it ends the dialog.
  std::promise<void> letGo;
  std::u16string text;

 private:
  std::thread m_worker;
};

TEST(Win32Ui, AWorkerChangesAndEndsADialog) {
  win32::UiThread thread;
  win32::Win32Ui ui(thread, u"Zedra", nullptr);
  WorkedOn dialog(ui);
  EXPECT_EQ(dialog.DoModal(), 5);
  EXPECT_EQ(dialog.text, u"from a worker");
}

/// A message box as its user sees it.
struct SeenBox {
  std::wstring text;
  HWND owner = nullptr;
  bool isOwnerEnabled = false;
  bool hasCancel = false;
  HICON icon = nullptr;
};

/// Answers the message box of any thread of this process with `caption`, when it has come. Calls
/// `look` before.
SeenBox AnswerBox(
    const wchar_t* caption, int button, const std::function<void()>& look = [] {}) {
  HWND box = nullptr;
  while (box == nullptr || !IsWindowVisible(box)) {
    box = FindWindowW(L"#32770", caption);
    Sleep(5);
  }
  SeenBox seen;
  for (HWND label = nullptr; (label = FindWindowExW(box, label, L"Static", nullptr)) != nullptr;) {
    if ((GetWindowLongW(label, GWL_STYLE) & SS_TYPEMASK) == SS_ICON) {
      seen.icon = reinterpret_cast<HICON>(SendMessageW(label, STM_GETICON, 0, 0));
    } else {
      seen.text = User::TextOf(label);
    }
  }
  seen.owner = GetWindow(box, GW_OWNER);
  seen.isOwnerEnabled = seen.owner != nullptr && IsWindowEnabled(seen.owner);
  seen.hasCancel = GetDlgItem(box, IDCANCEL) != nullptr;
  look();
  PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(button), 0);
  return seen;
}

TEST(Win32Ui, ABoxOfAWorkerBlocksThatWorkerAndNoWindow) {
  win32::UiThread thread;
  win32::Win32Ui ui(thread, u"Zedra", nullptr);
  WorkedOn dialog(ui);
  auto answer = platform::MessageAnswer::kCancel;
  std::atomic<bool> isAnswered = false;
  dialog.ask = [&] {
    answer = ui.ShowMessage({.text = u"Error", .caption = u"Worker"});
    isAnswered = true;
  };
  SeenBox seen;
  std::thread user([&] {
    seen = AnswerBox(L"Worker", IDOK, [&] {
      EXPECT_FALSE(isAnswered);
      EXPECT_TRUE(IsWindowEnabled(FindWindowW(L"#32770", L"Reinitialization")));
    });
  });
  EXPECT_EQ(dialog.DoModal(), 5);
  user.join();
  EXPECT_EQ(answer, platform::MessageAnswer::kOk);
  EXPECT_EQ(seen.text, L"Error");
  EXPECT_EQ(seen.owner, nullptr);
}

TEST(Win32Ui, ABoxOfAWorkerTakesItsAnswerDuringAWaitOfTheThreadOfTheWindows) {
  win32::UiThread thread;
  win32::Win32Ui ui(thread, u"Zedra", nullptr);
  auto answer = platform::MessageAnswer::kOk;
  std::thread user([] { AnswerBox(L"Worker", IDCANCEL); });
  thread.Await([&] {
    answer = ui.ShowMessage(
        {.text = u"Error", .caption = u"Worker", .style = platform::MessageStyle::kOkCancel});
  });
  user.join();
  EXPECT_EQ(answer, platform::MessageAnswer::kCancel);
}

/// Message boxes that this thread shows, and their user.
class Win32Box : public testing::Test {
 protected:
  /// Shows the box and answers it with `button`.
  SeenBox Ask(platform::MessageBox box, int button = IDOK) {
    SeenBox seen;
    const std::u16string shown = box.captionKind == platform::MessageCaption::kApplication
                                     ? std::u16string(u"Zedra")
                                     : box.caption;
    const std::wstring caption(shown.begin(), shown.end());
    std::thread user([&] { seen = AnswerBox(caption.c_str(), button); });
    m_answer = m_ui.ShowMessage(box);
    user.join();
    return seen;
  }

  win32::UiThread m_thread;
  win32::Win32Ui m_ui{m_thread, u"Zedra", nullptr};
  platform::MessageAnswer m_answer = platform::MessageAnswer::kOk;
};

TEST_F(Win32Box, HasItsTextAsItStandsAndItsAnswer) {
  const SeenBox seen = Ask(
      {.text = u"100 % & <b>", .caption = u"Attention", .style = platform::MessageStyle::kOkCancel},
      IDCANCEL);
  EXPECT_EQ(seen.text, L"100 % & <b>");
  EXPECT_TRUE(seen.hasCancel);
  EXPECT_EQ(m_answer, platform::MessageAnswer::kCancel);
  EXPECT_EQ(Ask({.text = u"5", .caption = u"Error Code"}).text, L"5");
  EXPECT_EQ(m_answer, platform::MessageAnswer::kOk);
}

TEST_F(Win32Box, HasTheCaptionOfTheApplicationAndNoMoreIfItIsPlain) {
  const SeenBox seen = Ask(platform::ApplicationBox(u"Plain"));
  EXPECT_EQ(seen.text, L"Plain");
  EXPECT_FALSE(seen.hasCancel);
}

TEST_F(Win32Box, HasTheIconThatItsStyleAsksFor) {
  using platform::MessageStyle;
  const HICON exclamation = LoadIconW(nullptr, MAKEINTRESOURCEW(32515));
  EXPECT_EQ(
      Ask({.text = u"!", .caption = u"Attention", .style = MessageStyle::kIconExclamation}).icon,
      exclamation);
  EXPECT_EQ(Ask({.text = u"!", .caption = u"Attention"}).icon, nullptr);
}

TEST_F(Win32Box, BelongsToTheWindowInFrontWhichTakesNothingMeanwhile) {
  WorkedOn dialog(m_ui);
  SeenBox seen;
  HWND front = nullptr;
  User::WhenShown([&](HWND window) {
    front = window;
    seen = Ask({.text = u"?", .caption = u"Attention"});
    EXPECT_TRUE(IsWindowEnabled(window));
    dialog.letGo.set_value();
  });
  dialog.ask = [&] { dialog.letGo.get_future().wait(); };
  EXPECT_EQ(dialog.DoModal(), 5);
  User::Leave();
  EXPECT_NE(front, nullptr);
  EXPECT_EQ(seen.owner, front);
  EXPECT_FALSE(seen.isOwnerEnabled);
}

}  // namespace
