#pragma once

#include <QFrame>
#include <QString>
#include <functional>

class QLabel;
class QPushButton;

namespace panel {

/// A bar that tells what is missing on this machine, with a way on. Hidden until it has something
/// to tell.
class NoticeBar : public QFrame {
 public:
  explicit NoticeBar(QWidget* parent);

  /// Without `action` there is no button but the one that puts the bar away.
  void Tell(const QString& text, const QString& button, const std::function<void()>& action);

 private:
  QLabel* m_text;
  QPushButton* m_button;
};

}  // namespace panel
