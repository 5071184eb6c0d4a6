#pragma once

#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "backends/qt/frame.h"
#include "backends/qt/qt_dialog.h"
#include "platform/dialog.h"
#include "platform/ui.h"

class QHBoxLayout;
class QTabWidget;

// The windows in which dialogs stand: a dialog alone, or dialogs as the pages of a sheet.

namespace qt {

/// The window of one dialog.
class DialogFrame final : public Frame {
 public:
  DialogFrame(const resources::DialogTemplate& dialog, platform::DialogHandler& handler,
              UiThread& thread, Pictures& pictures, QWidget* parent);

  [[nodiscard]] QtDialog& GetDialog() { return m_dialog; }

 protected:
  void OnCloseBox() override { m_dialog.TellCancel(); }
  void OnHelpKey() override { static_cast<void>(m_dialog.AskForHelp()); }
  void OnEnterKey() override { m_dialog.TellOk(); }

 private:
  QtDialog m_dialog;
};

/// The window of a property sheet: a tab for each page and an OK button.
class QtSheet final : public Frame, public platform::SheetWindow {
 public:
  QtSheet(std::u16string_view caption, std::span<const platform::SheetPage> pages,
          platform::SheetHandler& handler, UiThread& thread, Pictures& pictures, QWidget* parent);
  QtSheet(const QtSheet&) = delete;
  QtSheet& operator=(const QtSheet&) = delete;

  /// Shows above OK what `remark` says about the text of a combo box, and in the tool tip of each
  /// of its items what it says about that. Call it after Init.
  void AddRemark(int comboId, const std::function<QString(const QString&)>& remark);
  /// Adds a button that does what the close box does. Call it before Init.
  void AddCancelButton();
  /// Makes the handler prepare the sheet, and sets the first page up.
  void Init();
  [[nodiscard]] bool WasAccepted() const { return m_wasAccepted; }

  void SetTabText(std::size_t tab, std::u16string_view text) override;

 protected:
  void OnCloseBox() override;
  void OnHelpKey() override;
  void OnEnterKey() override {}

 private:
  void MakeTabs();
  void MakeOkButton();
  void MakeTabKeys();
  /// Shows the page `step` tabs further on. The first tab follows the last.
  void TurnTabs(int step);
  /// Sets the page up if it is shown for the first time.
  void ShowPage(std::size_t page);
  void ChooseDefaultButton(std::size_t page);
  void OrderTabs();
  void OnOk();

  const std::vector<platform::SheetPage> m_pages;
  platform::SheetHandler& m_handler;
  UiThread& m_thread;
  Pictures& m_pictures;
  QTabWidget* m_tabs = nullptr;                    ///< A child.
  std::vector<QWidget*> m_places;                  ///< Of the pages, within the tabs.
  QHBoxLayout* m_buttons = nullptr;                ///< Of the layout: OK and Cancel.
  QPushButton* m_okButton = nullptr;               ///< A child.
  QPushButton* m_cancelButton = nullptr;           ///< A child; null if there is none.
  std::vector<std::unique_ptr<QtDialog>> m_shown;  ///< Null for a page not yet set up.
  bool m_wasAccepted = false;
};

}  // namespace qt
