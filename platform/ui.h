#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "platform/dialog_handler.h"
#include "resources/dialog_template.h"

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

enum class Sound : std::uint8_t { kExclamation };

enum class Cursor : std::uint8_t { kNormal, kWait };

/// One page of a property sheet.
struct SheetPage {
  const resources::DialogTemplate& dialog;
  DialogHandler& handler;
};

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

  virtual void Beep(Sound sound) = 0;

  // The rest belongs to the thread that runs the user interface.

  virtual void SetCursor(Cursor cursor) = 0;

  /// Builds a dialog from its template, hands it to `handler`, and runs it until EndDialog, whose
  /// result it returns. Where the dialog was ended while it was set up it is never shown.
  [[nodiscard]] virtual int RunDialog(const resources::DialogTemplate& dialog,
                                      DialogHandler& handler) = 0;

  /// Runs a property sheet until the user closes it, and returns true where that was by OK. A page
  /// is set up when it is first shown; the first page is shown first. OK calls OnOK of every page
  /// that was set up. `handler` may be called for the sheet's own help.
  [[nodiscard]] virtual bool RunSheet(std::u16string_view caption, std::span<const SheetPage> pages,
                                      SheetHandler& handler) = 0;
};

}  // namespace platform
