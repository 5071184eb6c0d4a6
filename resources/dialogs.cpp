#include "resources/dialogs.h"

#include <array>

namespace resources {
namespace {

constexpr std::array<ControlTemplate, 11> kLearningControls{{
    {kContactsLabelId, ControlKind::kStatic, u"Contacts", {6, 2, 40, 8}},
    {kContactComboId, ControlKind::kComboBox, u"", {6, 12, 147, 102}},
    {kNumberComboId, ControlKind::kSortedComboBox, u"", {6, 30, 147, 111}},
    {kRecordButtonId, ControlKind::kDefaultPushButton, u"Record", {6, 48, 50, 13}},
    {kCountLabelId, ControlKind::kStatic, u"", {6, 65, 89, 8}},
    {kTagListId, ControlKind::kListBox, u"", {6, 78, 147, 47}},
    {kPlayButtonId, ControlKind::kPushButton, u"Play", {6, 132, 35, 13}},
    {kDeleteButtonId, ControlKind::kPushButton, u"Delete", {42, 132, 35, 13}},
    {kDeleteAllButtonId, ControlKind::kPushButton, u"Delete All", {78, 132, 35, 13}},
    {kTestButtonId, ControlKind::kPushButton, u"Test", {118, 132, 35, 13}},
    // Never shown; the place of a setting that users were not given.
    {kNoControlId, ControlKind::kStatic, u"Threshold :", {7, 133, 43, 8}, false, false},
}};

/// The header, a line of text and a rule below it, is painted in the uppermost 27 pixels.
constexpr std::array<ControlTemplate, 2> kTestControls{{
    {kTestListId, ControlKind::kListBox, u"", {6, 20, 147, 141}},
    {kTestHelpId, ControlKind::kPicture, u"", {144, 2, 12, 11}},
}};

/// The progress bar below the two lines is made when the dialog opens.
constexpr std::array<ControlTemplate, 2> kReinitControls{{
    {kReinitWaitLine1Id, ControlKind::kCenteredStatic, u"Please wait a few", {6, 26, 148, 11}},
    {kReinitWaitLine2Id, ControlKind::kCenteredStatic, u"seconds...", {6, 40, 148, 11}},
}};

}  // namespace

constexpr DialogTemplate kLearningDialog{134, u"Learning", 160, 167, kLearningControls};

/// The page paints itself and has no controls.
constexpr DialogTemplate kAboutDialog{135, u"About", 160, 167, {}};

constexpr DialogTemplate kTestResultsDialog{140, u"Test", 160, 167, kTestControls};

/// High enough for the progress bar, which ends 120 pixels down.
constexpr DialogTemplate kReinitDialog{138, u"Reinitialization", 160, 82, kReinitControls};

}  // namespace resources
