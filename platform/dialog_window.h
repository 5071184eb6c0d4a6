#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/canvas.h"
#include "platform/geometry.h"

namespace platform {

/// A progress bar that is made at run time.
struct ProgressBar {
  Rect rect;
  int minimum = 0;
  int maximum = 100;
  int step = 10;
  bool isSmooth = false;
};

/// One live dialog, its controls addressed by their ids.
///
/// Belongs to the thread that runs the user interface; from any other thread only SetText,
/// StepProgress and EndDialog may be called, and take effect on the user-interface thread. An
/// operation on a control that is not there, or on an index that is none, does nothing and gives
/// the empty result.
class DialogWindow {
 public:
  DialogWindow() = default;
  DialogWindow(const DialogWindow&) = delete;
  DialogWindow& operator=(const DialogWindow&) = delete;
  virtual ~DialogWindow() = default;

  /// The text of an editable combo box is what stands in its field. An item that is selected puts
  /// its text there; SetText leaves items and selection as they are.
  virtual void SetText(int id, std::u16string_view text) = 0;
  [[nodiscard]] virtual std::u16string GetText(int id) const = 0;
  virtual void Enable(int id, bool isEnabled) = 0;
  [[nodiscard]] virtual bool IsEnabled(int id) const = 0;
  virtual void SetFont(int id, const Font& font) = 0;

  // Combo boxes and list boxes. Indices are 0-based; no selection is no value.

  /// Adds an item where the control's order puts it and returns its index.
  virtual int AddItem(int id, std::u16string_view text) = 0;
  virtual void DeleteItem(int id, int index) = 0;
  virtual void ResetItems(int id) = 0;
  [[nodiscard]] virtual int GetItemCount(int id) const = 0;
  [[nodiscard]] virtual std::u16string GetItemText(int id, int index) const = 0;
  [[nodiscard]] virtual std::optional<int> GetSelection(int id) const = 0;

  /// Selects an item without telling the page.
  virtual void SetSelection(int id, std::optional<int> index) = 0;

  // List boxes: how far their content reaches to the right, for scrolling.
  virtual void SetHorizontalExtent(int id, int width) = 0;
  [[nodiscard]] virtual int GetHorizontalExtent(int id) const = 0;
  /// Width of a text in the control's font.
  [[nodiscard]] virtual int GetTextWidth(int id, std::u16string_view text) const = 0;

  virtual void SetCheck(int id, bool isChecked) = 0;
  [[nodiscard]] virtual bool IsChecked(int id) const = 0;

  virtual void CreateProgressBar(int id, const ProgressBar& bar) = 0;
  virtual void StepProgress(int id) = 0;
  virtual void DestroyProgressBar(int id) = 0;

  /// Where a control stands on the dialog.
  [[nodiscard]] virtual Rect GetControlRect(int id) const = 0;
  [[nodiscard]] virtual Rect GetClientRect() const = 0;

  /// Has the dialog's OnCommand called with `id` and kPosted once what runs now is over: after
  /// OnInitDialog, where it is posted there. Posted commands come in their order; those of a dialog
  /// that has ended never come.
  virtual void PostCommand(int id) = 0;

  /// Has the dialog painted again, soon.
  virtual void Invalidate() = 0;
  /// Ends the modal run of the dialog with `result`.
  virtual void EndDialog(int result) = 0;
};

}  // namespace platform
