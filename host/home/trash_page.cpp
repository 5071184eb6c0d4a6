#include "host/home/trash_page.h"

#include <QDateTime>
#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QStackedLayout>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "host/home/button_row.h"
#include "host/home/card_delegate.h"
#include "host/home/empty_notice.h"
#include "host/home/numbers.h"
#include "host/home/say.h"
#include "resources/tags_window_strings.h"

namespace home {
namespace {

constexpr int kTrashCardLines = 3;
constexpr int kFileRole = Qt::UserRole + 2;  ///< The name of the file in the trash.

}  // namespace

TrashPage::TrashPage(Work& work, Frame& frame)
    : m_work(work),
      m_frame(frame),
      m_list(new QListWidget(this)),
      m_obstacle(new QLabel(this)),
      m_buttons(new ButtonRow(this)),
      m_restore(m_buttons->Add(Say(resources::kRestore))),
      m_notice(new EmptyNotice(this)),
      m_centre(new QStackedLayout) {
  setWindowTitle(Say(resources::kTrashTitle));
  auto* const advice = new QLabel(Say(resources::kTrashAdvice), this);
  advice->setWordWrap(true);
  m_list->setObjectName(QStringLiteral("deletedTags"));
  m_list->setAccessibleName(Say(resources::kTrashTitle));
  m_list->setItemDelegate(new CardDelegate(kTrashCardLines, m_list));
  m_list->setUniformItemSizes(true);
  m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  // A finger has no key to choose several with.
  m_list->setSelectionMode(QAbstractItemView::MultiSelection);
  m_obstacle->setObjectName(QStringLiteral("obstacle"));
  m_obstacle->setWordWrap(true);
  m_obstacle->setTextFormat(Qt::PlainText);
  m_restore->setObjectName(QStringLiteral("restore"));
  m_buttons->ShowOnly({m_restore});
  connect(m_restore, &QPushButton::clicked, this, [this] { Restore(); });
  connect(m_list, &QListWidget::itemSelectionChanged, this, [this] { ShowChosen(); });
  connect(m_list, &QListWidget::currentRowChanged, this, [this] { ShowChosen(); });
  auto* const content = new QWidget(this);
  auto* const rows = new QVBoxLayout(content);
  rows->setContentsMargins(0, 0, 0, 0);
  for (QWidget* const widget :
       {static_cast<QWidget*>(advice), static_cast<QWidget*>(m_list),
        static_cast<QWidget*>(m_obstacle), static_cast<QWidget*>(m_buttons)}) {
    rows->addWidget(widget, widget == m_list ? 1 : 0);
  }
  m_centre->addWidget(content);
  m_centre->addWidget(m_notice);
  (new QVBoxLayout(this))->addLayout(m_centre);
}

TrashPage::~TrashPage() = default;

// A tag that another program deletes or restores changes the store too.
void TrashPage::OnShelf(const std::shared_ptr<const Shelf>& shelf) {
  m_shelf = shelf;
  if (m_isShown && !m_isBusy) {
    Read();
  }
}

void TrashPage::OnShown(const std::u16string& /*tag*/) {
  m_isShown = true;
  if (m_tags.empty()) {
    m_notice->Show(Say(resources::kReadingTrash), {}, {}, nullptr);
    m_centre->setCurrentWidget(m_notice);
  }
  m_list->setFocus();
  Read();
}

void TrashPage::Read() {
  // An answer to an earlier question is passed over: the trash may be read again while it is being
  // read.
  m_work.ListTrash([self = QPointer<TrashPage>(this), reading = ++m_reading](
                       const Outcome& outcome, const std::vector<DeletedTag>& tags) {
    if (self && self->m_reading == reading) {
      self->OnRead(outcome, tags);
    }
  });
}

void TrashPage::OnRead(const Outcome& outcome, const std::vector<DeletedTag>& tags) {
  m_tags = tags;
  if (!outcome.isDone) {
    m_notice->Show(Say(resources::kTrashUnreadable), qt::ToQString(outcome.message),
                   Say(resources::kTryAgain), [this] { Read(); });
    m_centre->setCurrentWidget(m_notice);
  } else if (tags.empty()) {
    m_notice->Show(Say(resources::kTrashIsEmpty), Say(resources::kTrashIsEmptyAdvice), {}, nullptr);
    m_centre->setCurrentWidget(m_notice);
  } else {
    ShowTags();
  }
}

/// The name of today if the person is known, and that of the deletion otherwise.
QString TrashPage::NameOf(const DeletedTag& tag) const {
  if (m_shelf && tag.oid) {
    const auto person = std::ranges::find(m_shelf->people, *tag.oid, &Person::oid);
    if (person != m_shelf->people.end()) {
      return qt::ToQString(person->name);
    }
  }
  return qt::WithNumbersInOrder(qt::ToQString(tag.text));
}

QStringList TrashPage::Describe(const DeletedTag& tag) const {
  QStringList number{NameKind(tag.kind)};
  if (m_shelf && tag.oid) {
    for (const Person& person : m_shelf->people) {
      for (const Number& each : person.numbers) {
        if (person.oid == *tag.oid && each.kind == tag.kind) {
          number.append(ShowNumber(each.text));
        }
      }
    }
  }
  const QString when =
      locale().toString(QDateTime::fromSecsSinceEpoch(tag.deletedAt), QLocale::ShortFormat);
  number.removeAll(QString());
  return {
      NameOf(tag), number.join(QStringLiteral(" · ")),
      tag.obstacle.empty() ? Say(resources::kDeletedOn).arg(when) : Say(resources::kCannotReturn)};
}

// The list is filled again after each change. What was chosen is known by the names of its files.
void TrashPage::ShowTags() {
  const std::vector<std::u16string> chosen = GetChosen();
  const int row = std::max(m_list->currentRow(), 0);
  m_list->clear();
  for (const DeletedTag& tag : m_tags) {
    const QStringList lines = Describe(tag);
    auto* const item = new QListWidgetItem(lines.join(u'\n'), m_list);
    const QString whole =
        lines.join(QStringLiteral(", ")) +
        (tag.obstacle.empty() ? QString() : QStringLiteral(". ") + qt::ToQString(tag.obstacle));
    item->setData(CardDelegate::kNameRole, NameOf(tag));
    item->setData(CardDelegate::kQuietRole, !tag.obstacle.empty());
    item->setData(Qt::AccessibleTextRole, whole);
    item->setToolTip(qt::AsToolTip(whole));
    item->setData(kFileRole, qt::ToQString(tag.file));
    if (!tag.obstacle.empty()) {
      item->setFlags(Qt::ItemIsEnabled);  // It can be looked at, but not chosen.
    }
    item->setSelected(std::ranges::find(chosen, tag.file) != chosen.end());
  }
  m_centre->setCurrentIndex(0);
  m_list->setCurrentRow(std::min(row, m_list->count() - 1), QItemSelectionModel::NoUpdate);
  ShowChosen();
}

std::vector<std::u16string> TrashPage::GetChosen() const {
  std::vector<std::u16string> files;
  for (const QListWidgetItem* const item : m_list->selectedItems()) {
    files.push_back(qt::ToText(item->data(kFileRole).toString()));
  }
  return files;
}

void TrashPage::ShowChosen() {
  const int row = m_list->currentRow();
  const bool isKnown = row >= 0 && row < static_cast<int>(m_tags.size());
  const QString obstacle =
      isKnown ? qt::ToQString(m_tags[static_cast<std::size_t>(row)].obstacle) : QString();
  m_obstacle->setText(obstacle);
  m_obstacle->setVisible(!obstacle.isEmpty());
  m_restore->setEnabled(!m_isBusy && !GetChosen().empty());
}

void TrashPage::Restore() {
  const std::vector<std::u16string> files = GetChosen();
  if (files.empty()) {
    return;
  }
  m_isBusy = true;
  m_restore->setEnabled(false);
  m_work.Restore(files,
                 [self = QPointer<TrashPage>(this), count = files.size()](const Outcome& outcome) {
                   if (self) {
                     self->OnRestored(outcome, count);
                   }
                 });
}

void TrashPage::OnRestored(const Outcome& outcome, std::size_t count) {
  m_isBusy = false;
  std::u16string message = outcome.message;
  if (outcome.isDone && message.empty()) {
    message = qt::ToText(Say(count == 1 ? resources::kOneRestored : resources::kManyRestored));
  }
  m_frame.Report({outcome.isDone, message});
  m_list->setFocus();
  Read();
}

}  // namespace home
