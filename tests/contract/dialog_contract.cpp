#include "tests/contract/dialog_contract.h"

#include <gmock/gmock.h>

#include <array>

namespace contract {
namespace {

using platform::CommandEvent;
using platform::DialogWindow;
using resources::ControlKind;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr std::array<resources::ControlTemplate, 8> kContractControls{{
    {kLabel, ControlKind::kStatic, u"Fish & chips", {6, 2, 60, 8}},
    {kCombo, ControlKind::kComboBox, u"", {6, 12, 147, 102}},
    {kSortedCombo, ControlKind::kSortedComboBox, u"", {6, 28, 70, 100}},
    {kEditable, ControlKind::kEditableComboBox, u"", {80, 28, 70, 100}},
    {kGo, ControlKind::kPushButton, u"Go", {6, 48, 50, 13}},
    {kList, ControlKind::kListBox, u"", {6, 70, 100, 40}},
    {kCheck, ControlKind::kCheckBox, u"Check", {6, 136, 90, 10}},
    {kOff, ControlKind::kPushButton, u"Off", {60, 120, 50, 13}, true, false},
}};
constexpr resources::DialogTemplate kContractDialog{79, u"Dialog", 160, 167, kContractControls, {}};

constexpr std::array kListIds{kCombo, kSortedCombo, kEditable, kList};

void AddAll(DialogWindow& window, int id, const std::vector<std::u16string>& texts) {
  for (const std::u16string& text : texts) {
    window.AddItem(id, text);
  }
}

}  // namespace

ReportingDialog::ReportingDialog(platform::Ui& ui) : CDialog(kContractDialog, ui) {}

bool ReportingDialog::OnInitDialog() {
  if (onInit) {
    onInit();
  }
  return true;
}

void ReportingDialog::OnCommand(int id, CommandEvent event) {
  reports.emplace_back(id, event);
  if (onCommand) {
    onCommand(id);
  }
}

ReportingDialog::Reports DialogContract::Run(const std::function<void(DialogWindow&)>& story) {
  ReportingDialog dialog(m_stage->GetUi());
  EXPECT_EQ(m_stage->Run(dialog, [&] { story(dialog.Window()); }), 99);
  return dialog.reports;
}

std::vector<std::u16string> DialogContract::ItemsOf(const DialogWindow& window, int id) {
  std::vector<std::u16string> items;
  items.reserve(static_cast<std::size_t>(window.GetItemCount(id)));
  for (int i = 0; i < window.GetItemCount(id); ++i) {
    items.push_back(window.GetItemText(id, i));
  }
  return items;
}

TEST_P(DialogContract, AddingSelectsNothing) {
  Run([](DialogWindow& window) {
    for (const int id : kListIds) {
      EXPECT_EQ(window.AddItem(id, u"b"), 0);
      EXPECT_EQ(window.GetSelection(id), std::nullopt);
    }
  });
}

TEST_P(DialogContract, ASortedBoxSortsAndTheOthersDoNot) {
  Run([](DialogWindow& window) {
    const std::vector<std::u16string> added{u"b", u"C", u"a", u"ä", u"B", u"b"};
    for (const int id : kListIds) {
      AddAll(window, id, added);
    }
    EXPECT_EQ(ItemsOf(window, kCombo), added);
    EXPECT_EQ(ItemsOf(window, kEditable), added);
    EXPECT_EQ(ItemsOf(window, kList), added);
    EXPECT_THAT(ItemsOf(window, kSortedCombo), ElementsAre(u"a", u"ä", u"b", u"b", u"B", u"C"));
  });
}

TEST_P(DialogContract, AnItemThatIsAddedBeforeTheSelectedOneLeavesItSelected) {
  Run([](DialogWindow& window) {
    window.AddItem(kSortedCombo, u"b");
    window.SetSelection(kSortedCombo, 0);
    EXPECT_EQ(window.AddItem(kSortedCombo, u"a"), 0);
    EXPECT_EQ(window.GetSelection(kSortedCombo), 1);
    EXPECT_EQ(window.GetText(kSortedCombo), u"b");
    window.AddItem(kSortedCombo, u"c");
    EXPECT_EQ(window.GetSelection(kSortedCombo), 1);
  });
}

TEST_P(DialogContract, DeletingAnItemMovesTheSelectionWithItsItemAndChoosesNoNeighbour) {
  Run([](DialogWindow& window) {
    for (const int id : kListIds) {
      AddAll(window, id, {u"1 one", u"2 two", u"3 three", u"4 four"});
      window.SetSelection(id, 1);
      window.DeleteItem(id, 3);
      EXPECT_EQ(window.GetSelection(id), 1);
      window.DeleteItem(id, 0);
      EXPECT_EQ(window.GetSelection(id), 0);
      window.DeleteItem(id, 0);
      EXPECT_EQ(window.GetSelection(id), std::nullopt);
      EXPECT_THAT(ItemsOf(window, id), ElementsAre(u"3 three"));
    }
  });
}

TEST_P(DialogContract, AnIndexThatIsNoneDeletesNothingAndSelectsNothing) {
  Run([](DialogWindow& window) {
    for (const int id : kListIds) {
      window.AddItem(id, u"one");
      window.SetSelection(id, 0);
      window.DeleteItem(id, 1);
      window.DeleteItem(id, -1);
      EXPECT_EQ(window.GetItemText(id, 1), u"");
      EXPECT_EQ(window.GetItemText(id, -1), u"");
      EXPECT_EQ(window.GetSelection(id), 0);
      window.SetSelection(id, 5);
      EXPECT_EQ(window.GetSelection(id), std::nullopt);
      window.SetSelection(id, 0);
      window.SetSelection(id, -1);
      EXPECT_EQ(window.GetSelection(id), std::nullopt);
    }
  });
}

TEST_P(DialogContract, ResettingLeavesNothing) {
  Run([](DialogWindow& window) {
    for (const int id : kListIds) {
      window.AddItem(id, u"one");
      window.SetSelection(id, 0);
      window.ResetItems(id);
      EXPECT_EQ(window.GetItemCount(id), 0);
      EXPECT_EQ(window.GetSelection(id), std::nullopt);
    }
  });
}

TEST_P(DialogContract, TheFieldOfADropDownListIsItsSelectedItem) {
  Run([](DialogWindow& window) {
    for (const int id : {kCombo, kSortedCombo}) {
      AddAll(window, id, {u"one", u"two"});
      EXPECT_EQ(window.GetText(id), u"");
      window.SetSelection(id, 1);
      EXPECT_EQ(window.GetText(id), u"two");
      window.SetText(id, u"three");
      EXPECT_EQ(window.GetText(id), u"two");
      window.DeleteItem(id, 1);
      EXPECT_EQ(window.GetText(id), u"");
    }
  });
}

TEST_P(DialogContract, TheFieldOfAnEditableBoxChangesByTextAndSelectionAlone) {
  Run([](DialogWindow& window) {
    window.SetText(kEditable, u"19200");
    AddAll(window, kEditable, {u"9600", u"4800"});
    EXPECT_EQ(window.GetText(kEditable), u"19200");
    window.SetSelection(kEditable, 1);
    EXPECT_EQ(window.GetText(kEditable), u"4800");
    window.SetText(kEditable, u"R&D");
    EXPECT_EQ(window.GetText(kEditable), u"R&D");
    EXPECT_EQ(window.GetSelection(kEditable), 1);
    EXPECT_EQ(window.GetItemCount(kEditable), 2);
    window.SetSelection(kEditable, std::nullopt);
    EXPECT_EQ(window.GetText(kEditable), u"R&D");
    window.SetSelection(kEditable, 0);
    window.DeleteItem(kEditable, 0);
    window.ResetItems(kEditable);
    EXPECT_EQ(window.GetText(kEditable), u"9600");
  });
}

TEST_P(DialogContract, ThePageGetsNoReportOfWhatItDoesItself) {
  EXPECT_THAT(Run([](DialogWindow& window) {
                for (const int id : kListIds) {
                  AddAll(window, id, {u"one", u"two"});
                  window.SetSelection(id, 1);
                  window.DeleteItem(id, 1);
                  window.SetText(id, u"text");
                  window.ResetItems(id);
                }
                window.SetCheck(kCheck, true);
              }),
              IsEmpty());
}

TEST_P(DialogContract, ThePageFindsTheUsersChoiceSelectedWhenItHearsOfIt) {
  ReportingDialog dialog(User().GetUi());
  std::vector<std::optional<int>> selected;
  dialog.onCommand = [&](int id) { selected.push_back(dialog.Window().GetSelection(id)); };
  User().Run(dialog, [&] {
    for (const int id : kListIds) {
      AddAll(dialog.Window(), id, {u"1 one", u"2 two", u"3 three"});
    }
    dialog.Window().SetSelection(kCombo, 0);
    User().Choose(kCombo, 2);
    User().Choose(kSortedCombo, 1);
    User().Choose(kEditable, 1);
    User().Choose(kList, 1);
    EXPECT_EQ(dialog.Window().GetText(kCombo), u"3 three");
    EXPECT_EQ(dialog.Window().GetText(kEditable), u"2 two");
  });
  EXPECT_THAT(dialog.reports, ElementsAre(Pair(kCombo, CommandEvent::kSelectionChange),
                                          Pair(kSortedCombo, CommandEvent::kSelectionChange),
                                          Pair(kEditable, CommandEvent::kSelectionChange),
                                          Pair(kList, CommandEvent::kSelectionChange)));
  EXPECT_THAT(selected, ElementsAre(2, 1, 1, 1));
}

TEST_P(DialogContract, WhatTheUserTypesIsTheTextOfTheField) {
  EXPECT_THAT(Run([this](DialogWindow& window) {
                window.AddItem(kEditable, u"COM1:");
                window.SetSelection(kEditable, 0);
                User().Type(kEditable, "COM7:");
                EXPECT_EQ(window.GetText(kEditable), u"COM7:");
                EXPECT_EQ(window.GetSelection(kEditable), 0);
                EXPECT_EQ(window.GetItemCount(kEditable), 1);
              }),
              IsEmpty());
}

TEST_P(DialogContract, AControlThatIsNotThereGivesTheEmptyResult) {
  Run([](DialogWindow& window) {
    constexpr int kNone = 4711;
    EXPECT_EQ(window.AddItem(kNone, u"x"), -1);
    window.DeleteItem(kNone, 0);
    window.ResetItems(kNone);
    window.SetText(kNone, u"x");
    window.Enable(kNone, true);
    window.SetCheck(kNone, true);
    window.SetSelection(kNone, 0);
    window.SetFont(kNone, {});
    window.SetHorizontalExtent(kNone, 5);
    window.StepProgress(kNone);
    window.DestroyProgressBar(kNone);
    EXPECT_EQ(window.GetText(kNone), u"");
    EXPECT_FALSE(window.IsEnabled(kNone));
    EXPECT_FALSE(window.IsChecked(kNone));
    EXPECT_EQ(window.GetItemCount(kNone), 0);
    EXPECT_EQ(window.GetHorizontalExtent(kNone), 0);
    EXPECT_EQ(window.GetSelection(kNone), std::nullopt);
    EXPECT_EQ(window.GetControlRect(kNone), platform::Rect());
  });
}

TEST_P(DialogContract, AControlOfAnotherKindGivesTheEmptyResult) {
  Run([](DialogWindow& window) {
    EXPECT_EQ(window.AddItem(kGo, u"x"), -1);
    EXPECT_EQ(window.AddItem(kLabel, u"x"), -1);
    window.SetSelection(kGo, 0);
    EXPECT_EQ(window.GetItemCount(kGo), 0);
    EXPECT_EQ(window.GetItemText(kGo, 0), u"");
    EXPECT_EQ(window.GetSelection(kGo), std::nullopt);
    EXPECT_EQ(window.GetText(kGo), u"Go");
    window.SetCheck(kGo, true);
    EXPECT_FALSE(window.IsChecked(kGo));
    window.SetHorizontalExtent(kCombo, 5);
    EXPECT_EQ(window.GetHorizontalExtent(kCombo), 0);
  });
}

TEST_P(DialogContract, EnablementChecksAndPlacesAreThoseOfTheTemplateUntilThePageChangesThem) {
  Run([](DialogWindow& window) {
    EXPECT_FALSE(window.IsEnabled(kOff));
    EXPECT_TRUE(window.IsEnabled(kGo));
    window.Enable(kGo, false);
    EXPECT_FALSE(window.IsEnabled(kGo));
    EXPECT_FALSE(window.IsChecked(kCheck));
    window.SetCheck(kCheck, true);
    EXPECT_TRUE(window.IsChecked(kCheck));
    EXPECT_EQ(window.GetControlRect(kGo), (platform::Rect{9, 78, 84, 99}));
    EXPECT_EQ(window.GetClientRect(), (platform::Rect{0, 0, 240, 271}));
    window.SetHorizontalExtent(kList, 321);
    EXPECT_EQ(window.GetHorizontalExtent(kList), 321);
  });
}

TEST_P(DialogContract, TextsStayWhatTheyAreUnitByUnit) {
  Run([](DialogWindow& window) {
    const std::u16string text = u"a\xD83D & \u202E<i>\u00A0z";
    window.AddItem(kList, text);
    EXPECT_EQ(window.GetItemText(kList, 0), text);
    window.SetText(kGo, text);
    EXPECT_EQ(window.GetText(kGo), text);
  });
}

TEST_P(DialogContract, APressIsReportedAndOneOnWhatIsDisabledIsNot) {
  const auto reports = Run([this](DialogWindow& window) {
    User().Press(kGo);
    User().Press(kOff);
    User().Press(kCheck);
    EXPECT_TRUE(window.IsChecked(kCheck));
  });
  EXPECT_THAT(reports,
              ElementsAre(Pair(kGo, CommandEvent::kClick), Pair(kCheck, CommandEvent::kClick)));
}

TEST_P(DialogContract, PostedCommandsComeInTheirOrderAfterTheHandlerThatPostedThem) {
  ReportingDialog dialog(User().GetUi());
  bool isSetUp = false;
  dialog.onInit = [&] {
    dialog.Window().PostCommand(2222);
    dialog.Window().PostCommand(1);
    EXPECT_THAT(dialog.reports, IsEmpty());
    isSetUp = true;
  };
  dialog.onCommand = [&](int /*id*/) { EXPECT_TRUE(isSetUp); };
  User().Run(dialog, [] {});
  EXPECT_THAT(dialog.reports,
              ElementsAre(Pair(2222, CommandEvent::kPosted), Pair(1, CommandEvent::kPosted)));
}

TEST_P(DialogContract, ADialogThatIsEndedWhileItIsSetUpIsNeverShown) {
  ReportingDialog dialog(User().GetUi());
  dialog.onInit = [&] {
    dialog.Window().PostCommand(2222);
    dialog.EndDialog(3);
    dialog.EndDialog(4);
  };
  EXPECT_EQ(dialog.DoModal(), 3);
  EXPECT_THAT(dialog.reports, IsEmpty());
}

}  // namespace contract
