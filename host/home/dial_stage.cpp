#include "host/home/dial_stage.h"

#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QStyleOptionButton>
#include <QStylePainter>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "host/home/access.h"
#include "host/home/avatar.h"
#include "host/home/button.h"
#include "host/home/gathering.h"
#include "host/home/level_meter.h"
#include "host/home/numbers.h"
#include "host/home/say.h"
#include "host/home/sizes.h"
#include "resources/dial_window_strings.h"
#include "resources/tags_window_strings.h"
#include "resources/teaching_strings.h"

// Title and text change quietly, and one sentence is said for both: two texts that speak by
// themselves would cut each other short in a screen reader.
namespace home {
namespace {

constexpr int kStageGap = 12;
constexpr double kTitleScale = 1.6;
constexpr double kAvatarHeight = 4;  // In lines of text.

/// Shows each line of its text as far as there is room. Of the last one, whose end is `number`, the
/// number is cut last. The tool tip has the whole text.
class ChoiceButton final : public Button {
 public:
  ChoiceButton(const QString& text, const QString& number, QWidget* parent)
      : Button(parent), m_text(text), m_number(number) {
    setText(qt::WithoutMnemonic(text));
    setToolTip(qt::AsToolTip(text));
    setAutoDefault(true);
  }
  [[nodiscard]] QSize minimumSizeHint() const override {
    return {0, Button::minimumSizeHint().height()};
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    constexpr int kEdges = 16;  // What the style leaves free at both sides, in pixels.
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    QStringList lines = m_text.split(u'\n');
    if (option.fontMetrics.horizontalAdvance(lines.last()) > width() - kEdges) {
      lines.last() = m_number;
    }
    for (QString& line : lines) {
      line = option.fontMetrics.elidedText(line, Qt::ElideRight, width() - kEdges);
    }
    option.text = qt::WithoutMnemonic(lines.join(u'\n'));
    painter.drawControl(QStyle::CE_PushButton, option);
  }

 private:
  const QString m_text;
  const QString m_number;
};

}  // namespace

QString NameOf(const dialer::Callee& callee) { return qt::ToQString(ToShown(callee.name)); }

QString NumberOf(const dialer::Callee& callee) {
  QStringList parts{NameKind(callee.candidate.phoneKind), ShowNumber(ToShown(callee.number))};
  parts.removeAll(QString());
  return parts.join(QStringLiteral(" · "));
}

DialStage::DialStage(Choose choose, QWidget* parent)
    : QWidget(parent),
      m_choose(std::move(choose)),
      m_avatar(new Avatar(kAvatarHeight, this)),
      m_title(new LiveLabel(this)),
      m_text(new QLabel(this)),
      m_left(new QProgressBar(this)),
      m_meter(new LevelMeter(this)),
      m_choices(new QWidget(this)),
      m_choiceList(new QVBoxLayout(m_choices)) {
  setObjectName(QStringLiteral("dialStage"));
  m_avatar->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  m_title->setObjectName(QStringLiteral("dialTitle"));
  m_text->setObjectName(QStringLiteral("dialText"));
  m_left->setObjectName(QStringLiteral("dialLeft"));
  m_meter->setObjectName(QStringLiteral("dialLevel"));
  m_choiceList->setContentsMargins(0, 0, 0, 0);
  for (QLabel* const label : {static_cast<QLabel*>(m_title), m_text}) {
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
  }
  Enlarge(*m_title, kTitleScale);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, kStageGap, 0, kStageGap);
  layout->setSpacing(kStageGap);
  layout->addStretch(1);
  for (QWidget* const part : {static_cast<QWidget*>(m_avatar), static_cast<QWidget*>(m_title),
                              static_cast<QWidget*>(m_text), static_cast<QWidget*>(m_left),
                              static_cast<QWidget*>(m_meter), m_choices}) {
    layout->addWidget(part);
  }
  layout->addStretch(2);
}

void DialStage::ShowOnly(std::initializer_list<QWidget*> parts) {
  for (QWidget* const part :
       {static_cast<QWidget*>(m_avatar), static_cast<QWidget*>(m_text),
        static_cast<QWidget*>(m_left), static_cast<QWidget*>(m_meter), m_choices}) {
    part->setVisible(std::find(parts.begin(), parts.end(), part) != parts.end());
  }
}

void DialStage::ShowText(const QString& title, const QString& text) {
  m_title->ShowQuietly(title);
  m_text->setText(text);
  m_title->Tell(text.isEmpty() ? title : title + QStringLiteral(". ") + text);
  if (text.isEmpty()) {
    ShowOnly({});
  } else {
    ShowOnly({m_text});
  }
}

void DialStage::ShowListening(const QString& note) {
  m_title->ShowQuietly(Say(resources::kGetReady));
  m_text->setText(note);
  m_title->Tell(note.isEmpty() ? Say(resources::kSpeakNow) : note);
  m_left->setAccessibleName(Say(resources::kTimeLeft));
  m_left->setRange(0, static_cast<int>(dialer::kLongestListening));
  m_left->setValue(static_cast<int>(dialer::kLongestListening));
  m_left->setFormat({});
  m_meter->Clear();
  if (note.isEmpty()) {
    ShowOnly({m_left, m_meter});
  } else {
    ShowOnly({m_text, m_left, m_meter});
  }
}

void DialStage::ShowProgress(const dialer::ListeningProgress& progress) {
  if (progress.stage != dialer::ListeningProgress::Stage::kSpeak) {
    return;
  }
  m_title->ShowQuietly(Say(resources::kSpeakNow));
  m_left->setFormat(
      Say(resources::kSeconds).arg(locale().toString(progress.leftMilliseconds / 1000.0, 'f', 1)));
  m_left->setValue(static_cast<int>(progress.leftMilliseconds));
  m_meter->SetLevel(progress.levelDb);
}

void DialStage::ShowCallee(const dialer::Callee& callee, const QString& aloud,
                           const QString& note) {
  m_avatar->SetPerson(NameOf(callee));
  m_title->ShowQuietly(NameOf(callee));
  m_text->setText(NumberOf(callee) + QLatin1Char('\n') + note);
  m_title->Tell(aloud);
  ShowOnly({m_avatar, m_text});
}

void DialStage::ShowLeft(std::uint32_t milliseconds) {
  m_left->setAccessibleName(Say(resources::kAnyKeyStops));
  m_left->setRange(0, static_cast<int>(dialer::kSecondThoughts));
  m_left->setValue(static_cast<int>(milliseconds));
  m_left->setFormat(
      Say(resources::kCallingSoon).arg(locale().toString(milliseconds / 1000.0, 'f', 1)));
  m_left->show();
}

void DialStage::ShowChoice(const QString& title, const QString& text,
                           const std::vector<dialer::Callee>& callees) {
  ShowText(title, text);
  // Deleted later, since the press of one of these buttons may have led here.
  while (QLayoutItem* const item = m_choiceList->takeAt(0)) {
    item->widget()->deleteLater();
    item->widget()->hide();
    delete item;
  }
  for (std::size_t i = 0; i < callees.size(); ++i) {
    const QString number = QString::number(i + 1);
    auto* const button = new ChoiceButton(
        number + QStringLiteral("  ") + NameOf(callees[i]) + u'\n' + NumberOf(callees[i]),
        ShowNumber(ToShown(callees[i].number)), m_choices);
    button->setAccessibleName(number + QStringLiteral(", ") + NameOf(callees[i]) +
                              QStringLiteral(", ") + NumberOf(callees[i]));
    button->setObjectName(QStringLiteral("choice") + number);
    connect(button, &QPushButton::clicked, this, [this, i] { m_choose(i); });
    m_choiceList->addWidget(button);
  }
  ShowOnly({m_text, m_choices});
  if (!callees.empty()) {
    m_choiceList->itemAt(0)->widget()->setFocus();
  }
}

}  // namespace home
