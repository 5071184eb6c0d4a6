#pragma once

#include <QScrollArea>
#include <QWidget>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/home/button.h"
#include "host/home/message_bar.h"
#include "host/home/page.h"
#include "host/home/tag_list.h"
#include "host/home/tag_model.h"
#include "host/home/work.h"

class QAction;
class QBoxLayout;
class QLabel;
class QLineEdit;
class QMenu;
class QStackedLayout;
class QToolButton;

namespace home {

class EmptyNotice;

/// As high as its text needs, up to a limit. What is higher is scrolled.
class DetailsArea final : public QScrollArea {
 public:
  using QScrollArea::QScrollArea;

  /// 0 is no limit.
  void SetMost(int height);

  [[nodiscard]] bool hasHeightForWidth() const override { return true; }
  [[nodiscard]] int heightForWidth(int width) const override;
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 private:
  int m_most = 0;
};

/// The list of tags with its search, and what can be done with the tags that are selected.
class TagsPage : public QWidget {
 public:
  /// Which other pages the window has.
  struct Ways {
    bool canTeach = false;
    bool canSetUp = false;
    bool canDial = false;
  };

  /// All outlive this.
  TagsPage(Work& work, Frame& frame, MessageBar& bar, Ways ways, QWidget* parent);

  /// Shows what the store holds. Selected tags stay selected. A tag that was not there before
  /// becomes the current one.
  void Show(std::shared_ptr<const Shelf> shelf);

  /// Gives the focus to the list, or to what stands in its place.
  void FocusList();
  void FocusSearch();
  /// Returns false if there was nothing to clear.
  bool ClearSearch();

  [[nodiscard]] Column GetSortColumn() const;
  [[nodiscard]] Qt::SortOrder GetSortOrder() const;
  void Sort(Column column, Qt::SortOrder order);

  /// The actions of this page, for the menu of the window.
  [[nodiscard]] QMenu& GetSortMenu() const { return *m_sortMenu; }
  [[nodiscard]] QAction& GetTeachAction() const { return *m_teach; }
  [[nodiscard]] QAction& GetDialAction() const { return *m_dial; }
  [[nodiscard]] QAction& GetUndoAction() const { return *m_undo; }
  [[nodiscard]] QAction& GetSelectAllAction() const { return *m_selectAll; }
  [[nodiscard]] QAction& GetSelectSeveralAction() const { return *m_selectSeveral; }

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void MakeActions();
  void MakeSortMenu();
  [[nodiscard]] QWidget* MakeSearchRow();
  [[nodiscard]] QWidget* MakeActionRow();
  void Adapt();
  void ShowListOrNotice();
  void ShowCurrent();
  void FitDetails();
  void ShowMenu(const QPoint& at);

  [[nodiscard]] const Tag* GetCurrent() const;
  [[nodiscard]] std::vector<std::u16string> GetSelected() const;
  void Select(const std::vector<std::u16string>& tags, const std::u16string& current);
  void PlayCurrent();
  void PlayOrStop();
  void Delete();
  void Undo();

  Work& m_work;
  Frame& m_frame;
  MessageBar& m_bar;
  const Ways m_ways;
  std::shared_ptr<const Shelf> m_shelf;  ///< Null until the store has been read.
  TagModel m_model;
  TagOrder m_order{m_model};
  std::vector<std::u16string> m_trashed;  ///< What Undo brings back.
  int m_played = 0;                       ///< How often something was played.

  // Owned by the widgets.
  QStackedLayout* m_centre = nullptr;
  QBoxLayout* m_around = nullptr;  ///< Of the list and of what stands in its place.
  TagList* m_list = nullptr;
  EmptyNotice* m_notice = nullptr;
  QLineEdit* m_search = nullptr;
  QToolButton* m_sort = nullptr;
  // On a wide window, and on a narrow one.
  ActionButton* m_teachAtTop = nullptr;
  ActionButton* m_teachAtBottom = nullptr;
  ActionButton* m_dialAtTop = nullptr;
  ActionButton* m_dialAtBottom = nullptr;
  QBoxLayout* m_bottom = nullptr;  ///< The buttons at the bottom of a narrow window.
  QBoxLayout* m_foot = nullptr;    ///< The details and the buttons.
  QLabel* m_details = nullptr;
  DetailsArea* m_detailsArea = nullptr;
  QWidget* m_actionRow = nullptr;
  std::vector<ActionButton*> m_actionButtons;
  QMenu* m_sortMenu = nullptr;
  QAction* m_teach = nullptr;
  QAction* m_dial = nullptr;
  QAction* m_play = nullptr;
  QAction* m_teachAgain = nullptr;
  QAction* m_delete = nullptr;
  QAction* m_undo = nullptr;
  QAction* m_selectAll = nullptr;
  QAction* m_selectSeveral = nullptr;
};

}  // namespace home
