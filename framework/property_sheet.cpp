#include "framework/property_sheet.h"

#include <algorithm>

namespace framework {

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
