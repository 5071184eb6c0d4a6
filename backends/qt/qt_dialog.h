#pragma once

#include <QProgressBar>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>

#include "backends/qt/control.h"
#include "backends/qt/dialog_surface.h"
#include "backends/qt/qt_canvas.h"
#include "backends/qt/ui_thread.h"
#include "framework/handler_calls.h"
#include "platform/dialog.h"

class QPushButton;

namespace qt {

/// One live dialog: a surface with the controls on it, ready to be put into a window. While the
/// thread waits or the handler runs, nothing that the user does is reported to the handler.
class QtDialog final : public platform::DialogWindow {
 public:
  QtDialog(const resources::DialogTemplate& dialog, platform::DialogHandler& handler,
           UiThread& thread, Pictures& pictures, QWidget* parent);
  ~QtDialog() override;

  /// Makes the handler set the dialog up.
  void Init();
  void TellOk();
  void TellCancel();
  [[nodiscard]] bool AskForHelp();

  [[nodiscard]] DialogSurface& GetSurface() { return *m_surface; }
  /// Returns null if no button is the default one.
  [[nodiscard]] QPushButton* GetDefaultButton() const;
  /// Returns the controls that Tab reaches, in its order.
  [[nodiscard]] std::vector<QWidget*> GetTabChain() const;
  [[nodiscard]] std::optional<int> GetResult() const { return m_calls.GetResult(); }
  /// `listener` is called when the dialog is ended.
  void SetEndListener(std::function<void()> listener) { m_onEnd = std::move(listener); }

  void SetText(int id, std::u16string_view text) override;
  [[nodiscard]] std::u16string GetText(int id) const override;
  void Enable(int id, bool isEnabled) override;
  [[nodiscard]] bool IsEnabled(int id) const override;
  void SetFont(int id, const platform::Font& font) override;
  int AddItem(int id, std::u16string_view text) override;
  void DeleteItem(int id, int index) override;
  void ResetItems(int id) override;
  [[nodiscard]] int GetItemCount(int id) const override;
  [[nodiscard]] std::u16string GetItemText(int id, int index) const override;
  [[nodiscard]] std::optional<int> GetSelection(int id) const override;
  void SetSelection(int id, std::optional<int> index) override;
  void SetHorizontalExtent(int id, int width) override;
  [[nodiscard]] int GetHorizontalExtent(int id) const override;
  [[nodiscard]] int GetTextWidth(int id, std::u16string_view text) const override;
  void SetCheck(int id, bool isChecked) override;
  [[nodiscard]] bool IsChecked(int id) const override;
  void CreateProgressBar(int id, const platform::ProgressBar& bar) override;
  void StepProgress(int id) override;
  void DestroyProgressBar(int id) override;
  [[nodiscard]] platform::Rect GetControlRect(int id) const override;
  [[nodiscard]] platform::Rect GetClientRect() const override;
  void PostCommand(int id) override;
  void Invalidate() override;
  void EndDialog(int result) override;

 private:
  struct Bar {
    std::unique_ptr<QProgressBar> widget;
    int step = 0;
  };

  void MakeControls(Pictures& pictures);
  void MakeLinks();
  /// Connects a control's widget, so the dialog hears what the user does there.
  void Hear(Control& control);
  void GiveLabelsRoom();
  /// Delivers what the handler has posted when the event loop comes to it.
  void DeliverLater();
  void TellUsersCommand(int id, platform::CommandEvent event);
  [[nodiscard]] bool PressKey(int control, resources::Key key);
  /// Calls `call` on the user-interface thread, now or soon. Does nothing if the dialog is gone by
  /// then.
  void CallHere(const std::function<void(QtDialog&)>& call);
  void ChangeText(int id, const std::u16string& text);
  void Rename();
  /// Moves the focus away from a control that is about to be disabled: to the list, or to the first
  /// control that is no button.
  void TakeFocusFrom(const Control& leaving);
  [[nodiscard]] Control* Find(int id);
  [[nodiscard]] const Control* Find(int id) const;
  /// Returns null for a control without items.
  [[nodiscard]] Control* FindList(int id);
  [[nodiscard]] const Control* FindList(int id) const;

  const resources::DialogTemplate& m_template;
  platform::DialogHandler& m_handler;
  framework::HandlerCalls m_calls;
  UiThread& m_thread;
  std::unique_ptr<DialogSurface> m_surface;
  std::list<Control> m_controls;
  std::vector<QWidget*> m_links;  ///< Children of the surface.
  std::map<int, Bar> m_bars;
  std::function<void()> m_onEnd;
  int m_command = resources::kNoControlId;  ///< The command that is being handled.
  std::shared_ptr<QtDialog*>
      m_self;  ///< Dies with the dialog. Calls from other threads hold it weakly.
};

}  // namespace qt
