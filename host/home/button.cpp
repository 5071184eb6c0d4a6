#include "host/home/button.h"

#include <QProxyStyle>
#include <QStyleOptionButton>
#include <QStyleOptionFocusRect>
#include <QStyleOptionMenuItem>
#include <QStylePainter>
#include <algorithm>

#include "host/home/access.h"

namespace home {

namespace {

/// The style of the desktop, with the items of menus as high as a finger needs them.
class FingerStyle final : public QProxyStyle {
 public:
  [[nodiscard]] QSize sizeFromContents(ContentsType type, const QStyleOption* option,
                                       const QSize& contents,
                                       const QWidget* widget) const override {
    const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    const auto* const item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    const bool isTarget = type == CT_MenuItem && item != nullptr &&
                          item->menuItemType != QStyleOptionMenuItem::Separator;
    return isTarget ? size.expandedTo({0, kLeastTarget}) : size;
  }
};

}  // namespace

void SuitFingers(QMenu& menu, const QWidget& window) {
  auto* style = menu.findChild<FingerStyle*>();
  if (style == nullptr) {
    style = new FingerStyle;
    style->setParent(&menu);
  }
  menu.setStyle(window.width() < kPhoneWidth ? style : nullptr);
}

void GiveMenu(QToolButton& button, QMenu& menu) {
  SetAccessibleRole(button, QAccessible::ButtonMenu);
  button.setMenu(&menu);
  button.setPopupMode(QToolButton::InstantPopup);
  button.setStyleSheet(QStringLiteral("QToolButton::menu-indicator { image: none; }"));
  QObject::connect(&menu, &QMenu::aboutToShow, &button, [&button, &menu] {
    SuitFingers(menu, *button.window());
    if (!button.underMouse()) {
      // An item can be the current one only after the menu has opened.
      QMetaObject::invokeMethod(
          &menu, [&menu] { menu.setActiveAction(menu.actions().constFirst()); },
          Qt::QueuedConnection);
    }
  });
}

Button::Button(QWidget* parent) : QPushButton(parent) {
  MakeTouchable(*this);
  // In this kind of window Enter belongs to the list.
  setAutoDefault(false);
}

QSize Button::sizeHint() const {
  const QFontMetrics metrics(font());
  const int room = 3 * metrics.averageCharWidth();
  const int symbol = icon().isNull() ? 0 : metrics.ascent() + (text().isEmpty() ? 0 : room / 3);
  const QSize words = metrics.size(Qt::TextShowMnemonic, text());
  const int height = std::max(words.height(), metrics.height()) + room / 3;
  return {std::max(symbol + words.width() + room, kLeastTarget), std::max(height, kLeastTarget)};
}

// Styles make symbols as large as they like and leave the gap to their own taste. Here the symbol
// is as high as the letters, and both together stand in the middle. The style still draws the frame
// and the focus.
void Button::paintEvent(QPaintEvent* /*event*/) {
  QStylePainter painter(this);
  QStyleOptionButton option;
  initStyleOption(&option);
  painter.drawControl(QStyle::CE_PushButtonBevel, option);
  const QFontMetrics metrics(font());
  const int gap = metrics.averageCharWidth();
  const int side = icon().isNull() ? 0 : metrics.ascent();
  const QSize size = metrics.size(Qt::TextShowMnemonic, text());
  const int words = size.width();
  const int between = side > 0 && words > 0 ? gap : 0;
  const QRect whole = QStyle::alignedRect(
      Qt::LeftToRight, Qt::AlignCenter,
      {side + between + words, std::max(size.height(), metrics.height())}, rect());
  const QRect symbol(whole.left(), whole.center().y() - side / 2, side, side);
  const QRect line(whole.left() + side + between, whole.top(), words, whole.height());
  icon().paint(&painter, QStyle::visualRect(layoutDirection(), whole, symbol), Qt::AlignCenter,
               isEnabled() ? QIcon::Normal : QIcon::Disabled);
  const int underline = style()->styleHint(QStyle::SH_UnderlineShortcut, &option, this) != 0
                            ? Qt::TextShowMnemonic
                            : Qt::TextHideMnemonic;
  painter.drawItemText(QStyle::visualRect(layoutDirection(), whole, line),
                       Qt::AlignCenter | underline | Qt::TextDontClip, palette(), isEnabled(),
                       text(), QPalette::ButtonText);
  if (hasFocus()) {
    QStyleOptionFocusRect focus;
    focus.initFrom(this);
    focus.rect = style()->subElementRect(QStyle::SE_PushButtonFocusRect, &option, this);
    painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
  }
}

ActionButton::ActionButton(QAction& action, QWidget* parent) : Button(parent), m_action(action) {
  connect(&action, &QAction::changed, this, &ActionButton::Update);
  connect(this, &QPushButton::clicked, &action, &QAction::trigger);
  Update();
}

void ActionButton::ShowText(bool isShown) {
  m_isTextShown = isShown;
  Update();
}

void ActionButton::Update() {
  setText(m_isTextShown ? m_action.text() : QString());
  setToolTip(m_action.toolTip());
  setAccessibleName(m_action.iconText());
  setIcon(m_action.icon());
  setEnabled(m_action.isEnabled());
  if (!m_action.isVisible()) {
    hide();
  }
}

}  // namespace home
