#include "resources/dialogs.h"

#include <array>

namespace resources {
namespace {

constexpr std::array<ControlTemplate, 11> kLearningControls{{
    {kContactsLabel, ControlKind::kStatic, u"Contacts", {6, 2, 40, 8}},
    {kContactCombo, ControlKind::kComboBox, u"", {6, 12, 147, 102}},
    {kNumberCombo, ControlKind::kSortedComboBox, u"", {6, 30, 147, 111}},
    {kRecordButton, ControlKind::kDefaultPushButton, u"Record", {6, 48, 50, 13}},
    {kCountLabel, ControlKind::kStatic, u"", {6, 65, 89, 8}},
    {kTagList, ControlKind::kListBox, u"", {6, 78, 147, 47}},
    {kPlayButton, ControlKind::kPushButton, u"Play", {6, 132, 35, 13}},
    {kDeleteButton, ControlKind::kPushButton, u"Delete", {42, 132, 35, 13}},
    {kDeleteAllButton, ControlKind::kPushButton, u"Delete All", {78, 132, 35, 13}},
    {kTestButton, ControlKind::kPushButton, u"Test", {118, 132, 35, 13}},
    // Never shown; the place of a setting that users were not given.
    {kNoControlId, ControlKind::kStatic, u"Threshold :", {7, 133, 43, 8}, false, false},
}};

}  // namespace

constexpr DialogTemplate kLearningDialog{134, u"Learning", 160, 167, kLearningControls};

/// The page paints itself and has no controls.
constexpr DialogTemplate kAboutDialog{135, u"About", 160, 167, {}};

}  // namespace resources
