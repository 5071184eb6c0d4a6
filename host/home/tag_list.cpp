#include "host/home/tag_list.h"

#include <QContextMenuEvent>
#include <QGestureEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScroller>
#include <algorithm>
#include <numeric>
#include <utility>

#include "host/home/sizes.h"
#include "host/home/tag_delegate.h"

namespace home {
namespace {

// In widths of an average character.
constexpr std::array<int, kColumnCount> kLeastWidths = {15, 22, 14, 13, 8, 14, 14};
constexpr int kTableWidth = std::accumulate(kLeastWidths.begin(), kLeastWidths.end(), 0);
constexpr int kWidestColumn = 28;

/// Makes columns narrower until they have `whole` pixels together. Each gives a share of what it
/// has above its least width.
void Narrow(std::array<int, kColumnCount>& widths, int whole, int unit) {
  int excess = std::accumulate(widths.begin(), widths.end(), 0) - whole;
  int spare = 0;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    spare += std::max(0, widths[i] - kLeastWidths[i] * unit);
  }
  for (std::size_t i = 0; i < widths.size() && spare > 0 && excess > 0; ++i) {
    const int own = std::max(0, widths[i] - kLeastWidths[i] * unit);
    // Rounded up. The rest is shared among the columns that follow, so that no pixel is left over.
    const int given = std::min(own, (own * excess + spare - 1) / spare);
    widths[i] -= given;
    excess -= given;
    spare -= own;
  }
}

}  // namespace

TagList::TagList(TagModel& model, TagOrder& order, Events events, QWidget* parent)
    : QTreeView(parent),
      m_model(model),
      m_events(std::move(events)),
      m_delegate(new TagDelegate(model, order, this)) {
  setModel(&order);
  setItemDelegate(m_delegate);
  setRootIsDecorated(false);
  setItemsExpandable(false);
  // Then the view asks for the height of one row only, and not for that of each.
  setUniformRowHeights(true);
  setAllColumnsShowFocus(true);
  setSelectionMode(ExtendedSelection);
  setSelectionBehavior(SelectRows);
  setEditTriggers(NoEditTriggers);
  setVerticalScrollMode(ScrollPerPixel);
  setSortingEnabled(true);
  setTabKeyNavigation(false);
  header()->setSectionsMovable(false);
  header()->setStretchLastSection(false);
  connect(header(), &QHeaderView::sectionResized, this, [this](int column, int, int width) {
    // Only a width that the user has dragged is a choice. The signal comes for those that are set
    // here too.
    if (!m_isFitting && !m_areCards) {
      m_chosenWidths[static_cast<std::size_t>(column)] = width;
    }
  });
  MeasureColumns();
  connect(&order, &QAbstractItemModel::modelReset, this, [this] {
    MeasureColumns();
    FitColumns();
  });
  QScroller::grabGesture(viewport(), QScroller::TouchGesture);
  viewport()->grabGesture(Qt::TapAndHoldGesture);
}

int TagList::LeastTableWidth() const { return kTableWidth * fontMetrics().averageCharWidth(); }

void TagList::ShowAsCards(bool areCards) {
  if (areCards == m_areCards) {
    return;
  }
  m_areCards = areCards;
  m_delegate->ShowAsCards(areCards);
  setHorizontalScrollBarPolicy(areCards ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAsNeeded);
  setHeaderHidden(areCards);
  setFrameShape(areCards ? QFrame::NoFrame : QFrame::StyledPanel);
  for (int column = kName + 1; column < kColumnCount; ++column) {
    setColumnHidden(column, areCards);
  }
  FitColumns();
  scheduleDelayedItemsLayout();
  scrollTo(currentIndex());
}

// The style would measure each cell much more slowly, and only those in sight.
void TagList::MeasureColumns() {
  const QFontMetrics metrics = fontMetrics();
  const int unit = metrics.averageCharWidth();
  for (int column = 0; column < kColumnCount; ++column) {
    int widest = 0;
    for (int row = 0; row < m_model.rowCount(); ++row) {
      const QString text = m_model.index(row, column).data().toString();
      widest = std::max(widest, metrics.horizontalAdvance(text));
    }
    const int symbol = column == kQuality || column == kNearest ? metrics.height() : 0;
    m_neededWidths[static_cast<std::size_t>(column)] =
        std::max(widest + symbol + 2 * unit, header()->sectionSizeHint(column));
  }
}

// Columns share the width of the window. What the user has chosen for a column counts as its need.
void TagList::FitColumns() {
  const int whole = viewport()->width();
  m_isFitting = true;
  if (m_areCards) {
    setColumnWidth(kName, whole);
    m_isFitting = false;
    return;
  }
  const int unit = fontMetrics().averageCharWidth();
  std::array<int, kColumnCount> widths = m_neededWidths;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    widths[i] =
        m_chosenWidths[i] > 0 ? m_chosenWidths[i] : std::min(widths[i], kWidestColumn * unit);
  }
  const int rest = whole - std::accumulate(widths.begin(), widths.end(), 0);
  if (rest > 0) {
    // On a very wide window a number stays in sight of its name.
    const int given = std::min(rest / 2, kWidestColumn * unit);
    widths[kName] += given;
    widths[kNearest] += rest - given;
  } else {
    Narrow(widths, whole, unit);
  }
  for (int column = 0; column < kColumnCount; ++column) {
    setColumnWidth(column, widths[static_cast<std::size_t>(column)]);
  }
  m_isFitting = false;
}

void TagList::resizeEvent(QResizeEvent* event) {
  QTreeView::resizeEvent(event);
  FitColumns();
}

void TagList::changeEvent(QEvent* event) {
  QTreeView::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
    // Widths in pixels mean nothing for letters of another size.
    m_chosenWidths.fill(0);
    MeasureColumns();
    FitColumns();
  }
}

// In a table any column may be too narrow.
bool TagList::ShowsWhole(const QModelIndex& index) const {
  return m_areCards && m_delegate->IsCardWhole(visualRect(index), font(), index);
}

QRect TagList::PlayButton(const QRect& card, Qt::LayoutDirection direction) {
  const QRect button(card.right() + 1 - kLeastTarget - kLeastTarget / 8, card.top(), kLeastTarget,
                     card.height());
  return QStyle::visualRect(direction, card, button);
}

QModelIndex TagList::PlayButtonAt(const QPoint& place) const {
  const QModelIndex index = indexAt(place);
  const bool isThere = m_areCards && index.isValid() &&
                       PlayButton(visualRect(index), layoutDirection()).contains(place);
  return isThere ? index : QModelIndex();
}

// A letter goes to the search of the list, so only keys that mean something here are taken.
void TagList::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      m_events.play();
      return;
    case Qt::Key_Space:
      if (event->modifiers() == Qt::NoModifier) {
        m_events.playOrStop();
        return;
      }
      break;
    default:
      break;
  }
  QTreeView::keyPressEvent(event);
}

void TagList::mousePressEvent(QMouseEvent* event) {
  QTreeView::mousePressEvent(event);
  m_pressedCard =
      event->button() == Qt::LeftButton ? PlayButtonAt(event->position().toPoint()) : QModelIndex();
}

void TagList::mouseReleaseEvent(QMouseEvent* event) {
  QTreeView::mouseReleaseEvent(event);
  const QModelIndex pressed = std::exchange(m_pressedCard, QPersistentModelIndex());
  if (pressed.isValid() && pressed == PlayButtonAt(event->position().toPoint())) {
    setCurrentIndex(pressed);
    m_events.playOrStop();
  }
}

void TagList::mouseDoubleClickEvent(QMouseEvent* event) {
  QTreeView::mouseDoubleClickEvent(event);
  const QPoint place = event->position().toPoint();
  if (event->button() == Qt::LeftButton && indexAt(place).isValid() &&
      !PlayButtonAt(place).isValid()) {
    m_events.play();
  }
}

void TagList::ShowMenuAtCurrent() {
  const QRect row = visualRect(currentIndex());
  m_events.showMenu(viewport()->mapToGlobal(row.isValid() ? row.center() : QPoint()));
}

void TagList::contextMenuEvent(QContextMenuEvent* event) {
  if (event->reason() == QContextMenuEvent::Keyboard) {
    ShowMenuAtCurrent();
  } else {
    m_events.showMenu(event->globalPos());
  }
}

// A finger that stays is what the other mouse button is for a mouse. The library takes a mouse that
// stays for a finger.
bool TagList::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::TouchBegin) {
    m_isFinger = true;
  } else if (event->type() == QEvent::MouseButtonPress) {
    m_isFinger = static_cast<QMouseEvent*>(event)->source() != Qt::MouseEventNotSynthesized;
  } else if (event->type() == QEvent::Gesture && m_isFinger) {
    auto* const gestures = static_cast<QGestureEvent*>(event);
    if (QGesture* const hold = gestures->gesture(Qt::TapAndHoldGesture);
        hold != nullptr && hold->state() == Qt::GestureFinished) {
      const QPoint at = static_cast<QTapAndHoldGesture*>(hold)->position().toPoint();
      const QModelIndex index = indexAt(viewport()->mapFromGlobal(at));
      if (index.isValid() && !selectionModel()->isSelected(index)) {
        setCurrentIndex(index);
      }
      m_events.showMenu(at);
      return true;
    }
  }
  return QTreeView::viewportEvent(event);
}

}  // namespace home
