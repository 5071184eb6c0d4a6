#pragma once

#include <QTextEdit>
#include <functional>

#include "backends/qt/frame.h"
#include "platform/ui.h"

namespace qt {

/// One message box. Its text is plain text. The user can select and copy it by mouse and keyboard.
/// It wraps anywhere if it must, and scrolls if it is longer than the screen.
class MessageDialog final : public Frame {
 public:
  using Listener = std::function<void(platform::MessageAnswer)>;

  MessageDialog(const platform::MessageBox& box, const QString& caption, QWidget* parent);

  /// `listener` is called once, when the user has answered.
  void SetListener(Listener listener) { m_listener = std::move(listener); }
  [[nodiscard]] platform::MessageAnswer GetAnswer() const { return m_answer; }

 protected:
  /// Answers Cancel if the box has that button, else OK.
  void OnCloseBox() override;
  void keyPressEvent(QKeyEvent* event) override;
  void showEvent(QShowEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  [[nodiscard]] QWidget* MakeBody(const platform::MessageBox& box);
  [[nodiscard]] QWidget* MakeButtons();
  void FitText();
  void CopyText() const;
  void Answer(platform::MessageAnswer answer);

  const bool m_canCancel;
  const bool m_comesToFront;
  QTextEdit* m_text = nullptr;  ///< A child.
  Listener m_listener;
  platform::MessageAnswer m_answer = platform::MessageAnswer::kCancel;
};

}  // namespace qt
