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
#include "resources/dial_window_strings.h"
#include "resources/tags_window_strings.h"

namespace home {

int DetailsArea::heightForWidth(int width) const {
  const int wanted = widget()->heightForWidth(width);
  return m_most > 0 ? std::min(wanted, m_most) : wanted;
}

QSize DetailsArea::sizeHint() const {
  const int width = widget()->sizeHint().width();
  return {width, heightForWidth(width)};
}

QSize DetailsArea::minimumSizeHint() const { return {0, 0}; }

void DetailsArea::SetMost(int height) {
  m_most = height;
  updateGeometry();
}

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
  m_dial = make(resources::kSayName, [this] { m_frame.ShowPage(PageId::kDial, {}); });
  m_dial->setIcon(IconOf(Symbol::kCall));
  m_dial->setVisible(m_ways.canDial);
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
  // Only in the list: in the search the same keys edit the text. So it is with Select all.
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
  NameClearButton(*m_search, Say(resources::kClearSearch));
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
  GiveMenu(*m_sort, *m_sortMenu);
  m_sort->setAccessibleName(Say(resources::kSortBy));
  m_sort->setToolTip(Say(resources::kSortBy));
  m_sort->setFocusPolicy(Qt::StrongFocus);
  MakeTouchable(*m_sort);
  m_dialAtTop = new ActionButton(*m_dial, row);
  m_teachAtTop = new ActionButton(*m_teach, row);
  auto* const layout = new QHBoxLayout(row);
  layout->setContentsMargins(layout->contentsMargins().left(), 0, layout->contentsMargins().right(),
                             layout->spacing());
  layout->addWidget(m_search, 1);
  layout->addWidget(m_sort);
  layout->addWidget(m_dialAtTop);
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
  m_detailsArea = new DetailsArea(foot);
  QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
  policy.setHeightForWidth(true);
  m_detailsArea->setSizePolicy(policy);
  m_detailsArea->setWidget(m_details);
  m_detailsArea->setWidgetResizable(true);
  m_detailsArea->setFrameShape(QFrame::NoFrame);
  m_detailsArea->setFocusPolicy(Qt::NoFocus);  // The text has it, and the focus scrolls.
  m_detailsArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  m_detailsArea->viewport()->setAutoFillBackground(false);
  m_details->setAutoFillBackground(false);
  m_actionRow = new QWidget(foot);
  auto* const row = new QHBoxLayout(m_actionRow);
  row->setContentsMargins(0, 0, 0, 0);
  for (QAction* const action : {m_play, m_teachAgain, m_delete}) {
    m_actionButtons.push_back(new ActionButton(*action, m_actionRow));
    m_actionButtons.back()->setSizePolicy(QSizePolicy::MinimumExpanding, QSizePolicy::Fixed);
    row->addWidget(m_actionButtons.back());
  }
  m_teachAtBottom = new ActionButton(*m_teach, foot);
  m_dialAtBottom = new ActionButton(*m_dial, foot);
  m_bottom = new QBoxLayout(QBoxLayout::LeftToRight);
  for (ActionButton* const button : {m_dialAtBottom, m_teachAtBottom}) {
    button->setSizePolicy(QSizePolicy::MinimumExpanding, QSizePolicy::Fixed);
    m_bottom->addWidget(button);
  }
  m_foot = new QBoxLayout(QBoxLayout::LeftToRight, foot);
  m_foot->addWidget(m_detailsArea, 1);
  m_foot->addWidget(m_actionRow);
  m_foot->addLayout(m_bottom);
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

// The widths of words decide, and no number of pixels: fonts and translations differ. On a narrow
// window the buttons that begin something are at the bottom, in reach of a thumb.
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
  m_dialAtTop->setVisible(m_ways.canDial && !isNarrow);
  m_dialAtBottom->setVisible(m_ways.canDial && isNarrow);
  const int both = m_teachAtBottom->sizeHint().width() + m_dialAtBottom->sizeHint().width() +
                   m_bottom->spacing() + m_foot->contentsMargins().left() +
                   m_foot->contentsMargins().right();
  m_bottom->setDirection(both <= width() ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
  int needed = m_foot->contentsMargins().left() + m_foot->contentsMargins().right();
  // What the buttons need is known only while they show their texts.
  for (ActionButton* const button : m_actionButtons) {
    button->ShowText(true);
    needed += button->sizeHint().width() + m_foot->spacing();
  }
  for (ActionButton* const button : m_actionButtons) {
    button->ShowText(needed <= width());
  }
  ShowCurrent();
}

void TagsPage::FocusList() {
  if (m_centre->currentWidget() == m_notice) {
    m_notice->FocusButton();
  } else {
    m_list->setFocus();
  }
}

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
