#pragma once

#include <QSettings>
#include <QStringList>
#include <QWidget>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "host/home/page.h"
#include "host/home/work.h"
#include "host/machine/places.h"

class QLabel;
class QMenu;
class QStackedWidget;
class QToolButton;

namespace home {

class MessageBar;
class TagsPage;

/// The Voice tags window: a header, the list of tags or another page, and a bar with messages.
class TagsWindow : public QWidget, private Frame {
 public:
  struct Settings {
    /// The pages that the window has. Each is made when it is first shown.
    std::map<PageId, std::function<std::unique_ptr<Page>(Frame& frame)>> pages;
    /// Starts another program of the system. Returns false if it cannot be started.
    std::function<bool(const machine::Program& program, const QStringList& arguments)> start;
    std::function<void()> openHelp;
  };

  /// Shows nothing of the store before it is read. `work` and `remembered`, which keeps the size
  /// and the order, outlive this.
  TagsWindow(Work& work, QSettings& remembered, Settings settings);
  ~TagsWindow() override;

  /// Shows a page and hides the one before. `tag` can be empty.
  void ShowPage(PageId page, const std::u16string& tag) override;
  /// Shows the message in the bar. May be called for whatever the user should know.
  void Report(const Outcome& outcome) override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void ShowTags() override;
  void OnShelf(std::shared_ptr<const Shelf> shelf);
  void GiveShelf(Page& page) const;
  [[nodiscard]] QWidget* MakeHeader();
  void SetTitleFont();
  void FillMenu();
  void AddPageItem(QMenu& menu, std::u16string_view text, PageId page);
  void AddProgramItem(QMenu& menu, std::u16string_view text, const machine::Program& program,
                      const QStringList& arguments);
  void ShowHeader(const QString& title, bool isPage);
  void ShowAbout();
  [[nodiscard]] Page* GetShownPage() const;

  Work& m_work;
  QSettings& m_remembered;
  const Settings m_settings;
  std::shared_ptr<const Shelf> m_shelf;  ///< Null until the store has been read.
  std::map<PageId, Page*> m_pages;       ///< Those that were shown.
  // Owned by the window.
  QToolButton* m_back = nullptr;
  QLabel* m_title = nullptr;
  QMenu* m_menu = nullptr;
  QStackedWidget* m_stack = nullptr;
  MessageBar* m_bar = nullptr;
  TagsPage* m_tags = nullptr;
};

}  // namespace home
