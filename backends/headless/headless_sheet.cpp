#include "backends/headless/headless_sheet.h"

#include <utility>

namespace headless {

HeadlessSheet::HeadlessSheet(std::u16string caption, std::span<const platform::SheetPage> pages,
                             platform::SheetHandler& handler, platform::Threads* threads)
    : m_caption(std::move(caption)),
      m_pages(pages.begin(), pages.end()),
      m_handler(handler),
      m_threads(threads),
      m_shown(pages.size()) {
  for (const platform::SheetPage& page : m_pages) {
    m_tabs.emplace_back(page.dialog.caption);
  }
}

HeadlessDialog* HeadlessSheet::ShowPage(std::size_t page) {
  if (page >= m_pages.size()) {
    return nullptr;
  }
  auto& shown = m_shown[page];
  if (!shown) {
    shown =
        std::make_unique<HeadlessDialog>(m_pages[page].dialog, m_pages[page].handler, m_threads);
    m_pages[page].handler.OnInitDialog();
    shown->DeliverPosted();
  }
  return shown.get();
}

void HeadlessSheet::AskForHelp() { m_handler.OnHelp(); }

void HeadlessSheet::PressOk() {
  for (std::size_t page = 0; page < m_pages.size(); ++page) {
    if (m_shown[page]) {
      m_pages[page].handler.OnOK();
    }
  }
  m_isClosed = true;
  m_wasAccepted = true;
}

void HeadlessSheet::Close() { m_isClosed = true; }

void HeadlessSheet::SetTabText(std::size_t tab, std::u16string_view text) {
  if (tab < m_tabs.size()) {
    m_tabs[tab] = text;
  }
}

}  // namespace headless
