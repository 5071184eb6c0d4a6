#include "host/home/people_list.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QPainter>
#include <QScrollBar>
#include <QStackedLayout>
#include <QStyledItemDelegate>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "host/home/access.h"
#include "host/home/avatar.h"
#include "host/home/empty_notice.h"
#include "host/home/list_painting.h"
#include "host/home/numbers.h"
#include "host/home/say.h"
#include "host/home/sizes.h"
#include "host/home/symbols.h"
#include "resources/tags_window_strings.h"
#include "resources/teaching_strings.h"

namespace home {
namespace {

constexpr int kRowGap = 8;

/// Paints a row: the person's initials and name on the first one of a person, and the number on
/// each.
class PersonDelegate final : public QStyledItemDelegate {
 public:
  PersonDelegate(const PeopleModel& model, QObject* parent)
      : QStyledItemDelegate(parent), m_model(model) {}

  void paint(QPainter* painter, const QStyleOptionViewItem& given,
             const QModelIndex& index) const override {
    QStyleOptionViewItem option(given);
    initStyleOption(&option, index);
    option.widget->style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter,
                                          option.widget);
    painter->save();
    const QRect area = option.rect.adjusted(kRowGap, kRowGap / 2, -kRowGap, -kRowGap / 2);
    if (index.row() > 0 && m_model.IsFirstOfPerson(index.row())) {
      painter->fillRect(QRect(option.rect.topLeft(), QSize(option.rect.width(), 1)),
                        WithShare(option.palette.color(QPalette::Text), kThinShare));
    }
    const int avatar = AvatarSize(option);
    if (m_model.IsFirstOfPerson(index.row())) {
      DrawAvatar(*painter,
                 QStyle::visualRect(option.direction, area,
                                    QRect(area.left(), area.top(), avatar, area.height())),
                 qt::ToQString(m_model.PersonAt(index.row()).name), ColourOf(option),
                 WithShare(ColourOf(option), kGroundShare));
    }
    PaintTexts(*painter, option, area.adjusted(avatar + kRowGap, 0, 0, 0), index.row());
    painter->restore();
  }

  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                               const QModelIndex& /*index*/) const override {
    return {0, std::max(2 * option.fontMetrics.lineSpacing() + 2 * kRowGap, kLeastTarget)};
  }

 private:
  static int AvatarSize(const QStyleOptionViewItem& option) {
    return std::min(2 * option.fontMetrics.lineSpacing(), option.rect.width() / 6);
  }

  void PaintTexts(QPainter& painter, const QStyleOptionViewItem& option, const QRect& area,
                  int row) const {
    const bool isFirst = m_model.IsFirstOfPerson(row);
    const int line = option.fontMetrics.lineSpacing();
    const int top = area.center().y() - (isFirst ? line : line / 2);
    const auto write = [&](const QRect& place, const QString& text, bool isBold,
                           Qt::TextElideMode mode) {
      QFont font(option.font);
      font.setBold(isBold);
      WriteLine(painter, option, {place, text, font, Qt::AlignLeading, mode, !isBold});
    };
    const Person& person = m_model.PersonAt(row);
    if (isFirst) {
      const QString name = qt::ToQString(person.name);
      const QString company =
          person.company == person.name ? QString() : qt::ToQString(person.company);
      QFont bold(option.font);
      bold.setBold(true);
      const int width = company.isEmpty() ? area.width()
                                          : std::min(QFontMetrics(bold).horizontalAdvance(name) + 1,
                                                     area.width());
      write({area.left(), top, width, line}, name, true, Qt::ElideRight);
      if (area.width() - width > 3 * line) {
        write({area.left() + width, top, area.width() - width, line},
              QStringLiteral("  ·  ") + company, false, Qt::ElideRight);
      }
    }
    const Number& number = m_model.NumberAt(row);
    const QString shown = NameKind(number.kind) + QStringLiteral(" · ") + ShowNumber(number.text);
    const QRect place(area.left(), top + (isFirst ? line : 0), area.width(), line);
    const int taken = m_model.IsTaught(row)
                          ? PaintTaught(painter, option, place,
                                        place.width() - option.fontMetrics.horizontalAdvance(shown))
                          : 0;
    write(place.adjusted(0, 0, -taken, 0), shown, false, Qt::ElideMiddle);
  }

  /// Shows at the end of the line that the number has a voice tag: with words if `room` is free
  /// there, else with the sign alone, as the number says more. Returns the width that it takes.
  static int PaintTaught(QPainter& painter, const QStyleOptionViewItem& option, const QRect& line,
                         int room) {
    const int size = option.fontMetrics.ascent();
    const int around = size + 2 * kRowGap;
    const QString word = Say(resources::kIsTaught);
    const int wordWidth = option.fontMetrics.horizontalAdvance(word);
    const int width = wordWidth + around <= room ? wordWidth : 0;
    const auto place = [&](int back, int length) {
      return QStyle::visualRect(option.direction, option.rect,
                                QRect(line.right() + 1 - back, line.top(), length, line.height()));
    };
    painter.setFont(option.font);
    painter.setPen(ColourOf(option));
    if (width > 0) {
      painter.drawText(place(width, width), Qt::AlignCenter, word);
    }
    DrawSymbol(painter, place(width + size + kRowGap / 2, size), Symbol::kGood, ColourOf(option));
    return width + around;
  }

  const PeopleModel& m_model;
};

}  // namespace

PeopleList::PeopleList(Choose choose, std::function<void()> setUp, QWidget* parent)
    : QWidget(parent),
      m_choose(std::move(choose)),
      m_setUp(std::move(setUp)),
      m_search(new QLineEdit(this)),
      m_list(new QListView(this)),
      m_notice(new EmptyNotice(this)),
      m_centre(new QStackedLayout) {
  m_search->setPlaceholderText(Say(resources::kSearchPeople));
  m_search->setAccessibleName(Say(resources::kSearchPeople));
  m_search->setClearButtonEnabled(true);
  NameClearButton(*m_search, Say(resources::kShowEverybody));
  m_search->setMinimumHeight(kLeastTarget);
  m_search->setTextMargins(kRowGap, 0, kRowGap, 0);
  m_search->setObjectName(QStringLiteral("peopleSearch"));
  m_search->installEventFilter(this);
  m_list->setModel(&m_model);
  m_list->setItemDelegate(new PersonDelegate(m_model, m_list));
  m_list->setUniformItemSizes(true);
  m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
  m_list->setAccessibleName(Say(resources::kPeople));
  m_list->setObjectName(QStringLiteral("people"));
  connect(m_search, &QLineEdit::textChanged, this, &PeopleList::OnTyped);
  connect(m_search, &QLineEdit::returnPressed, this,
          [this] { OnActivated(m_list->currentIndex()); });
  connect(m_list, &QListView::clicked, this, &PeopleList::OnActivated);
  connect(m_list, &QListView::activated, this, &PeopleList::OnActivated);

  m_centre->addWidget(m_list);
  m_centre->addWidget(m_notice);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_search);
  layout->addLayout(m_centre, 1);
  ShowListOrNotice();
}

void PeopleList::Show(const std::shared_ptr<const Shelf>& shelf) {
  m_isRead = true;
  m_problem = qt::ToQString(shelf->peopleProblem);
  // A shelf comes whenever something has changed. The list must not jump while somebody reads it.
  const int row = m_list->currentIndex().row();
  const int top = m_list->verticalScrollBar()->value();
  m_model.SetShelf(shelf);
  m_list->setCurrentIndex(
      m_model.index(std::clamp(row, 0, std::max(m_model.rowCount() - 1, 0)), 0));
  m_list->verticalScrollBar()->setValue(top);
  ShowListOrNotice();
}

void PeopleList::Begin() {
  m_search->clear();
  FocusSearch();
}

// The search is no focus proxy of this: Tab would never leave this then.
void PeopleList::FocusSearch() { m_search->setFocus(); }

bool PeopleList::ClearSearch() {
  const bool wasEmpty = m_search->text().isEmpty();
  m_search->clear();
  return !wasEmpty;
}

void PeopleList::OnTyped(const QString& typed) {
  m_model.Search(typed);
  m_list->setCurrentIndex(m_model.index(0, 0));
  ShowListOrNotice();
}

void PeopleList::ShowListOrNotice() {
  const bool isEmpty = m_model.rowCount() == 0;
  m_centre->setCurrentWidget(isEmpty ? static_cast<QWidget*>(m_notice) : m_list);
  if (!isEmpty) {
    return;
  }
  if (!m_isRead) {
    m_notice->Show(Say(resources::kReadingPeople), {}, {}, nullptr);
  } else if (!m_search->text().isEmpty() && m_problem.isEmpty()) {
    m_notice->Show(Say(resources::kNobodyFound).arg(InSentence(m_search->text())), {},
                   Say(resources::kShowEverybody), [this] { Begin(); });
  } else {
    m_notice->Show(Say(resources::kPeopleUnreadable),
                   m_problem.isEmpty() ? Say(resources::kNoNumbers) : m_problem,
                   Say(resources::kOpenSetup), m_setUp);
  }
}

void PeopleList::OnActivated(const QModelIndex& index) {
  if (index.isValid()) {
    // Copies: to choose may show another shelf.
    const Person person = m_model.PersonAt(index.row());
    const Number number = m_model.NumberAt(index.row());
    m_choose(person, number);
  }
}

// The keys that move in the list go to it while the search has the focus.
bool PeopleList::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_search && event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp ||
        key == Qt::Key_PageDown) {
      QApplication::sendEvent(m_list, event);
      return true;
    }
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace home
