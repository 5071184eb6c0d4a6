#pragma once

#include <QWidget>
#include <functional>
#include <memory>

#include "host/home/people_model.h"

class QLineEdit;
class QListView;
class QModelIndex;
class QStackedLayout;

namespace home {

class EmptyNotice;

/// The people whose numbers can be taught, with a search. Arrow keys and Enter work while the
/// search has the focus, so a name is found and chosen without another key.
class PeopleList : public QWidget {
 public:
  using Choose = std::function<void(const Person& person, const Number& number)>;

  /// `setUp` leads to where the address book is chosen. It can be null.
  PeopleList(Choose choose, std::function<void()> setUp, QWidget* parent);

  void Show(const std::shared_ptr<const Shelf>& shelf);
  /// Empties the search and gives it the focus.
  void Begin();
  void FocusSearch();
  /// Returns false if there was nothing to clear.
  bool ClearSearch();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void OnTyped(const QString& typed);
  void OnActivated(const QModelIndex& index);
  void ShowListOrNotice();

  PeopleModel m_model;
  Choose m_choose;
  std::function<void()> m_setUp;
  QString m_problem;  ///< Why nobody is there. Else empty.
  bool m_isRead = false;
  // Owned by the widgets.
  QLineEdit* m_search;
  QListView* m_list;
  EmptyNotice* m_notice;
  QStackedLayout* m_centre;
};

}  // namespace home
