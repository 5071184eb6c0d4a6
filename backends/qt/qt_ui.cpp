#include "backends/qt/qt_ui.h"

#include <QApplication>
#include <future>
#include <utility>

#include "backends/qt/dialog_frame.h"
#include "backends/qt/look.h"
#include "backends/qt/qt_sheet.h"
#include "backends/qt/strings.h"

namespace qt {

using platform::Cursor;
using platform::MessageAnswer;
using platform::MessageBox;
using platform::MessageCaption;

namespace {
/// What a dialog returns that the user closed.
constexpr int kClosedByUser = 2;
}  // namespace

QtUi::QtUi(UiThread& thread, std::u16string_view applicationName, PictureSource pictures)
    : m_thread(thread),
      m_applicationName(ToQString(applicationName)),
      m_pictures(std::move(pictures)) {
  ApplyLook();
}

QtUi::~QtUi() {
  m_cursor = Cursor::kNormal;
  ShowCursor();
}

MessageAnswer QtUi::ShowMessage(const MessageBox& box) {
  if (!m_thread.IsCurrent()) {
    return AskOnUiThread(box);
  }
  MessageDialog dialog(box, CaptionOf(box), m_windows->GetTop());
  RunModal(dialog);
  return dialog.GetAnswer();
}

MessageAnswer QtUi::AskOnUiThread(const MessageBox& box) {
  // Shared, since this thread may be gone before the promise has finished telling it.
  const auto promise = std::make_shared<std::promise<MessageAnswer>>();
  std::future<MessageAnswer> answer = promise->get_future();
  m_thread.Post([this, promise, box] {
    auto dialog = std::make_unique<MessageDialog>(box, CaptionOf(box), nullptr);
    dialog->SetListener(
        [&thread = m_thread, windows = std::weak_ptr(m_windows), promise](MessageAnswer given) {
          // Not at once: the box is still at work.
          thread.Post([windows] {
            if (const auto open = windows.lock()) {
              open->Tidy();
            }
          });
          promise->set_value(given);
        });
    m_windows->ShowBeside(std::move(dialog));
  });
  try {
    return answer.get();
  } catch (const std::future_error&) {
    return MessageAnswer::kCancel;  // The user interface is gone, and the question with it.
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
  // Over a window that expects an answer the cursor never says "wait".
  const Cursor outside = std::exchange(m_cursor, Cursor::kNormal);
  ShowCursor();
  m_windows->RunModal(frame);
  m_cursor = outside;
  ShowCursor();
}

int QtUi::RunDialog(const resources::DialogTemplate& dialog, platform::DialogHandler& handler) {
  DialogFrame frame(dialog, handler, m_thread, m_pictures, m_windows->GetTop());
  frame.GetDialog().Init();
  RunModal(frame);
  return frame.GetDialog().GetResult().value_or(kClosedByUser);
}

bool QtUi::RunSheet(std::u16string_view caption, std::span<const platform::SheetPage> pages,
                    platform::SheetHandler& handler) {
  QtSheet sheet(caption, pages, handler, m_thread, m_pictures, m_windows->GetTop());
  sheet.Init();
  RunModal(sheet);
  return sheet.WasAccepted();
}

}  // namespace qt
