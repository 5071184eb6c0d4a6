#include "host/home/lesson_panel.h"

#include <QBoxLayout>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QStackedWidget>
#include <QStyle>
#include <algorithm>
#include <utility>

#include "host/home/access.h"
#include "host/home/avatar.h"
#include "host/home/button_row.h"
#include "host/home/level_meter.h"
#include "host/home/numbers.h"
#include "host/home/quality_words.h"
#include "host/home/say.h"
#include "host/home/sizes.h"
#include "host/home/symbols.h"
#include "host/home/wave_picture.h"
#include "resources/quality_strings.h"
#include "resources/tags_window_strings.h"
#include "resources/teaching_strings.h"
#include "voicemath/constants.h"

namespace home {
namespace {

constexpr int kLessonGap = 12;
constexpr double kNameGrowth = 1.3;
constexpr double kCueGrowth = 2;
constexpr double kAvatarLines = 2.5;
constexpr std::size_t kMostNamed = 3;  ///< People whose names are too alike; the rest is counted.

/// Returns where a line begins. The direction of the window decides, and not that of the text.
Qt::Alignment LeadingOf(const QWidget& widget) {
  return QStyle::visualAlignment(widget.layoutDirection(), Qt::AlignLeading | Qt::AlignVCenter) |
         Qt::AlignAbsolute;
}

/// A page whose content stands in the middle, and can be scrolled if it is too high.
QScrollArea* MakeScrolled(QWidget* content) {
  auto* const area = new QScrollArea;
  area->setFrameShape(QFrame::NoFrame);
  area->setWidgetResizable(true);
  area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area->setWidget(content);
  // Keys scroll it. If all of it can be seen, they have nothing to do with it.
  SetAccessibleRole(*area, QAccessible::Pane);
  area->setAccessibleName(Say(resources::kTeachingTitle));
  area->setFocusPolicy(Qt::NoFocus);
  QObject::connect(area->verticalScrollBar(), &QScrollBar::rangeChanged, area,
                   [area](int least, int most) {
                     area->setFocusPolicy(least < most ? Qt::TabFocus : Qt::NoFocus);
                   });
  return area;
}

}  // namespace

LessonPanel::LessonPanel(Acts acts, QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("lesson"));
  QWidget* const header = MakeHeader();
  m_stage = new QStackedWidget(this);
  m_hintPage = MakeHint();
  m_recordingPage = MakeRecording();
  m_takePage = MakeTake();
  for (QWidget* const page : {m_hintPage, m_recordingPage, m_takePage}) {
    m_stage->addWidget(page);
  }
  m_buttons = new ButtonRow(this);
  MakeButtons(acts);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(header);
  layout->addWidget(m_stage, 1);
  layout->addWidget(m_buttons);
  ShowNobody();
}

QWidget* LessonPanel::MakeHeader() {
  auto* const header = new QWidget(this);
  m_avatar = new Avatar(kAvatarLines, header);
  m_avatar->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  m_name = new QLabel(header);
  m_name->setObjectName(QStringLiteral("lessonName"));
  m_number = new QLabel(header);
  m_number->setObjectName(QStringLiteral("lessonNumber"));
  for (QLabel* const label : {m_name, m_number}) {
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setAlignment(LeadingOf(*this));
  }
  Enlarge(*m_name, kNameGrowth);
  auto* const texts = new QVBoxLayout;
  texts->setSpacing(0);
  texts->addWidget(m_name);
  texts->addWidget(m_number);
  auto* const layout = new QHBoxLayout(header);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_avatar);
  layout->addLayout(texts, 1);
  return header;
}

QWidget* LessonPanel::MakeHint() {
  auto* const page = new QWidget;
  m_hintTitle = new LiveLabel(page);
  m_hintTitle->setObjectName(QStringLiteral("lessonTitle"));
  Enlarge(*m_hintTitle, kNameGrowth);
  m_hint = new QLabel(page);
  m_hint->setObjectName(QStringLiteral("lessonHint"));
  m_hint->setTextFormat(Qt::PlainText);
  auto* const layout = new QVBoxLayout(page);
  layout->addStretch(1);
  for (QLabel* const label : {static_cast<QLabel*>(m_hintTitle), m_hint}) {
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignHCenter);
    layout->addWidget(label);
  }
  layout->addStretch(2);
  return MakeScrolled(page);
}

QWidget* LessonPanel::MakeRecording() {
  auto* const page = new QWidget;
  m_cue = new LiveLabel(page);
  m_cue->setObjectName(QStringLiteral("cue"));
  m_cue->setAlignment(Qt::AlignHCenter);
  m_cue->setWordWrap(true);
  Enlarge(*m_cue, kCueGrowth);
  m_left = new QProgressBar(page);
  m_left->setObjectName(QStringLiteral("timeLeft"));
  m_left->setAccessibleName(Say(resources::kTimeLeft));
  m_left->setRange(0, static_cast<int>(TakeRecorder::kTakeMilliseconds));
  m_left->setFormat(Say(resources::kSeconds));
  m_meter = new LevelMeter(page);
  m_meter->setObjectName(QStringLiteral("level"));
  auto* const layout = new QVBoxLayout(page);
  layout->setContentsMargins(0, kLessonGap, 0, kLessonGap);
  layout->setSpacing(kLessonGap);
  layout->addStretch(1);
  layout->addWidget(m_cue);
  layout->addWidget(m_left);
  layout->addWidget(m_meter);
  layout->addStretch(2);
  return MakeScrolled(page);
}

QWidget* LessonPanel::MakeTake() {
  auto* const page = new QWidget;
  m_wave = new WavePicture(page);
  m_wave->setObjectName(QStringLiteral("wave"));
  m_mark = new QLabel(page);
  m_mark->setAlignment(Qt::AlignTop);
  m_verdicts = new LiveLabel(page);
  m_verdicts->setObjectName(QStringLiteral("verdicts"));
  m_verdicts->setWordWrap(true);
  m_verdicts->setAlignment(LeadingOf(*this));
  auto* const row = new QHBoxLayout;
  row->addWidget(m_mark);
  row->addWidget(m_verdicts, 1);
  auto* const layout = new QVBoxLayout(page);
  layout->setContentsMargins(0, kLessonGap, 0, kLessonGap);
  layout->setSpacing(kLessonGap);
  layout->addLayout(row);
  layout->addWidget(m_wave, 1);
  return MakeScrolled(page);
}

void LessonPanel::MakeButtons(const Acts& acts) {
  const auto add = [this](std::u16string_view text, const char* name,
                          const std::function<void()>& act) {
    QPushButton* const button = m_buttons->Add(Say(text));
    button->setObjectName(QLatin1String(name));
    connect(button, &QPushButton::clicked, this, act);
    return button;
  };
  m_keep = add(resources::kKeep, "keep", acts.keep);
  m_record = add(resources::kRecord, "record", acts.record);
  m_record->setIcon(IconOf(Symbol::kRecord));
  m_hear = add(resources::kHear, "hear", acts.hear);
  m_playBoth = add(resources::kPlayBoth, "playBoth", acts.playBoth);
  m_discard = add(resources::kDiscard, "discard", acts.discard);
  m_cancel = add(resources::kCancel, "cancel", acts.cancel);
  m_leave = add(resources::kChooseAnother, "leave", acts.leave);
}

void LessonPanel::ShowHint(const QString& title, const QString& text) {
  // Said only if it is news: while a page waits, it shows the same hint again and again.
  if (m_hintTitle->text() != title) {
    m_hintTitle->Announce(title);
  }
  m_hint->setText(text);
  m_stage->setCurrentWidget(m_hintPage);
  m_wave->Clear();
}

void LessonPanel::ShowNobody() {
  m_name->parentWidget()->hide();
  m_name->clear();
  m_number->clear();
  // Quietly, since a screen reader says where the focus goes, which is the list of people.
  m_hintTitle->ShowQuietly(Say(resources::kChoosePerson));
  ShowHint(Say(resources::kChoosePerson), Say(resources::kChoosePersonAdvice));
  m_buttons->ShowOnly({});
}

void LessonPanel::ShowReady(const Person& person, const Number& number, bool hasTag) {
  m_avatar->SetPerson(qt::ToQString(person.name));
  m_name->setText(qt::ToQString(person.name));
  m_number->setText(NameKind(number.kind) + QStringLiteral(" · ") + ShowNumber(number.text));
  m_name->parentWidget()->show();
  ShowHint(Say(resources::kSayTheName),
           Say(hasTag ? resources::kSayTheNameAgainAdvice : resources::kSayTheNameAdvice));
  m_record->setText(Say(resources::kRecord));
  m_buttons->ShowOnly({m_record, m_leave});
  m_record->setFocus();
}

void LessonPanel::ShowProgress(const TakeProgress& progress) {
  using Stage = TakeProgress::Stage;
  m_buttons->ShowOnly({m_cancel});
  m_cancel->setFocus();
  if (progress.stage == Stage::kNoMicrophone) {
    ShowHint(Say(resources::kNoMicrophoneYet), Say(resources::kNoMicrophoneYetAdvice));
    return;
  }
  const bool isSpeaking = progress.stage == Stage::kSpeak;
  // Screen readers say "Speak now" before the tone: later they would be in the recording.
  const QString cue = Say(isSpeaking ? resources::kSpeakNow : resources::kGetReady);
  if (m_cue->text() != cue) {
    m_cue->ShowQuietly(cue);
  }
  m_stage->setCurrentWidget(m_recordingPage);
  if (progress.stage == Stage::kCue) {
    m_cue->Tell(Say(resources::kSpeakNow));
  }
  if (!isSpeaking) {
    m_meter->Clear();
  } else {
    m_meter->SetLevel(progress.levelDb);
  }
  const int left =
      static_cast<int>(isSpeaking ? progress.leftMilliseconds : TakeRecorder::kTakeMilliseconds);
  m_left->setFormat(Say(resources::kSeconds).arg(locale().toString(left / 1000.0, 'f', 1)));
  m_left->setValue(left);
}

void LessonPanel::ShowTake(const HeardTake& take) {
  m_record->setText(Say(resources::kRecordAgain));
  if (!take.IsLearnable()) {
    ShowHint(
        Say(take.isRefused ? resources::kMicrophoneRefused : resources::kTakeIsLost),
        Say(take.isRefused ? resources::kMicrophoneRefusedAdvice : resources::kTakeIsLostAdvice));
    m_buttons->ShowOnly({m_record, m_leave});
    m_record->setFocus();
    return;
  }
  m_wave->SetWave(take.samples, take.kept);
  m_sentences.clear();
  for (const voicemath::Verdict verdict : take.quality.verdicts) {
    m_sentences.append(DescribeVerdict(verdict, take.quality));
  }
  if (take.losesStart) {
    m_sentences.append(Say(resources::kTakeLosesStart));
  }
  if (take.losesEnd) {
    m_sentences.append(Say(resources::kTakeLosesEnd));
  }
  ShowVerdicts();
  m_stage->setCurrentWidget(m_takePage);
  ShowPlaying(false);
  m_buttons->ShowOnly({m_keep, m_record, m_hear, m_discard});
  // A warning forbids nothing, but Enter then records again.
  (m_sentences.isEmpty() ? m_keep : m_record)->setFocus();
}

void LessonPanel::ShowVerdicts() {
  const int size = fontMetrics().height();
  m_mark->setPixmap(
      IconOf(m_sentences.isEmpty() ? Symbol::kGood : Symbol::kWarning).pixmap(size, size));
  m_verdicts->Announce(m_sentences.isEmpty() ? Say(resources::kTakeIsGood)
                                             : m_sentences.join(u'\n'));
}

void LessonPanel::ShowAlike(const std::vector<std::u16string>& people) {
  if (people.empty()) {
    return;
  }
  const std::size_t named = std::min(people.size(), kMostNamed);
  for (std::size_t i = 0; i < named; ++i) {
    m_sentences.append(Say(resources::kTakeIsLike).arg(InSentence(people[i])));
  }
  if (const std::size_t others = people.size() - named; others > 0) {
    m_sentences.append(
        others == 1 ? Say(resources::kTakeIsLikeAnother)
                    : Say(resources::kTakeIsLikeOthers).arg(locale().toString(qulonglong{others})));
  }
  ShowVerdicts();
  m_buttons->ShowOnly({m_keep, m_record, m_hear, m_playBoth, m_discard});
}

void LessonPanel::ShowPlaying(bool isPlaying) {
  m_hear->setText(Say(isPlaying ? resources::kStopHearing : resources::kHear));
  m_hear->setIcon(IconOf(isPlaying ? Symbol::kStop : Symbol::kPlay));
}

void LessonPanel::ShowKeeping() {
  ShowHint(Say(resources::kKeeping), {});
  m_buttons->ShowOnly({});
}

}  // namespace home
