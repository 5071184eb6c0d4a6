#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "backends/qt/qt_ui.h"
#include "framework/dialog.h"
#include "tests/backends/qt/page_machine.h"
#include "tests/backends/qt/user.h"

/// Controls of the dialog that tests use, one of each kind.
namespace sample {
inline constexpr int kLabel = 11;
inline constexpr int kCombo = 12;
inline constexpr int kSortedCombo = 13;
inline constexpr int kEditable = 14;
inline constexpr int kList = 15;
inline constexpr int kGo = 16;
inline constexpr int kStop = 17;
inline constexpr int kCheck = 18;
inline constexpr int kPicture = 1;
inline constexpr int kHidden = 19;
inline constexpr int kOff = 20;
inline constexpr int kBar = 21;
extern const resources::DialogTemplate kDialog;
/// Without a default button.
extern const resources::DialogTemplate kPlain;
}  // namespace sample

/// Notes what is reported to it, and does what a test gives it.
class NotingDialog final : public framework::CDialog {
 public:
  using Heard = std::vector<std::pair<int, platform::CommandEvent>>;

  explicit NotingDialog(platform::Ui& ui, const resources::DialogTemplate& dialog = sample::kDialog)
      : CDialog(dialog, ui) {}

  platform::DialogWindow& Window() { return GetWindow(); }
  [[nodiscard]] bool IsAttached() const { return HasWindow(); }

  bool OnInitDialog() override {
    if (onInit) {
      onInit();
    }
    return true;
  }
  void OnCommand(int id, platform::CommandEvent event) override {
    heard.emplace_back(id, event);
    if (onCommand) {
      onCommand(id);
    }
  }
  void OnPaint(platform::Canvas& /*canvas*/) override { ++paintings; }
  void OnLButtonDown(platform::Point point) override { presses.push_back(point); }
  bool OnHelp() override {
    ++helps;
    return hasHelp;
  }
  void OnCancel() override {
    ++cancels;
    if (mayBeClosed) {
      CDialog::OnCancel();
    }
  }

  std::function<void()> onInit;
  std::function<void(int)> onCommand;
  Heard heard;
  std::vector<platform::Point> presses;
  int paintings = 0;
  int helps = 0;
  int cancels = 0;
  bool hasHelp = false;
  bool mayBeClosed = true;
};

/// A user before one dialog after another.
class DialogFixture : public testing::Test {
 protected:
  /// Runs `dialog` and `story` on it, and closes it if the story did not.
  int Run(NotingDialog& dialog, const std::function<void()>& story) {
    m_user.Soon([&dialog, &story] {
      story();
      if (dialog.IsAttached()) {
        dialog.EndDialog(99);
      }
    });
    return dialog.DoModal();
  }

  support::HeadlessPlatform m_machine{1000};
  qt::UiThread m_thread;
  qt::QtUi m_ui{m_thread, u"Zedra Voxtrel", support::TestPictures()};
  support::User m_user;
};
