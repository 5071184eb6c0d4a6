#include "backends/headless/headless_dialog.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <utility>
#include <vector>

#include "backends/headless/headless_ui.h"
#include "framework/dialog.h"

namespace {

using platform::CommandEvent;
using resources::ControlKind;
using resources::ControlTemplate;

constexpr int kButton = 5;
constexpr std::array<ControlTemplate, 1> kControls{
    {{kButton, ControlKind::kPushButton, u"Go", {0, 0, 10, 10}}}};
constexpr resources::DialogTemplate kDialog{7, u"Seven", 100, 100, kControls};

/// Notes each call, and does what a test gives it.
class NotingDialog final : public framework::CDialog {
 public:
  using Heard = std::vector<std::pair<int, CommandEvent>>;

  explicit NotingDialog(platform::Ui& ui) : CDialog(kDialog, ui) {}

  bool OnInitDialog() override {
    if (onInit) {
      onInit(GetWindow());
    }
    isSetUp = true;
    return true;
  }
  void OnCommand(int id, CommandEvent event) override {
    EXPECT_TRUE(isSetUp);
    heard.emplace_back(id, event);
    if (onCommand) {
      onCommand(GetWindow(), id);
    }
  }

  std::function<void(platform::DialogWindow&)> onInit;
  std::function<void(platform::DialogWindow&, int)> onCommand;
  Heard heard;
  bool isSetUp = false;
};

TEST(HeadlessDialog, CommandsPostedAtTheStartComeOnceTheDialogIsSetUp) {
  headless::HeadlessUi ui;
  NotingDialog dialog(ui);
  dialog.onInit = [](platform::DialogWindow& window) {
    window.PostCommand(2222);
    window.PostCommand(1);
  };
  dialog.DoModal();
  EXPECT_EQ(dialog.heard,
            (NotingDialog::Heard{{2222, CommandEvent::kPosted}, {1, CommandEvent::kPosted}}));
}

TEST(HeadlessDialog, ACommandPostedByAHandlerComesAfterIt) {
  headless::HeadlessUi ui;
  NotingDialog dialog(ui);
  dialog.onCommand = [&](platform::DialogWindow& window, int id) {
    if (id == kButton) {
      window.PostCommand(8);
      EXPECT_EQ(dialog.heard.size(), 1U);
    }
  };
  ui.SetDialogStory(7, [](headless::HeadlessDialog& window) { window.Press(kButton); });
  dialog.DoModal();
  EXPECT_EQ(dialog.heard,
            (NotingDialog::Heard{{kButton, CommandEvent::kClick}, {8, CommandEvent::kPosted}}));
}

TEST(HeadlessDialog, PostedCommandsOfADialogThatHasEndedNeverCome) {
  headless::HeadlessUi ui;
  NotingDialog dialog(ui);
  dialog.onInit = [](platform::DialogWindow& window) {
    window.PostCommand(2222);
    window.EndDialog(3);
  };
  EXPECT_EQ(dialog.DoModal(), 3);
  EXPECT_TRUE(dialog.heard.empty());
}

TEST(HeadlessDialog, NobodyTypesIntoAListOrADisabledBox) {
  constexpr int kList = 2;
  constexpr int kDisabled = 3;
  static constexpr std::array<ControlTemplate, 2> kBoxes{{
      {kList, ControlKind::kComboBox, u"", {}},
      {kDisabled, ControlKind::kEditableComboBox, u"", {}, true, false},
  }};
  static constexpr resources::DialogTemplate kBoxesDialog{1, u"", 10, 10, kBoxes};
  headless::HeadlessUi ui;
  framework::CPropertyPage page{kBoxesDialog, ui};
  headless::HeadlessDialog dialog{kBoxesDialog, page, nullptr};
  dialog.Type(kList, u"three");
  dialog.Type(kDisabled, u"three");
  dialog.Type(99, u"three");
  EXPECT_EQ(dialog.GetText(kList), u"");
  EXPECT_EQ(dialog.GetText(kDisabled), u"");
}

TEST(HeadlessSheet, CommandsPostedByAPageComeWhenItIsFirstShown) {
  headless::HeadlessUi ui;
  NotingDialog first(ui);
  NotingDialog second(ui);
  for (NotingDialog* page : {&first, &second}) {
    page->onInit = [](platform::DialogWindow& window) { window.PostCommand(2222); };
  }
  const std::array<platform::SheetPage, 2> pages{{{kDialog, first}, {kDialog, second}}};
  struct : platform::SheetHandler {
    bool OnInitSheet(platform::SheetWindow& /*sheet*/) override { return true; }
    void OnHelp() override {}
  } handler;
  headless::HeadlessSheet sheet(u"Sheet", pages, handler, nullptr);
  sheet.ShowPage(0);
  EXPECT_EQ(first.heard, (NotingDialog::Heard{{2222, CommandEvent::kPosted}}));
  EXPECT_TRUE(second.heard.empty());
  sheet.ShowPage(0);
  EXPECT_EQ(first.heard.size(), 1U);
}

}  // namespace
