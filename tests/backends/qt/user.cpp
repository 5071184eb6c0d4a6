#include "tests/backends/qt/user.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <stdexcept>

namespace support {

User::User() : m_answer(Press("ok")) { qApp->installEventFilter(this); }

std::vector<QString> User::GetBoxTexts() const {
  std::vector<QString> texts;
  for (const SeenBox& box : m_boxes) {
    texts.push_back(box.text);
  }
  return texts;
}

void User::Soon(std::function<void()> story) { QTimer::singleShot(0, this, std::move(story)); }

QDialog* User::GetWindow() { return dynamic_cast<QDialog*>(QApplication::activeModalWidget()); }

QWidget* User::Find(int id) {
  auto* widget = GetWindow()->findChild<QWidget*>(QString::number(id));
  if (widget == nullptr) {
    throw std::runtime_error("no control " + std::to_string(id));
  }
  return widget;
}

QPushButton* User::FindButton(int id) { return dynamic_cast<QPushButton*>(Find(id)); }
QComboBox* User::FindCombo(int id) { return dynamic_cast<QComboBox*>(Find(id)); }
QListWidget* User::FindList(int id) { return dynamic_cast<QListWidget*>(Find(id)); }

void User::Click(QWidget* widget) { QTest::mouseClick(widget, Qt::LeftButton); }

void User::Choose(int id, int index) {
  QComboBox* combo = FindCombo(id);
  combo->showPopup();
  combo->view()->setCurrentIndex(combo->model()->index(index, 0));
  QTest::keyClick(combo->view(), Qt::Key_Return);
}

void User::ChooseLine(int id, int row) {
  QListWidget* list = FindList(id);
  const QRect line = list->visualItemRect(list->item(row));
  QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(5, line.center().y()));
}

void User::Type(Qt::Key key, Qt::KeyboardModifiers modifiers) {
  QWidget* focus = GetWindow()->focusWidget();
  QTest::keyClick(focus == nullptr ? GetWindow() : focus, key, modifiers);
}

bool User::TabTo(const QWidget* widget) {
  constexpr int kMany = 40;
  for (int i = 0; i < kMany && GetWindow()->focusWidget() != widget; ++i) {
    Type(Qt::Key_Tab);
  }
  return GetWindow()->focusWidget() == widget;
}

bool User::eventFilter(QObject* watched, QEvent* event) {
  auto* box = dynamic_cast<QDialog*>(watched);
  if (event->type() == QEvent::Show && box != nullptr &&
      box->objectName() == QStringLiteral("message_box")) {
    SeenBox seen{.caption = box->windowTitle(),
                 .text = box->findChild<QTextEdit*>(QStringLiteral("text"))->toPlainText(),
                 .buttons = {},
                 .isModal = box->isModal(),
                 .staysOnTop = box->windowFlags().testFlag(Qt::WindowStaysOnTopHint)};
    for (const auto* button : box->findChildren<QPushButton*>()) {
      seen.buttons.push_back(button->objectName());
    }
    m_boxes.push_back(seen);
    QTimer::singleShot(0, box, [this, box] { m_answer(*box); });
  }
  return false;
}

User::Answer Press(const char* button) {
  return [name = QString::fromLatin1(button)](QDialog& box) {
    User::Click(box.findChild<QPushButton*>(name));
  };
}

void SaveScreenshot(QWidget& window, const QString& file) {
  const QPixmap picture = window.grab();
  if (picture.devicePixelRatio() != window.devicePixelRatio() || !picture.save(file)) {
    throw std::runtime_error("cannot write " + file.toStdString());
  }
}

}  // namespace support
