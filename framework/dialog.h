#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "framework/object.h"
#include "platform/dialog.h"
#include "platform/ui.h"

namespace framework {

/// The result of a dialog that the user closed by OK or by its close box.
inline constexpr int kIdOk = 1;
inline constexpr int kIdCancel = 2;

/// A dialog in the style of the framework: its overrides answer what the presentation reports.
/// Nothing here knows how a dialog looks.
class CDialog : public CObject, public platform::DialogHandler {
 public:
  CDialog(const resources::DialogTemplate& dialog, platform::Ui& ui)
      : m_template(dialog), m_ui(ui) {}

  /// Shows the dialog and returns the result with which it was ended.
  int DoModal();
  void EndDialog(int result);

  [[nodiscard]] const resources::DialogTemplate& GetTemplate() const { return m_template; }

  void Attach(platform::DialogWindow& window) override { m_window = &window; }
  void Detach() override { m_window = nullptr; }

  bool OnInitDialog() override { return true; }
  void OnCommand(int /*id*/, platform::CommandEvent /*event*/) override {}
  void OnPaint(platform::Canvas& /*canvas*/) override {}
  void OnLButtonDown(platform::Point /*point*/) override {}
  bool OnHelp() override { return false; }
  void OnOK() override { EndDialog(kIdOk); }
  void OnCancel() override { EndDialog(kIdCancel); }

 protected:
  /// Returns the live window. Use it only while the dialog runs.
  [[nodiscard]] platform::DialogWindow& GetWindow() const { return *m_window; }
  [[nodiscard]] bool HasWindow() const { return m_window != nullptr; }
  [[nodiscard]] platform::Ui& GetUi() const { return m_ui; }

 private:
  const resources::DialogTemplate& m_template;
  platform::Ui& m_ui;
  platform::DialogWindow* m_window = nullptr;
};

/// A page of a property sheet. The buttons belong to the sheet and close the sheet, so OK and
/// Cancel end nothing here.
class CPropertyPage : public CDialog {
 public:
  using CDialog::CDialog;

  void OnOK() override {}
  void OnCancel() override {}
};

/// A property sheet: the pages in the order in which they were added.
class CPropertySheet : public CObject, public platform::SheetHandler {
 public:
  CPropertySheet(std::u16string_view caption, platform::Ui& ui) : m_caption(caption), m_ui(ui) {}

  /// Adds a page, which must outlive the sheet. A page that was added before stays in its place.
  void AddPage(CPropertyPage& page);
  [[nodiscard]] std::size_t GetPageCount() const { return m_pages.size(); }
  [[nodiscard]] const std::u16string& GetCaption() const { return m_caption; }

  /// Shows the sheet until the user closes it. Returns true if the user closed it by OK.
  bool DoModal();

  bool OnInitSheet(platform::SheetWindow& sheet) override;
  void OnHelp() override {}

  /// Is called when the sheet has its tabs, before it is shown.
  virtual bool OnInitDialog() { return true; }

 protected:
  [[nodiscard]] platform::SheetWindow& GetWindow() const { return *m_window; }

 private:
  std::u16string m_caption;
  platform::Ui& m_ui;
  std::vector<CPropertyPage*> m_pages;
  platform::SheetWindow* m_window = nullptr;
};

/// Shows the cursor that says "wait", as long as this object lives. Belongs to the user-interface
/// thread.
class WaitCursor {
 public:
  explicit WaitCursor(platform::Ui& ui) : m_ui(ui) { m_ui.SetCursor(platform::Cursor::kWait); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
  ~WaitCursor() { m_ui.SetCursor(platform::Cursor::kNormal); }

 private:
  platform::Ui& m_ui;
};

}  // namespace framework
