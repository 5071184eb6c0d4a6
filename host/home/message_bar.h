#pragma once

#include <QFrame>
#include <QString>
#include <functional>

class QPushButton;

namespace home {

class LiveLabel;

/// The bar at the bottom of the window: what has just happened, and the way back if there is one.
/// It stays until something else happens or the user closes it. Screen readers say it.
class MessageBar : public QFrame {
 public:
  explicit MessageBar(QWidget* parent);

  /// Shows a text. `act` is called when the button is pressed, and the bar is hidden before. There
  /// is no button if `act` is null.
  void Show(const QString& text, const QString& button = {}, std::function<void()> act = nullptr);
  void Clear();

 private:
  LiveLabel* m_text;
  QPushButton* m_button;
  std::function<void()> m_act;
};

}  // namespace home
