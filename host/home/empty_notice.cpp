#include "host/home/empty_notice.h"

#include <QLabel>
#include <QVBoxLayout>
#include <utility>

#include "host/home/button.h"

namespace home {

EmptyNotice::EmptyNotice(QWidget* parent)
    : QWidget(parent),
      m_title(new QLabel(this)),
      m_advice(new QLabel(this)),
      m_button(new Button(this)) {
  constexpr double kTitleGrowth = 1.3;
  QFont font = m_title->font();
  font.setPointSizeF(font.pointSizeF() * kTitleGrowth);
  m_title->setFont(font);
  auto* const layout = new QVBoxLayout(this);
  layout->addStretch(1);
  for (QLabel* const label : {m_title, m_advice}) {
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    layout->addWidget(label);
  }
  m_title->setObjectName(QStringLiteral("emptyTitle"));
  m_advice->setObjectName(QStringLiteral("emptyAdvice"));
  m_button->setObjectName(QStringLiteral("emptyAction"));
  m_button->setAutoDefault(
      true);  // Enter presses it: there is no list here that it could belong to.
  layout->addSpacing(layout->spacing());
  layout->addWidget(m_button, 0, Qt::AlignHCenter);
  layout->addStretch(2);
  connect(m_button, &QPushButton::clicked, this, [this] {
    // What is done may show another text in this place.
    const auto act = m_act;
    act();
  });
}

void EmptyNotice::Show(const QString& title, const QString& advice, const QString& button,
                       std::function<void()> act) {
  m_title->setText(title);
  m_advice->setText(advice);
  m_advice->setVisible(!advice.isEmpty());
  m_button->setText(button);
  m_button->setVisible(act != nullptr);
  m_act = std::move(act);
}

void EmptyNotice::FocusButton() {
  if (m_act) {
    m_button->setFocus();
  }
}

}  // namespace home
