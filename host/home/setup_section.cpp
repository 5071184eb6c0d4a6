#include "host/home/setup_section.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QStyleOptionComboBox>
#include <QStylePainter>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <utility>

#include "host/home/button_row.h"
#include "host/home/say.h"

namespace home {
namespace {

/// A heading stays larger than the texts below it, whatever the font of the desktop becomes.
class Heading final : public QLabel {
 public:
  Heading(const QString& text, QWidget* parent) : QLabel(text, parent) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    SetAccessibleRole(*this, QAccessible::Heading);
    setAccessibleName(text);
    SetSize();
  }

 protected:
  void changeEvent(QEvent* event) override {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::ApplicationFontChange) {
      SetSize();
    }
  }

 private:
  void SetSize() {
    constexpr double kGrowth = 1.15;
    QFont large = parentWidget()->font();
    large.setPointSizeF(large.pointSizeF() * kGrowth);
    large.setBold(true);
    setFont(large);
  }
};

/// Returns the text with line breaks, so that it is as narrow as its words allow.
QString Break(const QString& text, const QFontMetrics& metrics, int width) {
  QString broken;
  QString line;
  for (const QString& word : text.split(u' ')) {
    const QString longer = line.isEmpty() ? word : line + u' ' + word;
    if (!line.isEmpty() && metrics.size(Qt::TextShowMnemonic, longer).width() > width) {
      broken += line + u'\n';
      line = word;
    } else {
      line = longer;
    }
  }
  return broken + line;
}

/// Opens a closed list at a key that would choose another item of it at once, so that the user sees
/// what there is first and chooses with Enter. Returns whether the key was such a one.
bool OpenListAt(QComboBox& list, const QKeyEvent& key) {
  constexpr std::array kMoves{Qt::Key_Up,       Qt::Key_Down, Qt::Key_PageUp,
                              Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End};
  constexpr auto kCommands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
  const bool isMove = std::ranges::find(kMoves, key.key()) != kMoves.end();
  const bool isLetter = !key.text().isEmpty() && key.text().front().isPrint() &&
                        key.key() != Qt::Key_Space && (key.modifiers() & kCommands) == 0;
  if (!isMove && !isLetter) {
    return false;
  }
  list.showPopup();
  if (isLetter) {
    list.view()->keyboardSearch({});  // The letters of an earlier time do not count.
    list.view()->keyboardSearch(key.text());
  }
  return true;
}

}  // namespace

// The library's own box cuts a text in the middle of a letter, at its beginning in a window that is
// read from the right.
void ChoiceBox::paintEvent(QPaintEvent* /*event*/) {
  QStylePainter painter(this);
  QStyleOptionComboBox option;
  initStyleOption(&option);
  painter.drawComplexControl(QStyle::CC_ComboBox, option);
  const QRect field =
      style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
  constexpr int kEdges = 4;  // What the style leaves free around the text, in pixels.
  option.currentText =
      option.fontMetrics.elidedText(option.currentText, Qt::ElideRight, field.width() - kEdges);
  painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

SetupSection::SetupSection(std::u16string_view heading, QWidget* parent)
    : QWidget(parent), m_body(new QVBoxLayout(this)) {
  constexpr int kRoom = 8;  // Above and below, in pixels of the desktop.
  m_body->setContentsMargins(0, kRoom, 0, kRoom);
  m_body->addWidget(new Heading(Say(heading), this));
  SetAccessibleRole(*this, QAccessible::Grouping);
  setAccessibleName(Say(heading));
}

QLabel* SetupSection::AddText(const QString& text) {
  auto* const label = new QLabel(this);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  m_body->addWidget(label);
  ShowText(*label, text);
  return label;
}

LiveLabel* SetupSection::AddNews() {
  auto* const label = new LiveLabel(this);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  label->hide();
  m_body->addWidget(label);
  return label;
}

void SetupSection::AddControl(QWidget* control) {
  // The wheel scrolls the page. A list that took it would be changed by whoever only wants to
  // scroll by.
  if (control->focusPolicy() == Qt::WheelFocus) {
    control->setFocusPolicy(Qt::StrongFocus);
  }
  control->installEventFilter(this);
  m_body->addWidget(control);
}

bool SetupSection::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Wheel) {
    event->ignore();  // So the page gets it.
    return true;
  }
  if (auto* const list = qobject_cast<QComboBox*>(watched);
      list != nullptr && event->type() == QEvent::KeyPress &&
      OpenListAt(*list, *static_cast<QKeyEvent*>(event))) {
    return true;
  }
  return QWidget::eventFilter(watched, event);
}

QPushButton* SetupSection::AddButton(std::u16string_view text, const char* name,
                                     std::function<void()> act) {
  if (m_buttons == nullptr) {
    m_buttons = new ButtonRow(this);
    m_body->addWidget(m_buttons, 0, Qt::AlignLeading);
  }
  QPushButton* const button = m_buttons->Add(Say(text));
  button->setObjectName(QLatin1String(name));
  button->setAccessibleName(Say(text).remove(u'&'));
  m_texts.emplace_back(button, button->text());
  connect(button, &QPushButton::clicked, this, std::move(act));
  return button;
}

void SetupSection::ChangeText(QPushButton& button, const QString& text) {
  for (auto& [each, whole] : m_texts) {
    if (each == &button) {
      whole = text;
    }
  }
  button.setText(text);
  button.setAccessibleName(QString(text).remove(u'&'));
}

void SetupSection::ShowButtons(std::initializer_list<QPushButton*> buttons) {
  m_buttons->ShowOnly(buttons);
}

void SetupSection::FitButtons(int width) {
  constexpr int kEdges = 4;  // In widths of a letter: the room that a button has around its text.
  for (const auto& [button, text] : m_texts) {
    button->setText(Break(text, button->fontMetrics(),
                          width - kEdges * button->fontMetrics().averageCharWidth()));
  }
}

void SetupSection::SetBusy(std::initializer_list<QWidget*> controls, bool isBusy) {
  for (QWidget* const control : controls) {
    // A control that is disabled loses the focus. It gets it back, so that a user of the keyboard
    // need not look for the place.
    if (isBusy && window()->focusWidget() == control) {
      m_focused = control;
    }
    control->setEnabled(!isBusy);
  }
  if (!isBusy && m_focused != nullptr) {
    std::exchange(m_focused, nullptr)->setFocus();
  }
}

void SetupSection::ShowText(QLabel& label, const QString& text) {
  label.setText(text);
  label.setVisible(!text.isEmpty());
}

// What the user has asked for in this section must not be answered below the edge of the window.
// What a section says by itself scrolls nothing.
void SetupSection::ShowNews(LiveLabel& label, const QString& text) {
  label.setVisible(!text.isEmpty());
  label.Announce(text);
  const QWidget* const focused = QApplication::focusWidget();
  if (text.isEmpty() || focused == nullptr || !label.parentWidget()->isAncestorOf(focused)) {
    return;
  }
  QMetaObject::invokeMethod(
      &label,
      [&label] {
        for (QWidget* widget = label.parentWidget(); widget; widget = widget->parentWidget()) {
          if (auto* const area = qobject_cast<QScrollArea*>(widget)) {
            area->ensureWidgetVisible(&label);
          }
        }
      },
      Qt::QueuedConnection);
}

}  // namespace home
