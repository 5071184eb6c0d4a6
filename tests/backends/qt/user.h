#pragma once

#include <QComboBox>
#include <QDialog>
#include <QListWidget>
#include <QPushButton>
#include <QString>
#include <functional>
#include <string_view>
#include <vector>

namespace support {

/// One message box as the user saw it.
struct SeenBox {
  QString caption;
  QString text;
  std::vector<QString> buttons;
  bool isModal = false;
  bool staysOnTop = false;
};

/// A user at a screen that is not there: presses, chooses, types, and answers message boxes as they
/// appear. Lives on the thread of the application.
class User final : public QObject {
 public:
  using Answer = std::function<void(QDialog&)>;

  User();

  /// What is done with each message box; at first its OK button is pressed.
  void SetAnswer(Answer answer) { m_answer = std::move(answer); }
  [[nodiscard]] const std::vector<SeenBox>& GetBoxes() const { return m_boxes; }
  [[nodiscard]] std::vector<QString> GetBoxTexts() const;

  /// Has `story` run once the application handles events.
  void Soon(std::function<void()> story);

  /// The window that has the user to itself.
  [[nodiscard]] static QDialog* GetWindow();
  [[nodiscard]] static QWidget* Find(int id);
  [[nodiscard]] static QPushButton* FindButton(int id);
  [[nodiscard]] static QComboBox* FindCombo(int id);
  [[nodiscard]] static QListWidget* FindList(int id);

  static void Click(QWidget* widget);
  static void Click(int id) { Click(Find(id)); }
  /// Opens the box and takes the item by the keyboard.
  static void Choose(int id, int index);
  static void ChooseLine(int id, int row);
  /// Types a key to what has the focus.
  static void Type(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
  /// Presses Tab until the control has the focus. Returns false if it never gets it.
  [[nodiscard]] static bool TabTo(const QWidget* widget);
  static void PressOk() { Click(GetWindow()->findChild<QPushButton*>(QStringLiteral("ok"))); }

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  Answer m_answer;
  std::vector<SeenBox> m_boxes;
};

/// Presses a button of a message box.
[[nodiscard]] User::Answer Press(const char* button);

/// The sheet's or dialog's picture.
void SaveScreenshot(QWidget& window, const QString& file);

}  // namespace support
