#include "tests/backends/qt/dialog_fixture.h"

#include <array>

namespace sample {
namespace {

using resources::ControlKind;

constexpr std::array<resources::ControlTemplate, 11> kControls{{
    {kLabel, ControlKind::kStatic, u"Fish & chips", {6, 2, 60, 8}},
    {kCombo, ControlKind::kComboBox, u"", {6, 12, 147, 102}},
    {.id = kSortedCombo,
     .kind = ControlKind::kSortedComboBox,
     .text = u"",
     .rect = {6, 28, 70, 100},
     .namedBy = kCombo},
    {kEditable, ControlKind::kEditableComboBox, u"", {80, 28, 70, 100}},
    {kGo, ControlKind::kDefaultPushButton, u"Go & see", {6, 48, 50, 13}},
    {kList, ControlKind::kListBox, u"", {6, 70, 100, 40}},
    {kStop, ControlKind::kPushButton, u"Stop", {6, 120, 50, 13}},
    {kCheck, ControlKind::kCheckBox, u"Check & mate", {6, 136, 90, 10}},
    {kPicture, ControlKind::kPicture, u"", {120, 70, 12, 11}},
    {kHidden, ControlKind::kPushButton, u"Hidden", {6, 150, 50, 13}, false, false},
    {kOff, ControlKind::kPushButton, u"Off", {60, 120, 50, 13}, true, false},
}};

constexpr std::array<resources::KeyTemplate, 2> kKeys{{
    {kList, resources::Key::kDelete, kStop},
    {kList, resources::Key::kSpace, kOff},
}};

}  // namespace

constexpr resources::DialogTemplate kDialog{77, u"Seventy & seven", 160, 167, kControls, kKeys};
constexpr resources::DialogTemplate kPlain{78, u"Plain", 100, 60, {}, {}};

}  // namespace sample
