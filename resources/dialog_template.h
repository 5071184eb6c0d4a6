#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace resources {

enum class ControlKind : std::uint8_t {
  kStatic,
  kCenteredStatic,
  kComboBox,        ///< Drop-down list, in the order of adding.
  kSortedComboBox,  ///< Drop-down list, in the order of its texts.
  kEditableComboBox,
  kPushButton,
  kDefaultPushButton,
  kCheckBox,
  kGroupBox,
  kListBox,
  kPicture,  ///< Shows the picture of its own id and can be clicked.
};

/// In dialog units: a quarter of the font's average width across, an eighth of its height down.
struct DialogRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

inline constexpr int kNoControlId = -1;

struct ControlTemplate {
  int id = kNoControlId;
  ControlKind kind = ControlKind::kStatic;
  std::u16string_view text;
  DialogRect rect;
  bool isVisible = true;
  bool isEnabled = true;
  /// The control whose text names this one to a screen reader, if no label stands before it.
  int namedBy = kNoControlId;
};

enum class Key : std::uint8_t { kDelete, kSpace };

/// A key that, in one control, presses a button of the dialog.
struct KeyTemplate {
  int control = kNoControlId;
  Key key = Key::kDelete;
  int button = kNoControlId;
};

/// One dialog, the only description of it there is. Controls are reached by Tab in their order.
struct DialogTemplate {
  int id = 0;
  std::u16string_view caption;
  int width = 0;  ///< Dialog units.
  int height = 0;
  std::span<const ControlTemplate> controls;
  std::span<const KeyTemplate> keys = {};
};

}  // namespace resources
