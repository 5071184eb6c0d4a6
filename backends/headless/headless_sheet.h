#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "backends/headless/headless_dialog.h"
#include "platform/dialog.h"
#include "platform/ui.h"

namespace headless {

/// A property sheet without a window, for a program to do what a user would.
class HeadlessSheet final : public platform::SheetWindow {
 public:
  HeadlessSheet(std::u16string caption, std::span<const platform::SheetPage> pages,
                platform::SheetHandler& handler, platform::Threads* threads);

  /// Turns to a page, which is set up when it is first shown. Null for no such page.
  HeadlessDialog* ShowPage(std::size_t page);
  void AskForHelp();
  /// Closes the sheet: OK tells every page that was set up.
  void PressOk();
  void Close();

  [[nodiscard]] const std::u16string& GetCaption() const { return m_caption; }
  [[nodiscard]] const std::vector<std::u16string>& GetTabTexts() const { return m_tabs; }
  [[nodiscard]] bool IsClosed() const { return m_isClosed; }
  [[nodiscard]] bool WasAccepted() const { return m_wasAccepted; }

  void SetTabText(std::size_t tab, std::u16string_view text) override;

 private:
  std::u16string m_caption;
  std::vector<platform::SheetPage> m_pages;
  platform::SheetHandler& m_handler;
  platform::Threads* m_threads;
  std::vector<std::u16string> m_tabs;
  std::vector<std::unique_ptr<HeadlessDialog>> m_shown;  ///< Null for a page not yet set up.
  bool m_isClosed = false;
  bool m_wasAccepted = false;
};

}  // namespace headless
