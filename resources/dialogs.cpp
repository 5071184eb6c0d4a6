#include "resources/dialogs.h"

#include <array>

namespace resources {
namespace {

constexpr std::array<ControlTemplate, 11> kLearningControls{{
    {kContactsLabelId, ControlKind::kStatic, u"Contacts", {6, 2, 40, 8}},
    {kContactComboId, ControlKind::kComboBox, u"", {6, 12, 147, 102}},
    // Told apart from the other box by whose numbers it holds.
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

}  // namespace

constexpr DialogTemplate kLearningDialog{134, u"Learning",       160,
                                         167, kLearningControls, kLearningKeys};

/// The page paints itself and has no controls.
constexpr DialogTemplate kAboutDialog{135, u"About", 160, 167, {}};

}  // namespace resources
