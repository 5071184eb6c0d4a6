#include "host/home/tags_page.h"

#include <QAction>
#include <QActionGroup>
#include <QEvent>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QStackedLayout>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "host/home/access.h"
#include "host/home/button.h"
#include "host/home/empty_notice.h"
#include "host/home/say.h"
#include "host/home/symbols.h"
#include "resources/tags_window_strings.h"

namespace home {
TagsPage::TagsPage(Work& work, Frame& frame, MessageBar& bar, Ways ways, QWidget* parent)
    : QWidget(parent), m_work(work), m_frame(frame), m_bar(bar), m_ways(ways) {
  MakeActions();
  MakeSortMenu();
  QWidget* const searchRow = MakeSearchRow();
  m_list = new TagList(m_model, m_order,
                       {[this] { PlayCurrent(); }, [this] { PlayOrStop(); },
                        [this](const QPoint& at) { ShowMenu(at); }},
                       this);
  m_list->setAccessibleName(Say(resources::kTagsTitle));
  m_list->addActions({m_delete, m_selectAll});
  m_notice = new EmptyNotice(this);
  m_centre = new QStackedLayout;
  m_centre->addWidget(m_list);
  m_centre->addWidget(m_notice);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(searchRow);
  m_around = new QHBoxLayout;
  m_around->addLayout(m_centre);
  layout->addLayout(m_around, 1);
  layout->addWidget(MakeActionRow());
  connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &TagsPage::ShowCurrent);
  connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this,
          &TagsPage::ShowCurrent);
  m_bar.OnToggled([this] { ShowCurrent(); });
  Sort(kName, Qt::AscendingOrder);
  ShowListOrNotice();
  ShowCurrent();
}

void TagsPage::MakeActions() {
  const auto make = [this](std::u16string_view text, auto act) {
    auto* const action = new QAction(Say(text), this);
    connect(action, &QAction::triggered, this, act);
    return action;
  };
  m_teach = make(resources::kTeachName, [this] { m_frame.ShowPage(PageId::kTeaching, {}); });
  m_teach->setIcon(IconOf(Symbol::kRecord));
  m_teach->setShortcut(QKeySequence::New);
  m_teach->setVisible(m_ways.canTeach);
  m_play = make(resources::kPlay, [this] { PlayOrStop(); });
  m_teachAgain = make(resources::kTeachAgain, [this] {
    if (const Tag* tag = GetCurrent()) {
      m_frame.ShowPage(PageId::kTeaching, tag->name);
    }
  });
  m_teachAgain->setIcon(IconOf(Symbol::kRecord));
  m_teachAgain->setVisible(m_ways.canTeach);
  m_delete = make(resources::kDelete, [this] { Delete(); });
  m_delete->setIcon(IconOf(Symbol::kDelete));
  m_delete->setShortcut(QKeySequence::Delete);
  m_delete->setShortcutContext(Qt::WidgetShortcut);
  m_undo = make(resources::kUndo, [this] { Undo(); });
  m_undo->setShortcut(QKeySequence::Undo);
  m_undo->setEnabled(false);
  m_selectAll = make(resources::kSelectAll, [this] {
    m_list->selectAll();
    m_list->setFocus();
  });
  m_selectAll->setShortcut(QKeySequence::SelectAll);
  m_selectAll->setShortcutContext(Qt::WidgetShortcut);
  // For a finger, which has no other way to keep what is selected.
  m_selectSeveral = make(resources::kSelectSeveral, [this](bool isOn) {
    m_list->setSelectionMode(isOn ? QAbstractItemView::MultiSelection
                                  : QAbstractItemView::ExtendedSelection);
  });
  m_selectSeveral->setCheckable(true);
}

void TagsPage::MakeSortMenu() {
  m_sortMenu = new QMenu(Say(resources::kSortBy), this);
  auto* const columns = new QActionGroup(m_sortMenu);
  for (int column = 0; column < kColumnCount; ++column) {
    QAction* const action = m_sortMenu->addAction(
        m_order.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString(), this,
        [this, column] { Sort(static_cast<Column>(column), GetSortOrder()); });
    action->setCheckable(true);
    columns->addAction(action);
  }
  m_sortMenu->addSeparator();
  auto* const orders = new QActionGroup(m_sortMenu);
  for (const auto& [text, order] : {std::pair(resources::kSortUpwards, Qt::AscendingOrder),
                                    std::pair(resources::kSortDownwards, Qt::DescendingOrder)}) {
    QAction* const action = m_sortMenu->addAction(
        Say(text), this, [this, order = order] { Sort(GetSortColumn(), order); });
    action->setCheckable(true);
    orders->addAction(action);
  }
  connect(m_sortMenu, &QMenu::aboutToShow, this, [this, columns, orders] {
    columns->actions().at(GetSortColumn())->setChecked(true);
    orders->actions().at(GetSortOrder() == Qt::AscendingOrder ? 0 : 1)->setChecked(true);
  });
}

QWidget* TagsPage::MakeSearchRow() {
  auto* const row = new QWidget(this);
  m_search = new QLineEdit(row);
  m_search->setObjectName(QStringLiteral("search"));
  m_search->setPlaceholderText(Say(resources::kSearch));
  m_search->setAccessibleName(Say(resources::kSearch));
  m_search->setClearButtonEnabled(true);
  NameClearButton(*m_search, qt::WithoutMnemonic(Say(resources::kClearSearch)));
  m_search->setMinimumHeight(kLeastTarget);
  const int room = m_search->fontMetrics().averageCharWidth();
  m_search->setTextMargins(room, 0, room, 0);
  connect(m_search, &QLineEdit::textChanged, this, [this](const QString& typed) {
    m_order.Search(typed);
    ShowListOrNotice();
  });
  connect(m_search, &QLineEdit::returnPressed, this, [this] {
    m_list->setFocus();
    if (!m_list->currentIndex().isValid()) {
      m_list->setCurrentIndex(m_order.index(0, kName));
    }
  });
  m_sort = new QToolButton(row);
  m_sort->setObjectName(QStringLiteral("sort"));
  m_sort->setIcon(IconOf(Symbol::kSort));
  m_sort->setAccessibleName(Say(resources::kSortBy));
  m_sort->setToolTip(Say(resources::kSortBy));
  GiveMenu(*m_sort, *m_sortMenu);
  m_sort->setFocusPolicy(Qt::StrongFocus);
  MakeTouchable(*m_sort);
  m_teachAtTop = new ActionButton(*m_teach, row);
  auto* const layout = new QHBoxLayout(row);
  layout->setContentsMargins(layout->contentsMargins().left(), 0, layout->contentsMargins().right(),
                             layout->spacing());
  layout->addWidget(m_search, 1);
  layout->addWidget(m_sort);
  layout->addWidget(m_teachAtTop);
  return row;
}

QWidget* TagsPage::MakeActionRow() {
  auto* const foot = new QWidget(this);
  m_details = new QLabel(foot);
  m_details->setObjectName(QStringLiteral("details"));
  m_details->setWordWrap(true);
  m_details->setTextFormat(Qt::PlainText);
  m_details->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  m_actionRow = new QWidget(foot);
  auto* const row = new QHBoxLayout(m_actionRow);
  row->setContentsMargins(0, 0, 0, 0);
  for (QAction* const action : {m_play, m_teachAgain, m_delete}) {
    m_actionButtons.push_back(new ActionButton(*action, m_actionRow));
    m_actionButtons.back()->setSizePolicy(QSizePolicy::MinimumExpanding, QSizePolicy::Fixed);
    row->addWidget(m_actionButtons.back());
  }
  m_teachAtBottom = new ActionButton(*m_teach, foot);
  m_teachAtBottom->setSizePolicy(QSizePolicy::MinimumExpanding, QSizePolicy::Fixed);
  m_foot = new QBoxLayout(QBoxLayout::LeftToRight, foot);
  m_foot->addWidget(m_details, 1);
  m_foot->addWidget(m_actionRow);
  m_foot->addWidget(m_teachAtBottom);
  return foot;
}

void TagsPage::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  Adapt();
}

void TagsPage::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
    Adapt();
  }
}

void TagsPage::Adapt() {
  const bool isNarrow = width() < m_list->LeastTableWidth();
  m_list->ShowAsCards(isNarrow);
  // Cards go from edge to edge.
  const int room = isNarrow ? 0 : m_foot->contentsMargins().left();
  m_around->setContentsMargins(room, 0, room, 0);
  m_foot->setDirection(isNarrow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
  const bool hasTags = m_shelf && !m_shelf->tags.empty();
  m_sort->setVisible(isNarrow && hasTags);
  m_teachAtTop->setVisible(m_ways.canTeach && !isNarrow);
  m_teachAtBottom->setVisible(m_ways.canTeach && isNarrow);
  int needed = m_foot->contentsMargins().left() + m_foot->contentsMargins().right();
  for (ActionButton* const button : m_actionButtons) {
    button->ShowText(true);
    needed += button->sizeHint().width() + m_foot->spacing();
  }
  for (ActionButton* const button : m_actionButtons) {
    button->ShowText(needed <= width());
  }
  ShowCurrent();
}

void TagsPage::Show(std::shared_ptr<const Shelf> shelf) {
  std::vector<std::u16string> selected = GetSelected();
  const int currentRow = m_list->currentIndex().row();
  const bool wasUnread = m_shelf == nullptr;
  std::u16string current = GetCurrent() != nullptr ? GetCurrent()->name : std::u16string();
  const auto has = [](const Shelf& some, const std::u16string& name) {
    return std::ranges::find(some.tags, name, &Tag::name) != some.tags.end();
  };
  if (m_shelf) {
    const auto added = std::ranges::find_if_not(
        shelf->tags, [&](const Tag& tag) { return has(*m_shelf, tag.name); });
    if (added != shelf->tags.end()) {
      current = added->name;
      selected = {current};
    }
  }
  m_shelf = shelf;
  m_model.Show(std::move(shelf));
  ShowListOrNotice();
  Select(selected, current);
  if (currentRow >= 0 && !m_list->currentIndex().isValid()) {
    // It was deleted. The next one takes its place, so that the keyboard goes on from there.
    m_list->setCurrentIndex(m_order.index(std::min(currentRow, m_order.rowCount() - 1), kName));
  } else if (wasUnread) {
    // Keys mean the list from the beginning, and nothing is selected yet.
    m_list->selectionModel()->setCurrentIndex(m_order.index(0, kName),
                                              QItemSelectionModel::NoUpdate);
    if (isVisible()) {
      m_list->setFocus();
    }
  }
  Adapt();
}

void TagsPage::ShowListOrNotice() {
  const auto show = [this](const QString& title, const QString& advice, std::u16string_view button,
                           std::function<void()> act) {
    m_notice->Show(title, advice, Say(button), std::move(act));
    m_centre->setCurrentWidget(m_notice);
  };
  if (!m_shelf) {
    show(Say(resources::kReadingTags), {}, {}, nullptr);
  } else if (!m_shelf->tagsProblem.empty()) {
    show(Say(resources::kTagsUnreadable), qt::ToQString(m_shelf->tagsProblem), resources::kTryAgain,
         [this] { m_work.Load(); });
  } else if (m_shelf->tags.empty() && !m_shelf->peopleProblem.empty()) {
    show(Say(resources::kPeopleUnreadable), qt::ToQString(m_shelf->peopleProblem),
         m_ways.canSetUp ? resources::kOpenSetup : resources::kTryAgain, [this] {
           if (m_ways.canSetUp) {
             m_frame.ShowPage(PageId::kSetup, {});
           } else {
             m_work.Load();
           }
         });
  } else if (m_shelf->tags.empty()) {
    show(Say(resources::kNoTags), Say(resources::kNoTagsAdvice), resources::kTeachName,
         m_ways.canTeach ? [this] { m_frame.ShowPage(PageId::kTeaching, {}); }
                         : std::function<void()>());
  } else if (m_order.rowCount() == 0) {
    show(Say(resources::kNoMatch).arg(m_search->text()), {}, resources::kClearSearch,
         [this] { ClearSearch(); });
  } else {
    m_centre->setCurrentWidget(m_list);
  }
  const bool hasTags = m_shelf && !m_shelf->tags.empty();
  m_search->parentWidget()->setVisible(hasTags);
  m_foot->parentWidget()->setVisible(m_centre->currentWidget() == m_list);
}

const Tag* TagsPage::GetCurrent() const {
  const QModelIndex current = m_order.mapToSource(m_list->currentIndex());
  return current.isValid() ? &m_model.TagAt(current.row()) : nullptr;
}

std::vector<std::u16string> TagsPage::GetSelected() const {
  std::vector<std::u16string> names;
  const QModelIndexList rows = m_list->selectionModel()->selectedRows();
  names.reserve(static_cast<std::size_t>(rows.size()));
  for (const QModelIndex& row : rows) {
    names.push_back(m_model.TagAt(m_order.mapToSource(row).row()).name);
  }
  return names;
}

void TagsPage::Select(const std::vector<std::u16string>& tags, const std::u16string& current) {
  QItemSelectionModel& selection = *m_list->selectionModel();
  for (int row = 0; row < m_order.rowCount(); ++row) {
    const QModelIndex index = m_order.index(row, kName);
    const std::u16string& name = m_model.TagAt(m_order.mapToSource(index).row()).name;
    if (name == current) {
      selection.setCurrentIndex(index, QItemSelectionModel::NoUpdate);
      m_list->scrollTo(index);
    }
    if (std::ranges::find(tags, name) != tags.end()) {
      selection.select(index, QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
  }
}

void TagsPage::ShowCurrent() {
  const std::vector<std::u16string> selected = GetSelected();
  const Tag* const tag = GetCurrent();
  QStringList lines;
  if (selected.size() > 1) {
    lines.append(Say(resources::kManySelected).arg(static_cast<qulonglong>(selected.size())));
  } else if (tag != nullptr) {
    const int row = m_order.mapToSource(m_list->currentIndex()).row();
    // A narrow window has no room to say twice what a card says.
    if (!m_list->ShowsWhole(m_list->currentIndex())) {
      QStringList facts;
      for (const Column column : {kName, kNumber, kKind, kTaught, kLength}) {
        facts.append(m_model.data(m_model.index(row, column), Qt::DisplayRole).toString());
      }
      facts.removeAll(QString());
      lines.append(facts.join(QStringLiteral(" · ")));
    }
    if (!m_list->AreCards() || GradeOf(*tag) != Grade::kGood || tag->isStale) {
      lines.append(m_model.DescribeQuality(row).join(u' '));
    }
  }
  m_details->setText(lines.join(u'\n'));
  // On a narrow window there is no room for nothing, and a message takes theirs.
  m_details->setVisible(!m_list->AreCards() || !(lines.isEmpty() || m_bar.isVisible()));
  const bool isPlaying = tag != nullptr && tag->name == m_model.GetPlaying();
  m_play->setText(Say(isPlaying ? resources::kStop : resources::kPlay));
  m_play->setIcon(IconOf(isPlaying ? Symbol::kStop : Symbol::kPlay));
  m_play->setEnabled(tag != nullptr);
  m_teachAgain->setEnabled(tag != nullptr && selected.size() <= 1 && !tag->isStale);
  m_delete->setEnabled(!selected.empty());
}

void TagsPage::ShowMenu(const QPoint& at) {
  QMenu menu(this);
  menu.addActions({m_play, m_teachAgain, m_delete});
  menu.addSeparator();
  menu.addActions({m_selectAll, m_selectSeveral});
  menu.exec(at);
}

void TagsPage::PlayCurrent() {
  const Tag* const tag = GetCurrent();
  if (tag == nullptr) {
    return;
  }
  m_model.ShowPlaying(tag->name);
  ShowCurrent();
  m_work.Play(tag->name, [this, played = ++m_played](const Outcome& outcome) {
    if (played == m_played) {  // Nothing else has been played since.
      m_model.ShowPlaying({});
      ShowCurrent();
    }
    m_frame.Report(outcome);
  });
}

void TagsPage::PlayOrStop() {
  const Tag* const tag = GetCurrent();
  if (tag != nullptr && tag->name == m_model.GetPlaying()) {
    m_work.StopPlaying();
  } else {
    PlayCurrent();
  }
}

void TagsPage::Delete() {
  const std::vector<std::u16string> tags = GetSelected();
  if (tags.empty()) {
    return;
  }
  const Tag* const first = GetCurrent();
  const QString name =
      first != nullptr && tags.size() == 1 ? qt::ToQString(first->contact) : QString();
  m_bar.Clear();
  m_work.Delete(tags, [this, name, count = static_cast<qulonglong>(tags.size())](
                          const Outcome& outcome, const std::vector<std::u16string>& trashed) {
    m_trashed = trashed;
    m_undo->setEnabled(!trashed.empty());
    const QString done = count == 1 ? Say(resources::kOneDeleted).arg(name)
                                    : Say(resources::kManyDeleted).arg(count);
    if (trashed.empty()) {
      m_frame.Report(outcome);
    } else {
      // If it was done only in part, the reason is the news.
      m_bar.Show(outcome.isDone ? done : qt::ToQString(outcome.message), Say(resources::kUndo),
                 [this] { Undo(); });
    }
  });
}

void TagsPage::Undo() {
  const std::vector<std::u16string> trashed = std::exchange(m_trashed, {});
  if (trashed.empty()) {
    return;
  }
  m_undo->setEnabled(false);
  m_bar.Clear();
  m_work.Restore(trashed, [this, count = trashed.size()](const Outcome& outcome) {
    if (!outcome.isDone || !outcome.message.empty()) {
      m_frame.Report(outcome);
    } else {
      m_bar.Show(Say(count == 1 ? resources::kOneRestored : resources::kManyRestored));
    }
    m_list->setFocus();
  });
}

void TagsPage::FocusList() { m_list->setFocus(); }

void TagsPage::FocusSearch() {
  m_search->setFocus(Qt::ShortcutFocusReason);
  m_search->selectAll();
}

bool TagsPage::ClearSearch() {
  const bool hadText = !m_search->text().isEmpty();
  const bool hadFocus = m_search->hasFocus();
  m_search->clear();
  if (hadText || hadFocus) {
    m_list->setFocus();
  }
  return hadText || hadFocus;
}

Column TagsPage::GetSortColumn() const { return static_cast<Column>(m_order.sortColumn()); }

Qt::SortOrder TagsPage::GetSortOrder() const { return m_order.sortOrder(); }

void TagsPage::Sort(Column column, Qt::SortOrder order) { m_list->sortByColumn(column, order); }

}  // namespace home
