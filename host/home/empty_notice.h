#pragma once

#include <QString>
#include <QWidget>
#include <functional>

class QLabel;
class QPushButton;

namespace home {

/// What stands in the place of a list that has nothing to show: why, and what to do.
class EmptyNotice : public QWidget {
 public:
  explicit EmptyNotice(QWidget* parent);

  /// `advice` can be empty. There is no button if `act` is null.
  void Show(const QString& title, const QString& advice, const QString& button,
            std::function<void()> act);
  /// Gives the focus to the button if there is one, so that Enter does what the notice offers.
  void FocusButton();

 private:
  QLabel* m_title;
  QLabel* m_advice;
  QPushButton* m_button;
  std::function<void()> m_act;
};

}  // namespace home
