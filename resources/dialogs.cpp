#include "resources/dialogs.h"

#include <array>

#include "resources/connection_strings.h"

namespace resources {
namespace {

constexpr std::array<ControlTemplate, 11> kLearningControls{{
    {kContactsLabelId, ControlKind::kStatic, u"Contacts", {6, 2, 40, 8}},
    {kContactComboId, ControlKind::kComboBox, u"", {6, 12, 147, 102}},
    // A screen reader names this box after the contact in the other one: it holds the numbers of
    // that contact.
    {.id = kNumberComboId,
     .kind = ControlKind::kSortedComboBox,
     .text = u"",
     .rect = {6, 30, 147, 111},
     .namedBy = kContactComboId},
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

constexpr std::array<KeyTemplate, 2> kLearningKeys{{
    {kTagListId, Key::kDelete, kDeleteButtonId},
    {kTagListId, Key::kSpace, kPlayButtonId},
}};

constexpr std::array<ControlTemplate, 14> kConnectionControls{{
    {kNoControlId, ControlKind::kGroupBox, kConnectionGroup, {3, 2, 153, 100}},
    {kPortComboId, ControlKind::kEditableComboBox, u"", {10, 14, 139, 102}},
    {kNoControlId, ControlKind::kStatic, kBaudRateLabel, {10, 33, 60, 8}},
    {kBaudRateComboId, ControlKind::kEditableComboBox, u"", {74, 31, 75, 102}},
    {kNoControlId, ControlKind::kStatic, kDataBitsLabel, {10, 50, 60, 8}},
    {kDataBitsComboId, ControlKind::kEditableComboBox, u"", {74, 48, 75, 80}},
    {kNoControlId, ControlKind::kStatic, kStopBitsLabel, {10, 67, 60, 8}},
    {kStopBitsComboId, ControlKind::kEditableComboBox, u"", {74, 65, 75, 60}},
    {kNoControlId, ControlKind::kStatic, kFlowControlLabel, {10, 84, 60, 8}},
    // A list: the dialer knows these three words and no others.
    {kFlowControlComboId, ControlKind::kComboBox, u"", {74, 82, 75, 60}},
    {kHeadsetCheckId, ControlKind::kCheckBox, kHeadsetLabel, {1, 107, 158, 10}},
    {kNoHangUpCheckId, ControlKind::kCheckBox, kNoHangUpLabel, {1, 121, 158, 10}},
    {kDefaultsButtonId, ControlKind::kDefaultPushButton, kDefaultsLabel, {54, 146, 50, 13}},
    // Never shown: the sheet's own OK saves. Companion and users know the page without it.
    {kSaveButtonId, ControlKind::kPushButton, u"Ok", {106, 146, 50, 13}, false, false},
}};

/// The header, a line of text and a rule below it, is painted in the uppermost 27 pixels.
constexpr std::array<ControlTemplate, 2> kTestControls{{
    {kTestListId, ControlKind::kListBox, u"", {6, 20, 147, 141}},
    // Its text is read out and not shown.
    {kTestHelpId, ControlKind::kPicture, u"Help", {144, 2, 12, 11}},
}};

/// The progress bar below the two lines is made when the dialog opens.
constexpr std::array<ControlTemplate, 2> kReinitControls{{
    {kReinitWaitLine1Id, ControlKind::kCenteredStatic, u"Please wait a few", {6, 26, 148, 11}},
    {kReinitWaitLine2Id, ControlKind::kCenteredStatic, u"seconds...", {6, 40, 148, 11}},
}};

/// The progress bar between them is made when the dialog opens.
constexpr std::array<ControlTemplate, 2> kComparisonControls{{
    {kComparisonTextId, ControlKind::kStatic, kComparingLabel, {6, 6, 148, 10}},
    {kComparisonCancelId, ControlKind::kPushButton, kCancelComparing, {55, 42, 50, 13}},
}};

}  // namespace

constexpr DialogTemplate kLearningDialog{134, u"Learning",       160,
                                         167, kLearningControls, kLearningKeys};

/// The page paints itself and has no controls.
constexpr DialogTemplate kAboutDialog{135, u"About", 160, 167, {}};

/// The caption is not about what the page does; it is the one that the page has always had.
constexpr DialogTemplate kConnectionDialog{130, u"Skins", 159, 167, kConnectionControls};
constexpr DialogTemplate kTestResultsDialog{140, u"Test", 160, 167, kTestControls};

/// High enough for the progress bar, which ends 120 pixels down.
constexpr DialogTemplate kReinitDialog{138, u"Reinitialization", 160, 82, kReinitControls};

constexpr DialogTemplate kComparisonDialog{141, u"Test", 160, 61, kComparisonControls};

}  // namespace resources
