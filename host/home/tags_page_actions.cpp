// What the page of the tags shows of the store, and what it does to the tags that are selected.

#include "host/home/tags_page.h"

#include <QAction>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QStackedLayout>
#include <algorithm>
#include <utility>

#include "host/home/empty_notice.h"
#include "host/home/numbers.h"
#include "host/home/say.h"
#include "host/home/symbols.h"
#include "resources/tags_window_strings.h"

namespace home {

void TagsPage::Show(std::shared_ptr<const Shelf> shelf) {
  std::vector<std::u16string> selected = GetSelected();
  const int currentRow = m_list->currentIndex().row();
  const bool wasUnread = m_shelf == nullptr;
  std::u16string current = GetCurrent() != nullptr ? GetCurrent()->name : std::u16string();
  const auto has = [](const Shelf& some, const std::u16string& name) {
    return std::ranges::find(some.tags, name, &Tag::name) != some.tags.end();
  };
  // A tag that has come since the last shelf was just taught or restored. It becomes the current
  // one.
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
    // Keys mean the list from the beginning. A first row that has the focus looks chosen, so it is.
    m_list->selectionModel()->setCurrentIndex(
        m_order.index(0, kName), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    if (isVisible()) {
      FocusList();
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
    show(Say(resources::kNoMatch).arg(InSentence(m_search->text())), {}, resources::kClearSearch,
         [this] { ClearSearch(); });
  } else {
    m_centre->setCurrentWidget(m_list);
  }
  // Without tags there is nothing to search.
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
      QStringList facts{InSentence(tag->contact)};
      for (const Column column : {kNumber, kKind, kTaught, kLength}) {
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
  m_detailsArea->setVisible(!m_list->AreCards() || !(lines.isEmpty() || m_bar.isVisible()));
  FitDetails();
  const bool isPlaying = tag != nullptr && tag->name == m_model.GetPlaying();
  m_play->setText(Say(isPlaying ? resources::kStop : resources::kPlay));
  m_play->setIcon(IconOf(isPlaying ? Symbol::kStop : Symbol::kPlay));
  m_play->setEnabled(tag != nullptr);
  m_teachAgain->setEnabled(tag != nullptr && selected.size() <= 1 && !tag->isStale);
  m_delete->setEnabled(!selected.empty());
}

/// Large letters leave most of a small window to the list. What has no room is scrolled.
void TagsPage::FitDetails() {
  constexpr int kShareOfList = 5;
  const int most = std::max(height() / kShareOfList, 2 * fontMetrics().lineSpacing());
  m_detailsArea->SetMost(m_list->AreCards() ? most : 0);
}

void TagsPage::ShowMenu(const QPoint& at) {
  QMenu menu(this);
  menu.addActions({m_play, m_teachAgain, m_delete});
  menu.addSeparator();
  menu.addActions({m_selectAll, m_selectSeveral});
  SuitFingers(menu, *window());
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
  // The keyboard may be on another tag than the one that is selected.
  const auto first = std::ranges::find(m_shelf->tags, tags.front(), &Tag::name);
  const QString name = first != m_shelf->tags.end() ? qt::ToQString(first->contact) : QString();
  m_bar.Clear();
  m_work.Delete(tags, [this, name, count = static_cast<qulonglong>(tags.size())](
                          const Outcome& outcome, const std::vector<std::u16string>& trashed) {
    m_trashed = trashed;
    m_undo->setEnabled(!trashed.empty());
    const QString done = count == 1 ? Say(resources::kOneDeleted).arg(InSentence(name))
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
      // Another address book may have been chosen meanwhile, which does not have the person.
      const QString done = Say(count == 1 ? resources::kOneRestored : resources::kManyRestored);
      m_bar.Show(m_shelf->peopleProblem.empty()
                     ? done
                     : done + u'\n' + qt::ToQString(m_shelf->peopleProblem));
    }
    m_list->setFocus();
  });
}

}  // namespace home
