#include <gtest/gtest.h>

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

  std::function<void()> ask;
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

/// Answers the message box of any thread of this process with `caption`, when it has come.
void AnswerBox(const wchar_t* caption, int button, std::wstring* text) {
  HWND box = nullptr;
  while (box == nullptr || !IsWindowVisible(box)) {
    box = FindWindowW(L"#32770", caption);
    Sleep(5);
  }
  *text = User::TextOf(FindWindowExW(box, nullptr, L"Static", nullptr));
  if (text->empty()) {  // The first one shows the icon.
    *text = User::TextOf(
        FindWindowExW(box, FindWindowExW(box, nullptr, L"Static", nullptr), L"Static", nullptr));
  }
  PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(button), 0);
}

TEST(Win32Ui, ABoxOfAWorkerIsAnsweredWhileTheDialogGoesOn) {
  win32::UiThread thread;
  win32::Win32Ui ui(thread, u"Zedra", nullptr);
  WorkedOn dialog(ui);
  auto answer = platform::MessageAnswer::kCancel;
  dialog.ask = [&] { answer = ui.ShowMessage({.text = u"Error", .caption = u"Worker"}); };
  std::wstring text;
  std::thread user([&] { AnswerBox(L"Worker", IDOK, &text); });
  EXPECT_EQ(dialog.DoModal(), 5);
  user.join();
  EXPECT_EQ(answer, platform::MessageAnswer::kOk);
  EXPECT_EQ(text, L"Error");
}

TEST(Win32Ui, ABoxHasItsTextItsCaptionItsStyleAndItsAnswer) {
  using platform::MessageStyle;
  win32::UiThread thread;
  win32::Win32Ui ui(thread, u"Zedra", nullptr);
  const auto ask = [&](const platform::MessageBox& box, const wchar_t* caption, int button,
                       std::wstring* text) {
    std::thread user([&] { AnswerBox(caption, button, text); });
    const auto answer = ui.ShowMessage(box);
    user.join();
    return answer;
  };
  std::wstring text;
  EXPECT_EQ(ask({.text = u"100 % & <b>",
                 .caption = u"Attention",
                 .style = MessageStyle::kOkCancel | MessageStyle::kIconExclamation},
                L"Attention", IDCANCEL, &text),
            platform::MessageAnswer::kCancel);
  EXPECT_EQ(text, L"100 % & <b>");
  EXPECT_EQ(ask(platform::ApplicationBox(u"Plain"), L"Zedra", IDOK, &text),
            platform::MessageAnswer::kOk);
  EXPECT_EQ(ask({.text = u"5", .caption = u"Error Code", .style = MessageStyle::kTopmost},
                L"Error Code", IDOK, &text),
            platform::MessageAnswer::kOk);
  EXPECT_EQ(text, L"5");
}

}  // namespace
