#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/canvas.h"
#include "resources/dialog_template.h"

namespace platform {

// A dialog has two halves. The presentation owns the window and its controls (DialogWindow); the
// page decides what happens (DialogHandler). The page changes controls by their ids, and the
// presentation reports what the user did. So the same page runs in a window and without one.

/// A progress bar that is made at run time.
struct ProgressBar {
  Rect rect;
  int minimum = 0;
  int maximum = 100;
  int step = 10;
  bool isSmooth = false;
};

/// One live dialog. Its controls are addressed by their ids.
///
/// Belongs to the thread that runs the user interface. Any other thread may call only SetText,
/// StepProgress and EndDialog, which take effect on the user-interface thread. An operation does
/// nothing and returns the empty result if the control does not exist, if it is of another kind, or
/// if the index is not that of an item.
class DialogWindow {
 public:
  DialogWindow() = default;
  DialogWindow(const DialogWindow&) = delete;
  DialogWindow& operator=(const DialogWindow&) = delete;
  virtual ~DialogWindow() = default;

  /// Of an editable combo box, sets the text of its field; items and selection stay as they are.
  virtual void SetText(int id, std::u16string_view text) = 0;
  /// Of a combo box, returns the text of its field, as framework::ItemList describes.
  [[nodiscard]] virtual std::u16string GetText(int id) const = 0;
  virtual void Enable(int id, bool isEnabled) = 0;
  [[nodiscard]] virtual bool IsEnabled(int id) const = 0;
  virtual void SetFont(int id, const Font& font) = 0;

  // Combo boxes and list boxes. What each operation does to the items and to the selection is
  // written at framework::ItemList, which every presentation uses.

  /// Adds an item and returns its index. Returns -1 if there is no such list.
  virtual int AddItem(int id, std::u16string_view text) = 0;
  virtual void DeleteItem(int id, int index) = 0;
  virtual void ResetItems(int id) = 0;
  [[nodiscard]] virtual int GetItemCount(int id) const = 0;
  [[nodiscard]] virtual std::u16string GetItemText(int id, int index) const = 0;
  [[nodiscard]] virtual std::optional<int> GetSelection(int id) const = 0;
  /// Selects an item. The page gets no kSelectionChange for it.
  virtual void SetSelection(int id, std::optional<int> index) = 0;

  // List boxes: how far their content reaches to the right, for scrolling.
  virtual void SetHorizontalExtent(int id, int width) = 0;
  [[nodiscard]] virtual int GetHorizontalExtent(int id) const = 0;
  /// Returns the width of a text in the control's font.
  [[nodiscard]] virtual int GetTextWidth(int id, std::u16string_view text) const = 0;

  virtual void SetCheck(int id, bool isChecked) = 0;
  [[nodiscard]] virtual bool IsChecked(int id) const = 0;

  virtual void CreateProgressBar(int id, const ProgressBar& bar) = 0;
  virtual void StepProgress(int id) = 0;
  virtual void DestroyProgressBar(int id) = 0;

  /// Returns the place of a control on the dialog.
  [[nodiscard]] virtual Rect GetControlRect(int id) const = 0;
  [[nodiscard]] virtual Rect GetClientRect() const = 0;

  /// Makes the presentation call the dialog's OnCommand with `id` and kPosted after the handler
  /// that runs now has returned. Posted commands come in their order. Those of a dialog that has
  /// ended never come.
  virtual void PostCommand(int id) = 0;

  /// Makes the presentation paint the dialog again, soon.
  virtual void Invalidate() = 0;
  /// Ends the modal run of the dialog with `result`.
  virtual void EndDialog(int result) = 0;
};

enum class CommandEvent : std::uint8_t {
  kClick,            ///< A button or a picture was pressed.
  kSelectionChange,  ///< The user chose an item of a combo box or a list box.
  kPosted,           ///< The page sent itself this command with DialogWindow::PostCommand.
};

/// A place in what a dialog paints. A press on it does something, also for users without a mouse.
struct PaintedLink {
  Rect area;
  std::u16string_view name;  ///< For a screen reader. Lives as long as the dialog.
};

/// The logic of a dialog. The presentation makes all calls on the user-interface thread.
class DialogHandler {
 public:
  DialogHandler() = default;
  DialogHandler(const DialogHandler&) = delete;
  DialogHandler& operator=(const DialogHandler&) = delete;
  virtual ~DialogHandler() = default;

  /// Hands over the window, which was built from its template and stays until Detach.
  virtual void Attach(DialogWindow& window) = 0;
  virtual void Detach() = 0;

  /// Sets the dialog up. Is called once, before the dialog is shown.
  virtual bool OnInitDialog() = 0;
  virtual void OnCommand(int id, CommandEvent event) = 0;
  /// Paints the dialog. Is called each time a part of it has to be painted. What was painted before
  /// is gone.
  virtual void OnPaint(Canvas& canvas) = 0;
  /// Returns the links that the dialog paints. If the keyboard chooses one, the presentation
  /// reports a press at its middle.
  [[nodiscard]] virtual std::vector<PaintedLink> GetLinks() const { return {}; }
  /// Reports that the main mouse button went down outside all controls.
  virtual void OnLButtonDown(Point point) = 0;
  /// Shows help on this dialog. Returns false if the dialog has no help of its own.
  virtual bool OnHelp() = 0;
  virtual void OnOK() = 0;
  virtual void OnCancel() = 0;
};

/// One live property sheet: a window with a tab for each page. Belongs to the user-interface
/// thread.
class SheetWindow {
 public:
  SheetWindow() = default;
  SheetWindow(const SheetWindow&) = delete;
  SheetWindow& operator=(const SheetWindow&) = delete;
  virtual ~SheetWindow() = default;

  virtual void SetTabText(std::size_t tab, std::u16string_view text) = 0;
};

/// The logic of a property sheet, apart from that of its pages.
class SheetHandler {
 public:
  SheetHandler() = default;
  SheetHandler(const SheetHandler&) = delete;
  SheetHandler& operator=(const SheetHandler&) = delete;
  virtual ~SheetHandler() = default;

  /// Is called once, when the sheet has all its tabs and before it is shown.
  virtual bool OnInitSheet(SheetWindow& sheet) = 0;
  virtual void OnHelp() = 0;
};

/// Converts dialog units to pixels of the device, rounded to the nearest pixel as the device does.
/// The dialog font of the device is 6 pixels wide on average and 13 high. No other code converts.
[[nodiscard]] constexpr Rect ToPixels(const resources::DialogRect& rect) {
  constexpr int kFontWidth = 6;
  constexpr int kFontHeight = 13;
  constexpr auto kAcross = [](int units) { return (units * kFontWidth + 2) / 4; };
  constexpr auto kDown = [](int units) { return (units * kFontHeight + 4) / 8; };
  return {kAcross(rect.x), kDown(rect.y), kAcross(rect.x + rect.width),
          kDown(rect.y + rect.height)};
}

}  // namespace platform
