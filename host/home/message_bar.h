#pragma once

#include <QFrame>
#include <QString>
#include <functional>
#include <utility>

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

  /// Sets what is called after the bar has appeared or gone, since it takes room from the rest.
  void OnToggled(std::function<void()> toggled) { m_toggled = std::move(toggled); }

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  LiveLabel* m_text;
  QPushButton* m_button;
  std::function<void()> m_act;
  std::function<void()> m_toggled;
};

}  // namespace home
