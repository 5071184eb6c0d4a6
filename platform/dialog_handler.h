#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/canvas.h"
#include "platform/geometry.h"

namespace platform {

class DialogWindow;
class SheetWindow;

enum class CommandEvent : std::uint8_t {
  kClick,            ///< A button or a picture was pressed.
  kSelectionChange,  ///< The user chose an item of a combo box or a list box.
  kPosted,           ///< The page sent itself this command with DialogWindow::PostCommand.
};

/// A place in what a dialog paints whose press does something, for users without a mouse.
struct PaintedLink {
  Rect area;
  std::u16string_view name;  ///< For a screen reader. Lives as long as the dialog.
};

/// What a presentation tells a dialog. All calls come on the user-interface thread.
class DialogHandler {
 public:
  DialogHandler() = default;
  DialogHandler(const DialogHandler&) = delete;
  DialogHandler& operator=(const DialogHandler&) = delete;
  virtual ~DialogHandler() = default;

  /// The window is there, built from its template, and stays until Detach.
  virtual void Attach(DialogWindow& window) = 0;
  virtual void Detach() = 0;

  /// Once, before the dialog is shown.
  virtual bool OnInitDialog() = 0;
  virtual void OnCommand(int id, CommandEvent event) = 0;
  /// Whenever a part of the dialog has to be painted; what was painted before is gone.
  virtual void OnPaint(Canvas& canvas) = 0;
  /// The links that it paints. One that is chosen by the keyboard is told as a press at its middle.
  [[nodiscard]] virtual std::vector<PaintedLink> GetLinks() const { return {}; }
  /// The main mouse button went down beside all controls.
  virtual void OnLButtonDown(Point point) = 0;
  /// The user asked for help on this dialog; false where it has none of its own.
  virtual bool OnHelp() = 0;
  virtual void OnOK() = 0;
  virtual void OnCancel() = 0;
};

/// What a presentation tells a property sheet.
class SheetHandler {
 public:
  SheetHandler() = default;
  SheetHandler(const SheetHandler&) = delete;
  SheetHandler& operator=(const SheetHandler&) = delete;
  virtual ~SheetHandler() = default;

  /// Once, when the sheet with all its tabs is there and before it is shown.
  virtual bool OnInitSheet(SheetWindow& sheet) = 0;
  virtual void OnHelp() = 0;
};

}  // namespace platform
