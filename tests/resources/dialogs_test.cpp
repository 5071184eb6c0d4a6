#include "resources/dialogs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <span>
#include <string_view>
#include <vector>

namespace {

using resources::ControlKind;
using resources::ControlTemplate;
using resources::DialogTemplate;

struct Row {
  int id;
  ControlKind kind;
  std::u16string_view text;
  int x, y, width, height;
  bool isVisible = true;
  bool isEnabled = true;
};

void ExpectRow(const ControlTemplate& control, const Row& row) {
  EXPECT_EQ(control.id, row.id);
  EXPECT_EQ(control.kind, row.kind);
  EXPECT_EQ(control.text, row.text);
  EXPECT_EQ(control.rect.x, row.x);
  EXPECT_EQ(control.rect.y, row.y);
  EXPECT_EQ(control.rect.width, row.width);
  EXPECT_EQ(control.rect.height, row.height);
  EXPECT_EQ(control.isVisible, row.isVisible);
  EXPECT_EQ(control.isEnabled, row.isEnabled);
}

/// Each row has one control, found by its id or, without one, by its text; and there are no others.
void ExpectRows(const DialogTemplate& dialog, std::span<const Row> rows) {
  EXPECT_EQ(dialog.controls.size(), rows.size());
  for (const Row& row : rows) {
    SCOPED_TRACE(row.id);
    const auto isMeant = [&row](const ControlTemplate& control) {
      return control.id == row.id &&
             (row.id != resources::kNoControlId || control.text == row.text);
    };
    ASSERT_EQ(std::ranges::count_if(dialog.controls, isMeant), 1);
    ExpectRow(*std::ranges::find_if(dialog.controls, isMeant), row);
  }
}

TEST(Dialogs, TheLearningPageIsLaidOutAsUsersKnowIt) {
  constexpr Row kRows[] = {{1031, ControlKind::kStatic, u"Contacts", 6, 2, 40, 8},
                           {1009, ControlKind::kComboBox, u"", 6, 12, 147, 102},
                           {1010, ControlKind::kSortedComboBox, u"", 6, 30, 147, 111},
                           {1016, ControlKind::kDefaultPushButton, u"Record", 6, 48, 50, 13},
                           {1030, ControlKind::kStatic, u"", 6, 65, 89, 8},
                           {1013, ControlKind::kListBox, u"", 6, 78, 147, 47},
                           {1014, ControlKind::kPushButton, u"Play", 6, 132, 35, 13},
                           {1015, ControlKind::kPushButton, u"Delete", 42, 132, 35, 13},
                           {1017, ControlKind::kPushButton, u"Delete All", 78, 132, 35, 13},
                           {1025, ControlKind::kPushButton, u"Test", 118, 132, 35, 13},
                           {-1, ControlKind::kStatic, u"Threshold :", 7, 133, 43, 8, false, false}};
  const DialogTemplate& dialog = resources::kLearningDialog;
  EXPECT_EQ(dialog.id, 134);
  EXPECT_EQ(dialog.caption, u"Learning");
  EXPECT_EQ(dialog.width, 160);
  EXPECT_EQ(dialog.height, 167);
  ExpectRows(dialog, kRows);
}

TEST(Dialogs, TheAboutPageHasTheSizeOfTheLearningPageAndNoControls) {
  const DialogTemplate& dialog = resources::kAboutDialog;
  EXPECT_EQ(dialog.id, 135);
  EXPECT_EQ(dialog.caption, u"About");
  EXPECT_EQ(dialog.width, 160);
  EXPECT_EQ(dialog.height, 167);
  EXPECT_TRUE(dialog.controls.empty());
}

TEST(Dialogs, TabFollowsTheLearningPageFromTopToBottom) {
  std::vector<int> ids;
  for (const ControlTemplate& control : resources::kLearningDialog.controls) {
    ids.push_back(control.id);
  }
  EXPECT_EQ(ids, (std::vector<int>{1031, 1009, 1010, 1016, 1030, 1013, 1014, 1015, 1017, 1025,
                                   resources::kNoControlId}));
}

TEST(Dialogs, TheBoxOfALongTestHasAButtonThatCancels) {
  constexpr Row kRows[] = {{1027, ControlKind::kStatic, u"Comparing the voice tags", 6, 6, 148, 10},
                           {1028, ControlKind::kPushButton, u"Cancel", 55, 42, 50, 13}};
  EXPECT_EQ(resources::kComparisonDialog.id, 141);
  EXPECT_EQ(resources::kComparisonDialog.caption, u"Test");
  ExpectRows(resources::kComparisonDialog, kRows);
}

}  // namespace
