#include "host/home/message_bar.h"

#include <QHBoxLayout>
#include <QToolButton>

#include "host/home/access.h"
#include "host/home/button.h"
#include "host/home/say.h"
#include "host/home/symbols.h"
#include "resources/tags_window_strings.h"

namespace home {

MessageBar::MessageBar(QWidget* parent)
    : QFrame(parent), m_text(new LiveLabel(this)), m_button(new Button(this)) {
  setFrameShape(QFrame::StyledPanel);
  setAutoFillBackground(true);
  setBackgroundRole(QPalette::AlternateBase);
  m_text->setWordWrap(true);
  m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
  m_text->setObjectName(QStringLiteral("message"));
  m_button->setObjectName(QStringLiteral("messageAction"));
  auto* const close = new QToolButton(this);
  close->setAutoRaise(true);
  close->setIcon(IconOf(Symbol::kClose));
  close->setAccessibleName(Say(resources::kClose));
  close->setToolTip(Say(resources::kClose));
  close->setObjectName(QStringLiteral("messageClose"));
  MakeTouchable(*close);
  connect(close, &QToolButton::clicked, this, &MessageBar::Clear);
  // The bar is empty before the act, which may show the next message in it.
  connect(m_button, &QPushButton::clicked, this, [this] {
    const auto act = std::exchange(m_act, nullptr);
    Clear();
    act();
  });
  auto* const layout = new QHBoxLayout(this);
  layout->addWidget(m_text, 1);
  layout->addWidget(m_button);
  layout->addWidget(close);
  hide();
}

void MessageBar::Show(const QString& text, const QString& button, std::function<void()> act) {
  m_button->setText(button);
  m_button->setVisible(act != nullptr);
  m_act = std::move(act);
  m_text->Announce(text);
  show();
}

void MessageBar::Clear() {
  m_act = nullptr;
  hide();
}

void MessageBar::showEvent(QShowEvent* event) {
  QFrame::showEvent(event);
  if (m_toggled) {
    m_toggled();
  }
}

void MessageBar::hideEvent(QHideEvent* event) {
  QFrame::hideEvent(event);
  if (m_toggled) {
    m_toggled();
  }
}

}  // namespace home
