#include "backends/qt/window_stack.h"

#include <QWindow>
#include <utility>

namespace qt {
namespace {

/// The native window, made where there is none yet.
[[nodiscard]] QWindow* NativeWindow(QWidget& window) {
  static_cast<void>(window.winId());
  return window.windowHandle();
}

void CentreOver(QWidget& window, const QWidget& below) {
  const QRect area = below.frameGeometry();
  window.move(area.center() - QPoint(window.width() / 2, window.height() / 2));
}

}  // namespace

void WindowStack::RunModal(Frame& frame) {
  if (frame.IsOver()) {
    return;
  }
  frame.setWindowModality(Qt::ApplicationModal);
  PutBoxesAbove(&frame);
  m_modal.push_back(&frame);
  frame.Run();
  m_modal.pop_back();
  PutBoxesAbove(GetTop());
}

void WindowStack::ShowBeside(std::unique_ptr<MessageDialog> box) {
  QWidget* top = GetTop();
  NativeWindow(*box)->setTransientParent(top == nullptr ? nullptr : NativeWindow(*top));
  if (top != nullptr) {
    box->adjustSize();
    CentreOver(*box, *top);
  }
  MessageDialog* shown = box.get();
  m_boxes.push_back(std::move(box));
  shown->show();
  shown->raise();
  shown->activateWindow();
}

void WindowStack::Tidy() {
  std::erase_if(m_boxes, [](const auto& box) { return box->IsOver(); });
}

void WindowStack::PutBoxesAbove(QWidget* window) {
  for (const auto& box : m_boxes) {
    if (!box->IsOver()) {
      NativeWindow(*box)->setTransientParent(window == nullptr ? nullptr : NativeWindow(*window));
    }
  }
}

}  // namespace qt
