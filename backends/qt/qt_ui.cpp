#include "backends/qt/qt_ui.h"

#include <QApplication>
#include <QListWidget>
#include <QScreen>
#include <QWindow>
#include <algorithm>
#include <future>
#include <utility>

#include "backends/qt/application.h"
#include "backends/qt/dialog_windows.h"
#include "backends/qt/look.h"
#include "backends/qt/strings.h"
#include "framework/dialog.h"

// Which window lies above which. A page's boxes and dialogs are modal and nest. A worker's box
// belongs to no window: it floats above the topmost one and waits there for its answer.
namespace qt {
namespace {

/// Returns the native window and makes it if there is none yet.
[[nodiscard]] QWindow* NativeWindow(QWidget& window) {
  // Asking for the identifier makes the window. It is the documented way.
  static_cast<void>(window.winId());
  return window.windowHandle();
}

void CentreOver(QWidget& window, const QWidget& below) {
  const QRect area = below.frameGeometry();
  window.move(area.center() - QPoint(window.width() / 2, window.height() / 2));
}

/// Returns the place on the screen of the line that is selected in a list of `window`. Returns
/// nothing if there is none in sight.
std::optional<QRect> FindSelectedLine(const QWidget& window) {
  for (const QListWidget* list : window.findChildren<QListWidget*>()) {
    const auto selected = list->selectedItems();
    if (!list->isVisible() || selected.isEmpty()) {
      continue;
    }
    const QRect line = list->visualItemRect(selected.front()).intersected(list->viewport()->rect());
    if (!line.isEmpty()) {
      return QRect(list->viewport()->mapToGlobal(line.topLeft()), line.size());
    }
  }
  return std::nullopt;
}

/// Puts a question below the line that it is about. Puts it above the line if there is no room
/// below. The text of the question does not name the line, so the user must see the line. Leaves
/// the box at its usual place if the screen has room neither below nor above.
void PutNextTo(QWidget& box, const QRect& line, const QWidget& asking) {
  constexpr int kGapToLine = 6;
  box.adjustSize();
  // The title bar of the box is not there yet. That of the window below is as high.
  const int title = asking.geometry().top() - asking.frameGeometry().top();
  const int height = box.height() + title;
  const QRect screen = asking.screen()->availableGeometry();
  const int below = line.bottom() + kGapToLine;
  const int above = line.top() - kGapToLine - height;
  const bool fitsBelow = below + height <= screen.bottom();
  if (!fitsBelow && above < screen.top()) {
    return;
  }
  const int left = asking.frameGeometry().center().x() - box.width() / 2;
  const int rightmost = std::max(screen.left(), screen.right() - box.width());
  box.move(std::clamp(left, screen.left(), rightmost), fitsBelow ? below : above);
}

}  // namespace

void WindowStack::RunModal(Frame& frame) {
  if (frame.IsOver()) {
    return;
  }
  frame.setWindowModality(Qt::ApplicationModal);
  // A worker's box that is open moves above the new window, and back when that one has gone.
  // Otherwise a box that must be answered would lie under a window that must be answered first.
  PutBoxesAbove(&frame);
  m_modal.push_back(&frame);
  frame.Run();
  m_modal.pop_back();
  PutBoxesAbove(GetTop());
}

void WindowStack::ShowBeside(std::unique_ptr<MessageDialog> box, Awaited answer) {
  QWidget* top = GetTop();
  NativeWindow(*box)->setTransientParent(top == nullptr ? nullptr : NativeWindow(*top));
  if (top != nullptr) {
    box->adjustSize();
    CentreOver(*box, *top);
  }
  MessageDialog* shown = box.get();
  m_boxes.push_back({std::move(box), std::move(answer)});
  shown->show();
  shown->raise();
  shown->activateWindow();
}

void WindowStack::Tidy() {
  std::erase_if(m_boxes, [](const Box& box) { return box.window->IsOver(); });
}

std::optional<WindowStack::Awaited> WindowStack::GetAwaited() const {
  const auto open =
      std::ranges::find_if(m_boxes, [](const Box& box) { return !box.window->IsOver(); });
  return open == m_boxes.end() ? std::nullopt : std::optional(open->answer);
}

// The transient parent of a native window is the window that it stays above.
void WindowStack::PutBoxesAbove(QWidget* window) {
  for (const Box& box : m_boxes) {
    if (!box.window->IsOver()) {
      NativeWindow(*box.window)
          ->setTransientParent(window == nullptr ? nullptr : NativeWindow(*window));
    }
  }
}

using platform::Cursor;
using platform::MessageAnswer;
using platform::MessageBox;
using platform::MessageCaption;

QtUi::QtUi(UiThread& thread, std::u16string_view applicationName, PictureSource pictures)
    : m_thread(thread),
      m_applicationName(ToQString(applicationName)),
      m_pictures(std::move(pictures)) {}

QtUi::~QtUi() {
  m_cursor = Cursor::kNormal;
  ShowCursor();
}

void QtUi::Begin() {
  EnsureApplication();
  ApplyLook();
}

MessageAnswer QtUi::ShowMessage(const MessageBox& box) {
  if (!m_thread.IsCurrent()) {
    return AskOnUiThread(box);
  }
  Begin();
  AwaitWorkersBoxes();
  const QWidget* const asking = m_windows->GetTop();
  MessageDialog dialog(box, CaptionOf(box), m_windows->GetTop());
  const bool isQuestion = Has(box.style, platform::MessageStyle::kOkCancel);
  const auto line = isQuestion && asking != nullptr ? FindSelectedLine(*asking) : std::nullopt;
  if (line) {
    PutNextTo(dialog, *line, *asking);
  }
  RunModal(dialog);
  return dialog.GetAnswer();
}

// The box of a worker thread. The worker blocks on the answer's future. The user-interface thread
// makes the box, shows it next to its windows, and goes on; the box's listener delivers the answer.

MessageAnswer QtUi::AskOnUiThread(const MessageBox& box) {
  // Shared, because this thread may be gone before set_value has returned.
  const auto promise = std::make_shared<std::promise<MessageAnswer>>();
  const WindowStack::Awaited answer = promise->get_future().share();
  m_thread.Post([this, promise, answer, box] {
    auto dialog = std::make_unique<MessageDialog>(box, CaptionOf(box), nullptr);
    dialog->SetListener(
        [&thread = m_thread, windows = std::weak_ptr(m_windows), promise](MessageAnswer given) {
          // Not now: the box is still running.
          thread.Post([windows] {
            if (const auto open = windows.lock()) {
              open->Tidy();
            }
          });
          promise->set_value(given);
        });
    m_windows->ShowBeside(std::move(dialog), answer);
  });
  try {
    return answer.get();
  } catch (const std::future_error&) {
    return MessageAnswer::kCancel;  // The user interface is gone, and the box with it.
  }
}

// A box of the page would open under that of a worker, and would have the focus: the user would
// answer what nobody has seen. So the page's box comes after the worker's, and until then the page
// is as dead as under its own box.
void QtUi::AwaitWorkersBoxes() {
  while (const auto answer = m_windows->GetAwaited()) {
    m_thread.Await([&answer] { answer->wait(); });
  }
}

QString QtUi::CaptionOf(const MessageBox& box) const {
  switch (box.captionKind) {
    case MessageCaption::kText:
      return ToQString(box.caption);
    case MessageCaption::kApplication:
      return m_applicationName;
    case MessageCaption::kNone:
      break;
  }
  return {};
}

void QtUi::Beep(platform::Sound /*sound*/) {
  m_thread.Post([] { QApplication::beep(); });
}

void QtUi::SetCursor(Cursor cursor) {
  m_cursor = cursor;
  ShowCursor();
}

// The library keeps a stack of cursors. This shows at most one of them, whatever is asked for.
void QtUi::ShowCursor() {
  const bool isWaitWanted = m_cursor == Cursor::kWait;
  if (isWaitWanted == m_isWaitShown) {
    return;
  }
  m_isWaitShown = isWaitWanted;
  if (isWaitWanted) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QGuiApplication::restoreOverrideCursor();
  }
}

void QtUi::RunModal(Frame& frame) {
  // Over a window that expects an answer, the cursor never says "wait".
  const Cursor outside = std::exchange(m_cursor, Cursor::kNormal);
  ShowCursor();
  m_windows->RunModal(frame);
  m_cursor = outside;
  ShowCursor();
}

int QtUi::RunDialog(const resources::DialogTemplate& dialog, platform::DialogHandler& handler) {
  Begin();
  // The handler hears of its window and sets it up before anything is shown. If it ends the dialog
  // there, RunModal returns at once.
  DialogFrame frame(dialog, handler, m_thread, m_pictures, m_windows->GetTop());
  frame.GetDialog().Init();
  RunModal(frame);
  // A dialog without a result was ended by the end of the program.
  return frame.GetDialog().GetResult().value_or(framework::kIdCancel);
}

bool QtUi::RunSheet(std::u16string_view caption, std::span<const platform::SheetPage> pages,
                    platform::SheetHandler& handler) {
  Begin();
  QtSheet sheet(caption, pages, handler, m_thread, m_pictures, m_windows->GetTop());
  if (m_offersCancel) {
    sheet.AddCancelButton();
  }
  sheet.Init();
  if (m_remark.second) {
    // After Init, since the remark is about a box that the page fills.
    sheet.AddRemark(m_remark.first, m_remark.second);
  }
  RunModal(sheet);
  return sheet.WasAccepted();
}

}  // namespace qt
