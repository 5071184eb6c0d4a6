// What the windows do when the system has nothing left to make them of.

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "backends/win32/win32_ui.h"
#include "framework/dialog.h"
#include "resources/dialogs.h"
#include "tests/backends/win32/user.h"

namespace {

using support::User;

/// Takes all that the system lets one process have of something. Gives it back at the end.
template <typename Thing>
class All {
 public:
  All(const std::function<Thing()>& make, std::function<void(Thing)> giveBack)
      : m_giveBack(std::move(giveBack)) {
    for (Thing taken = make(); taken != nullptr; taken = make()) {
      m_taken.push_back(taken);
    }
  }
  All(const All&) = delete;
  All& operator=(const All&) = delete;
  ~All() {
    for (const Thing thing : m_taken) {
      m_giveBack(thing);
    }
  }

 private:
  const std::function<void(Thing)> m_giveBack;
  std::vector<Thing> m_taken;
};

All<HGDIOBJ> AllDrawingObjects() {
  return {[] { return static_cast<HGDIOBJ>(CreateSolidBrush(RGB(1, 2, 3))); },
          [](HGDIOBJ brush) { DeleteObject(brush); }};
}

class Painted final : public framework::CDialog {
 public:
  explicit Painted(platform::Ui& ui) : CDialog(resources::kReinitDialog, ui) {}

  bool OnInitDialog() override {
    wasSetUp = true;
    GetWindow().CreateProgressBar(resources::kProgressBarId,
                                  {.rect = {10, 100, 200, 120}, .maximum = 2, .step = 1});
    GetWindow().StepProgress(resources::kProgressBarId);
    GetWindow().SetFont(resources::kReinitWaitLine1Id, {u"Tahoma", 14, 700});
    return true;
  }
  void OnPaint(platform::Canvas& canvas) override {
    canvas.DrawLine({0, 26}, {100, 26}, {0, 0, 0});
    canvas.DrawLine({0, 0}, {100, 26}, {0, 0, 0});
    canvas.DrawText({5, 6}, u"Title", {u"Tahoma", 13, 700}, {0, 0, 128});
    canvas.DrawPicture({5, 30}, 136);
    static_cast<void>(canvas.GetTextWidth(u"Title", {}));
    ++paintings;
  }

  bool wasSetUp = false;
  int paintings = 0;
};

/// Runs the dialog, and closes it as soon as it is shown.
int ShowAndClose(Painted& dialog) {
  User::WhenShown([&](HWND window) {
    InvalidateRect(window, nullptr, TRUE);
    UpdateWindow(window);
    dialog.EndDialog(7);
  });
  const int result = dialog.DoModal();
  User::Leave();
  return result;
}

TEST(WindowsOfAnExhaustedSystem, ADialogWithoutAnythingToDrawWithIsShownOrCancelled) {
  win32::UiThread thread;
  win32::Win32Ui ui(thread, u"Zedra", nullptr);
  Painted dialog(ui);
  {
    const auto all = AllDrawingObjects();
    const int result = ShowAndClose(dialog);
    EXPECT_EQ(result, dialog.wasSetUp ? 7 : framework::kIdCancel);
  }
  // It works again when there is something.
  EXPECT_EQ(ShowAndClose(dialog), 7);
  EXPECT_GT(dialog.paintings, 0);
}

TEST(WindowsOfAnExhaustedSystem, WhatTheSystemRefusesToMakeIsCancelled) {
  win32::UiThread thread;
  win32::Win32Ui ui(thread, u"Zedra", nullptr);
  Painted dialog(ui);
  const HWND gone = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPED, 0, 0, 0, 0, nullptr, nullptr,
                                    nullptr, nullptr);
  DestroyWindow(gone);
  ui.SetOwner(gone);  // Nothing can stand above a window that is gone.
  EXPECT_EQ(ShowAndClose(dialog), framework::kIdCancel);
  EXPECT_FALSE(dialog.wasSetUp);
  ui.SetOwner(nullptr);
  EXPECT_EQ(ShowAndClose(dialog), 7);
}

}  // namespace
