#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "framework/dialog.h"

namespace contract {

// Controls of the dialog that the suite runs.
inline constexpr int kLabel = 11;
inline constexpr int kCombo = 12;
inline constexpr int kSortedCombo = 13;
inline constexpr int kEditable = 14;
inline constexpr int kList = 15;
inline constexpr int kGo = 16;
inline constexpr int kCheck = 18;
inline constexpr int kOff = 20;

/// Notes the commands that are reported to it, and does what a test gives it.
class ReportingDialog final : public framework::CDialog {
 public:
  using Reports = std::vector<std::pair<int, platform::CommandEvent>>;

  explicit ReportingDialog(platform::Ui& ui);

  bool OnInitDialog() override;
  void OnCommand(int id, platform::CommandEvent event) override;

  [[nodiscard]] platform::DialogWindow& Window() const { return GetWindow(); }
  [[nodiscard]] bool IsOpen() const { return HasWindow(); }

  std::function<void()> onInit;
  std::function<void(int)> onCommand;
  Reports reports;
};

/// One presentation, and a user in front of it.
class Stage {
 public:
  Stage() = default;
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;
  virtual ~Stage() = default;

  [[nodiscard]] virtual platform::Ui& GetUi() = 0;
  /// Runs the dialog. Calls `story` when it is shown, and ends it with 99 if the story did not.
  virtual int Run(ReportingDialog& dialog, const std::function<void()>& story) = 0;

  // What the user does, while a story runs.
  virtual void Choose(int id, int index) = 0;
  virtual void Type(int id, const std::string& text) = 0;
  virtual void Press(int id) = 0;
};

struct Presentation {
  std::string name;
  std::function<std::unique_ptr<Stage>()> make;
};

inline void PrintTo(const Presentation& presentation, std::ostream* stream) {
  *stream << presentation.name;
}

[[nodiscard]] inline std::string NameOfPresentation(
    const testing::TestParamInfo<Presentation>& info) {
  return info.param.name;
}

/// The suite that the dialogs of every presentation pass.
class DialogContract : public testing::TestWithParam<Presentation> {
 protected:
  void SetUp() override { m_stage = GetParam().make(); }

  [[nodiscard]] Stage& User() { return *m_stage; }
  /// Runs a dialog with `story` and returns the commands that were reported to it.
  ReportingDialog::Reports Run(const std::function<void(platform::DialogWindow&)>& story);
  [[nodiscard]] static std::vector<std::u16string> ItemsOf(const platform::DialogWindow& window,
                                                           int id);

 private:
  std::unique_ptr<Stage> m_stage;
};

}  // namespace contract
