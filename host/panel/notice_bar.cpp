#include "host/panel/notice_bar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>

namespace panel {

NoticeBar::NoticeBar(QWidget* parent)
    : QFrame(parent), m_text(new QLabel(this)), m_button(new QPushButton(this)) {
  setFrameShape(QFrame::StyledPanel);
  setAccessibleName(tr("What is missing"));
  m_text->setWordWrap(true);
  m_text->setTextFormat(Qt::PlainText);
  m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  m_text->setObjectName(QStringLiteral("noticeText"));
  m_button->setObjectName(QStringLiteral("noticeAction"));
  auto* const close = new QToolButton(this);
  close->setAutoRaise(true);
  close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
  close->setAccessibleName(tr("Hide"));
  close->setToolTip(tr("Hide"));
  connect(close, &QToolButton::clicked, this, &QWidget::hide);

  auto* const layout = new QHBoxLayout(this);
  layout->addWidget(m_text, 1);
  layout->addWidget(m_button);
  layout->addWidget(close, 0, Qt::AlignTop);
  hide();
}

void NoticeBar::Tell(const QString& text, const QString& button,
                     const std::function<void()>& action) {
  m_text->setText(text);
  m_button->disconnect(this);
  m_button->setVisible(action != nullptr);
  m_button->setText(button);
  if (action) {
    connect(m_button, &QPushButton::clicked, this, action);
  }
  setVisible(!text.isEmpty());
}

}  // namespace panel
