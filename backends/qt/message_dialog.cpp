#include "backends/qt/message_dialog.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QTextDocument>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "backends/qt/look.h"
#include "backends/qt/strings.h"

// A message box of the pages. It is no QMessageBox, which would give the text a meaning (links,
// marks) and grow beyond the screen.
namespace qt {
namespace {

using platform::MessageAnswer;
using platform::MessageStyle;

// In pixels of the device.
constexpr double kBoxMargin = 12;
constexpr double kGap = 10;
constexpr double kIcon = 24;
constexpr double kLeastText = 90;
constexpr double kWidestText = 260;
constexpr double kButtonWidth = 56;
constexpr double kButtonHeight = 20;
/// A share of the height of the screen.
constexpr double kTallestText = 0.6;

}  // namespace

MessageDialog::MessageDialog(const platform::MessageBox& box, const QString& caption,
                             QWidget* parent)
    : Frame(parent),
      m_canCancel(Has(box.style, MessageStyle::kOkCancel)),
      m_comesToFront(Has(box.style, MessageStyle::kTopmost) ||
                     Has(box.style, MessageStyle::kSetForeground)) {
  setObjectName(QStringLiteral("message_box"));
  setWindowTitle(AsWindowTitle(caption));
  setFont(DialogFont());
  setPalette(DialogPalette());
  setWindowFlag(Qt::WindowStaysOnTopHint, Has(box.style, MessageStyle::kTopmost));
  setWindowFlag(Qt::WindowMinMaxButtonsHint, false);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(ToDesktop(kBoxMargin), ToDesktop(kBoxMargin), ToDesktop(kBoxMargin),
                             ToDesktop(kBoxMargin));
  layout->setSpacing(ToDesktop(kGap));
  layout->setSizeConstraint(QLayout::SetFixedSize);
  layout->addWidget(MakeBody(box));
  layout->addWidget(MakeButtons());
  setAccessibleName(caption.isEmpty() ? ToQString(box.text) : caption);
  setAccessibleDescription(ToQString(box.text));
  m_text->setAccessibleName(accessibleName());
}

// The text is a QTextEdit and no QLabel: a label neither wraps within words nor scrolls, and it
// would take a text that looks like HTML for HTML.

QWidget* MessageDialog::MakeBody(const platform::MessageBox& box) {
  auto* body = new QWidget(this);
  auto* layout = new QHBoxLayout(body);
  layout->setContentsMargins({});
  layout->setSpacing(ToDesktop(kGap));
  if (Has(box.style, MessageStyle::kIconExclamation)) {
    auto* icon = new QLabel(body);
    const int size = ToDesktop(kIcon);
    icon->setPixmap(style()
                        ->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this)
                        .pixmap(QSize(size, size), devicePixelRatioF()));
    layout->addWidget(icon, 0, Qt::AlignTop);
  }
  m_text = new QTextEdit(body);
  m_text->setObjectName(QStringLiteral("text"));
  m_text->setFrameShape(QFrame::NoFrame);
  m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  // Tab goes on to the buttons and writes no tab into a text that nobody can edit.
  m_text->setTabChangesFocus(true);
  m_text->installEventFilter(this);
  m_text->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  // The text looks like a label: no frame, no background and no margin of its own.
  m_text->viewport()->setAutoFillBackground(false);
  QPalette palette = m_text->palette();
  palette.setColor(QPalette::Text, palette.color(QPalette::WindowText));
  m_text->setPalette(palette);
  m_text->document()->setDocumentMargin(0);
  m_text->setPlainText(ToQString(box.text));
  FitText();
  layout->addWidget(m_text, 1, Qt::AlignVCenter);
  return body;
}

// Makes the box as narrow as its text allows, within limits, and as high as the text is then.
void MessageDialog::FitText() {
  // The text is measured in a document of its own, because the editor fits its document to its
  // current width.
  QTextDocument document(m_text->toPlainText());
  document.setDefaultFont(font());
  document.setDocumentMargin(0);
  QTextOption wrapping;
  wrapping.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  document.setDefaultTextOption(wrapping);
  document.setTextWidth(ToDesktop(kWidestText));
  const double ideal = std::clamp<double>(std::ceil(document.idealWidth()) + 1,
                                          ToDesktop(kLeastText), ToDesktop(kWidestText));
  document.setTextWidth(ideal);
  const double height = std::ceil(document.size().height());
  const double tallest = kTallestText * screen()->availableGeometry().height();
  const bool fits = height <= tallest;
  m_text->setVerticalScrollBarPolicy(fits ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAlwaysOn);
  m_text->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  const int bar = fits ? 0 : style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  m_text->setFixedSize(static_cast<int>(ideal) + bar,
                       static_cast<int>(std::min(height, tallest)) + 1);
}

QWidget* MessageDialog::MakeButtons() {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
  const auto prepare = [](QPushButton* button, const char* name) {
    button->setObjectName(QLatin1StringView(name));
    button->setMinimumSize(ToDesktop(kButtonWidth), ToDesktop(kButtonHeight));
  };
  QPushButton* ok = buttons->button(QDialogButtonBox::Ok);
  prepare(ok, "ok");
  ok->setDefault(true);
  ok->setFocus();
  connect(ok, &QPushButton::clicked, this, [this] { Answer(MessageAnswer::kOk); });
  if (m_canCancel) {
    QPushButton* cancel = buttons->addButton(QDialogButtonBox::Cancel);
    prepare(cancel, "cancel");
    connect(cancel, &QPushButton::clicked, this, [this] { Answer(MessageAnswer::kCancel); });
  }
  return buttons;
}

void MessageDialog::OnCloseBox() {
  // A box that offers no choice is answered by closing it, as on the classic desktop.
  Answer(m_canCancel ? MessageAnswer::kCancel : MessageAnswer::kOk);
}

void MessageDialog::Answer(MessageAnswer answer) {
  // A second click can be in the queue already when the first is answered.
  if (IsOver()) {
    return;
  }
  m_answer = answer;
  End();
  if (m_listener) {
    m_listener(answer);
  }
}

void MessageDialog::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) {
    CopyText();
    return;
  }
  Frame::keyPressEvent(event);
}

bool MessageDialog::eventFilter(QObject* watched, QEvent* event) {
  // A text that was clicked keeps the key for itself and copies nothing if nothing is selected.
  if (watched == m_text && event->type() == QEvent::KeyPress &&
      !m_text->textCursor().hasSelection() &&
      static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) {
    CopyText();
    return true;
  }
  return Frame::eventFilter(watched, event);
}

// Copies the whole text. The user means that if nothing is selected.
void MessageDialog::CopyText() const { QApplication::clipboard()->setText(m_text->toPlainText()); }

void MessageDialog::showEvent(QShowEvent* event) {
  Frame::showEvent(event);
  if (m_comesToFront) {
    raise();
    activateWindow();
  }
  // Screen readers read an alert aloud at once.
  QAccessibleEvent alert(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

}  // namespace qt
