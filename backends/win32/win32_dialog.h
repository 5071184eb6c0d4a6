#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "backends/win32/gdi.h"
#include "backends/win32/ui_thread.h"
#include "backends/win32/windows.h"
#include "framework/handler_calls.h"
#include "framework/item_list.h"
#include "platform/dialog.h"

namespace win32 {

/// Returns the text of a window of any kind.
[[nodiscard]] std::u16string ReadWindowText(HWND window);

/// One live dialog: a window that the system made from MakeDialogResource, alone or as a page of a
/// sheet. The system places the controls. While the thread waits or the handler runs, nothing that
/// the user does is reported to the handler.
class Win32Dialog final : public platform::DialogWindow {
 public:
  Win32Dialog(const resources::DialogTemplate& dialog, platform::DialogHandler& handler,
              UiThread& thread, Pictures& pictures);
  ~Win32Dialog() override;

  /// The dialog procedure. The system hands the address of the dialog, or of a page's record whose
  /// lParam is that address, to WM_INITDIALOG.
  static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  /// `listener` is called when the window is there and its handler does not yet know it.
  void OnCreated(std::function<void(HWND)> listener) { m_onCreated = std::move(listener); }

  void TellOk();
  [[nodiscard]] bool AskForHelp();
  /// Whether the handler runs or the thread waits, so that the dialog takes nothing from the user.
  [[nodiscard]] bool IsBusy() const { return m_calls.IsActive() || m_thread.IsWaiting(); }
  /// Returns null before the window is there and after it is gone.
  [[nodiscard]] HWND GetWindow() const { return m_window; }
  /// Returns null if no button is the default one.
  [[nodiscard]] HWND GetDefaultButton() const;
  [[nodiscard]] std::optional<int> GetResult() const { return m_calls.GetResult(); }

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
  struct Control {
    resources::ControlTemplate description;
    HWND window = nullptr;
    std::u16string text;
    std::optional<framework::ItemList> items = std::nullopt;  ///< Of a combo box or a list box.
    FontHandle font;                                          ///< None: that of the dialog.
    int horizontalExtent = 0;
  };
  struct Bar {
    HWND window = nullptr;
    int step = 0;
    int maximum = 0;
  };

  // What the system reports.
  INT_PTR Answer(UINT message, WPARAM wParam, LPARAM lParam);
  void OnInit(HWND window);
  void OnDestroy();
  void OnCommand(int id, int event, HWND control);
  void FollowLink(HWND link);
  void OnControl(Control& control, int event);
  void OnPaint();
  void OnButton(POINT point);
  void DrawItem(const DRAWITEMSTRUCT& item);
  /// The keys of a control with keys of its own (resources::KeyTemplate), and the mouse of a link.
  static LRESULT CALLBACK WatchControl(HWND control, UINT message, WPARAM wParam, LPARAM lParam,
                                       UINT_PTR id, DWORD_PTR self);
  [[nodiscard]] bool PressKey(int control, WPARAM key, LPARAM details);

  void MakeControls();
  void MakeLinks();
  void TellUsersCommand(int id, platform::CommandEvent event);
  /// Calls `call` on the user-interface thread, now or soon. Does nothing if the dialog is gone by
  /// then.
  void CallHere(const std::function<void(Win32Dialog&)>& call);

  void ShowText(Control& control);
  /// Gives a button narrower letters if its text is too long. The texts come from language files.
  void FitText(Control& control);
  /// Makes the selection and the field of the window those of the items.
  void ShowSelection(const Control& control);
  void TakeFocusFrom(const Control& leaving);
  [[nodiscard]] Control* Find(int id);
  [[nodiscard]] const Control* Find(int id) const;
  [[nodiscard]] Control* FindList(int id);
  [[nodiscard]] const Control* FindList(int id) const;
  [[nodiscard]] Control* FindWindowed(HWND window);

  const resources::DialogTemplate& m_template;
  platform::DialogHandler& m_handler;
  framework::HandlerCalls m_calls;
  UiThread& m_thread;
  Pictures& m_pictures;
  HWND m_window = nullptr;
  bool m_isPage = false;
  Scale m_scale;
  std::vector<Control> m_controls;
  std::map<HWND, platform::Rect> m_links;
  std::map<int, Bar> m_bars;
  std::function<void(HWND)> m_onCreated;
  bool m_isChanging = false;  ///< The page changes a control: what that reports is no user's doing.
  /// Dies with the dialog. Calls from other threads hold it weakly.
  const std::shared_ptr<Win32Dialog*> m_self = std::make_shared<Win32Dialog*>(this);
};

}  // namespace win32
