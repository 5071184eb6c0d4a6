#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "platform/dialog.h"

namespace platform {

/// Style bits of a message box. They have the values of the Windows family, so a back end there can
/// pass them on as they are.
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

/// The source of a message box's caption.
enum class MessageCaption : std::uint8_t {
  kText,         ///< `MessageBox::caption`.
  kApplication,  ///< The application's own name: the framework's plain box.
  kNone,         ///< A system box that was given no caption.
};

struct MessageBox {
  std::u16string text;
  MessageCaption captionKind = MessageCaption::kText;
  std::u16string caption;  ///< Used only with kText.
  MessageStyle style = MessageStyle::kOk;
};

/// Returns the framework's plain box: text, the application's caption, one OK button.
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

/// The user interface outside the dialogs' own windows. Any thread may call it. If a worker thread
/// asks for a message box, the box appears and blocks that worker alone.
class Ui {
 public:
  Ui() = default;
  Ui(const Ui&) = delete;
  Ui& operator=(const Ui&) = delete;
  virtual ~Ui() = default;

  /// Shows `box` and returns the user's answer. The text is data: nothing in it is interpreted.
  virtual MessageAnswer ShowMessage(const MessageBox& box) = 0;

  virtual void Beep(Sound sound) = 0;

  // The rest belongs to the thread that runs the user interface.

  virtual void SetCursor(Cursor cursor) = 0;

  /// Builds a dialog from its template, hands it to `handler`, runs it until EndDialog, and returns
  /// the result given there. Never shows a dialog that was ended while it was set up.
  [[nodiscard]] virtual int RunDialog(const resources::DialogTemplate& dialog,
                                      DialogHandler& handler) = 0;

  /// Runs a property sheet until the user closes it. Returns true if the user closed it by OK. A
  /// page is set up when it is first shown; the first page is shown first. OK calls OnOK of every
  /// page that was set up. Calls `handler` if the user asks for help and the page has none.
  [[nodiscard]] virtual bool RunSheet(std::u16string_view caption, std::span<const SheetPage> pages,
                                      SheetHandler& handler) = 0;
};

}  // namespace platform
