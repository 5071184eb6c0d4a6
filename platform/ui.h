#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace platform {

/// Style bits of a message box, with the values of the Windows family, so that a back end there
/// hands them on as they are.
enum class MessageStyle : std::uint32_t {
  kOk = 0x0,
  kOkCancel = 0x1,
  kIconExclamation = 0x30,
  kSetForeground = 0x10000,
  kTopmost = 0x40000,
};

[[nodiscard]] constexpr MessageStyle operator|(MessageStyle a, MessageStyle b) {
  return static_cast<MessageStyle>(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
}

[[nodiscard]] constexpr bool Has(MessageStyle style, MessageStyle bit) {
  const auto bits = static_cast<std::uint32_t>(bit);
  return (static_cast<std::uint32_t>(style) & bits) == bits;
}

/// Where the caption of a message box comes from.
enum class MessageCaption : std::uint8_t {
  kText,         ///< `MessageBox::caption`.
  kApplication,  ///< The application's own name: the framework's plain box.
  kNone,         ///< A system box that was given no caption.
};

struct MessageBox {
  std::u16string text;
  MessageCaption captionKind = MessageCaption::kText;
  std::u16string caption;  ///< Meant only with kText.
  MessageStyle style = MessageStyle::kOk;
};

/// The framework's plain box: text, the application's caption, one OK button.
[[nodiscard]] inline MessageBox ApplicationBox(std::u16string text) {
  return {std::move(text), MessageCaption::kApplication, {}, MessageStyle::kOk};
}

enum class MessageAnswer : std::uint8_t { kOk, kCancel };

/// What the system shows and sounds outside its own windows. May be called from any thread; a box
/// asked for by a worker thread appears and blocks that worker alone.
class Ui {
 public:
  Ui() = default;
  Ui(const Ui&) = delete;
  Ui& operator=(const Ui&) = delete;
  virtual ~Ui() = default;

  /// Shows `box` and returns when the user has answered. The text is data: nothing in it is
  /// interpreted.
  virtual MessageAnswer ShowMessage(const MessageBox& box) = 0;
};

}  // namespace platform
