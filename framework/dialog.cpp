#include "framework/dialog.h"

#include <algorithm>

namespace framework {

int CDialog::DoModal() { return m_ui.RunDialog(m_template, *this); }

void CDialog::EndDialog(int result) {
  if (m_window != nullptr) {
    m_window->EndDialog(result);
  }
}

void CPropertySheet::AddPage(CPropertyPage& page) {
  if (std::ranges::find(m_pages, &page) == m_pages.end()) {
    m_pages.push_back(&page);
  }
}

bool CPropertySheet::DoModal() {
  std::vector<platform::SheetPage> pages;
  for (CPropertyPage* page : m_pages) {
    pages.push_back({page->GetTemplate(), *page});
  }
  const bool accepted = m_ui.RunSheet(m_caption, pages, *this);
  m_window = nullptr;
  return accepted;
}

bool CPropertySheet::OnInitSheet(platform::SheetWindow& sheet) {
  m_window = &sheet;
  return OnInitDialog();
}

}  // namespace framework
