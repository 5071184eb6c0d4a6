#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "framework/dialog.h"
#include "platform/sheet_window.h"

namespace framework {

/// A page of a property sheet. The sheet's buttons close it, so neither answer ends anything here.
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

  /// Adds a page, which must outlive the sheet. A page that is there already stays where it is.
  void AddPage(CPropertyPage& page);
  [[nodiscard]] std::size_t GetPageCount() const { return m_pages.size(); }
  [[nodiscard]] const std::u16string& GetCaption() const { return m_caption; }

  /// Shows the sheet until the user closes it; true where that was by OK.
  bool DoModal();

  bool OnInitSheet(platform::SheetWindow& sheet) override;
  void OnHelp() override {}

  /// When the sheet is there with its tabs, and before it is shown.
  virtual bool OnInitDialog() { return true; }

 protected:
  [[nodiscard]] platform::SheetWindow& GetWindow() const { return *m_window; }

 private:
  std::u16string m_caption;
  platform::Ui& m_ui;
  std::vector<CPropertyPage*> m_pages;
  platform::SheetWindow* m_window = nullptr;
};

}  // namespace framework
