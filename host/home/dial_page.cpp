#include "host/home/dial_page.h"

#include <QApplication>
#include <QDateTime>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "backends/text/utf.h"
#include "host/home/access.h"
#include "host/home/button_row.h"
#include "host/home/card_delegate.h"
#include "host/home/dial_stage.h"
#include "host/home/gathering.h"
#include "host/home/numbers.h"
#include "host/home/say.h"
#include "host/home/symbols.h"
#include "resources/dial_window_strings.h"
#include "resources/tags_window_strings.h"
#include "resources/teaching_strings.h"

namespace home {
namespace {

using dialer::NotHeard;
using dialer::Step;
using Kind = dialer::Reply::Kind;

constexpr int kCallLines = 3;
constexpr int kMostLettersWide = 80;
constexpr double kSayGrowth = 1.4;

/// Title and advice if nothing was heard.
std::pair<QString, QString> ExplainNotHeard(NotHeard reason) {
  switch (reason) {
    case NotHeard::kNoMicrophone:
      return {Say(resources::kNoMicrophoneYet), Say(resources::kNoMicrophoneAdvice)};
    case NotHeard::kLost:
      return {Say(resources::kTakeIsLost), Say(resources::kNoMicrophoneAdvice)};
    case NotHeard::kStopped:
      return {Say(resources::kNobodyCalled), {}};
    default:
      return {Say(resources::kMicrophoneRefused), Say(resources::kMicrophoneRefusedAdvice)};
  }
}

QString AsSentence(const std::u16string& part) {
  return part.empty() ? QString() : qt::ToQString(ToSentence(text::ToUtf8(part)));
}

}  // namespace

DialPage::DialPage(Work& work, Frame& frame, Tools tools)
    : m_work(work),
      m_frame(frame),
      m_tools(std::move(tools)),
      m_stage(new DialStage([this](std::size_t choice) { Reply(Kind::kChoice, choice); }, this)),
      m_buttons(new ButtonRow(this)),
      m_talk(m_tools.talk,
             {.show = [this](const TalkStep& step) { OnStep(step); },
              .listening = [this](const auto& progress) { m_stage->ShowProgress(progress); },
              .waiting = [this](std::uint32_t left) { m_stage->ShowLeft(left); },
              .keep =
                  [this](const Lesson& lesson, Talk::KeptAnswer answer) {
                    m_work.Teach(lesson, [answer = std::move(answer)](
                                             const Outcome& outcome, const std::u16string& /*tag*/,
                                             const std::vector<std::u16string>& /*trashed*/) {
                      answer(outcome);
                    });
                  },
              .ended = [this](const std::u16string& problem) { OnEnded(problem); }}) {
  setWindowTitle(Say(resources::kDialTitle));
  MakeButtons();
  m_callsTitle = new QLabel(Say(resources::kLastCalls), this);
  m_callList = new QListWidget(this);
  m_callList->setObjectName(QStringLiteral("lastCalls"));
  m_callList->setAccessibleName(Say(resources::kLastCalls));
  m_callList->setItemDelegate(new CardDelegate(kCallLines, m_callList));
  m_callList->setUniformItemSizes(true);
  m_callList->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  m_callList->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  connect(m_callList, &QListWidget::itemActivated, this,
          [this](const QListWidgetItem* item) { CallAgain(m_callList->row(item)); });
  auto* const area = new QScrollArea(this);
  area->setFrameShape(QFrame::NoFrame);
  area->setWidgetResizable(true);
  area->setFocusPolicy(Qt::NoFocus);
  area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area->setWidget(m_stage);
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(area, 3);
  layout->addWidget(m_buttons);
  layout->addWidget(m_callsTitle);
  layout->addWidget(m_callList, 2);
  ShowIdle();
}

DialPage::~DialPage() = default;

void DialPage::MakeButtons() {
  const auto add = [this](std::u16string_view text, const char* name, auto act) {
    QPushButton* const button = m_buttons->Add(Say(text));
    button->setObjectName(QLatin1String(name));
    connect(button, &QPushButton::clicked, this, act);
    return button;
  };
  m_say = add(resources::kSayName, "sayName", [this] { Hear(); });
  m_say->setIcon(IconOf(Symbol::kCall));
  QFont large = m_say->font();
  large.setPointSizeF(large.pointSizeF() * kSayGrowth);
  m_say->setFont(large);
  m_call = add(resources::kCallNow, "callNow", [this] { Reply(Kind::kYes); });
  m_other = add(resources::kSomebodyElse, "somebodyElse", [this] { Reply(Kind::kNo); });
  m_again = add(resources::kSayItAgain, "sayAgain", [this] { Reply(Kind::kAgain); });
  m_keep = add(resources::kKeepTake, "keepTake", [this] { Reply(Kind::kYes); });
  m_drop = add(resources::kDoNotKeep, "dropTake", [this] { Reply(Kind::kNo); });
  m_hangUp = add(resources::kHangUp, "hangUp", [this] { Reply(Kind::kHangUp); });
  m_cancel = add(resources::kCancel, "cancelCall", [this] { Reply(Kind::kStop); });
  m_teach =
      add(resources::kTeachName, "teachFirst", [this] { m_frame.ShowPage(PageId::kTeaching, {}); });
}

void DialPage::OnShelf(const std::shared_ptr<const Shelf>& shelf) {
  m_shelf = shelf;
  ShowCalls();
}

void DialPage::OnShown(const std::u16string& /*tag*/) {
  if (IsInCall()) {
    return m_hangUp->setFocus();
  }
  m_calls = m_tools.readCalls();
  ShowCalls();
  m_talk.Stop();
  ShowIdle();
}

// A call that can be ended here can still be ended here when the user comes back.
void DialPage::OnLeft() {
  if (IsInCall()) {
    return m_state == State::kOffer ? Reply(Kind::kNo) : void();
  }
  if (m_state == State::kDialling) {
    Reply(Kind::kHangUp);
  }
  m_talk.Stop();
  m_work.StopPlaying();
  ShowIdle();
}

void DialPage::ShowIdle() {
  m_stage->ShowText(Say(resources::kDialTitle), Say(resources::kSayNameAdvice));
  Enter(State::kIdle);
}

/// Shows the buttons of a state, and the list of calls if nothing goes on.
void DialPage::Enter(State state) {
  // The filter sees each event of the whole application. So it is there only while a call is about
  // to begin.
  const bool wasSure = m_state == State::kSure;
  m_state = state;
  if (wasSure != (state == State::kSure)) {
    if (wasSure) {
      qApp->removeEventFilter(this);
    } else {
      qApp->installEventFilter(this);
    }
  }
  switch (state) {
    case State::kIdle:
      m_buttons->ShowOnly(m_canTeach ? std::initializer_list<QPushButton*>{m_teach, m_say}
                                     : std::initializer_list<QPushButton*>{m_say});
      (m_canTeach ? m_teach : m_say)->setFocus();
      break;
    case State::kSure:
      m_buttons->ShowOnly({m_call, m_other, m_cancel});
      m_cancel->setFocus();
      break;
    case State::kChoosing:
      m_buttons->ShowOnly({m_again, m_cancel});
      break;
    case State::kDialling:
      m_buttons->ShowOnly({m_hangUp});
      m_hangUp->setFocus();
      break;
    case State::kOffer:
      m_buttons->ShowOnly(m_canHangUp
                              ? std::initializer_list<QPushButton*>{m_keep, m_drop, m_hangUp}
                              : std::initializer_list<QPushButton*>{m_keep, m_drop});
      m_keep->setFocus();
      break;
    case State::kInCall:
      m_buttons->ShowOnly({m_hangUp, m_say});
      m_hangUp->setFocus();
      break;
    case State::kListening:
    case State::kCalling:
      m_buttons->ShowOnly({m_cancel});
      m_cancel->setFocus();
      break;
  }
  const bool hasCalls = state == State::kIdle && m_callList->count() > 0;
  m_callsTitle->setVisible(hasCalls);
  m_callList->setVisible(hasCalls);
}

void DialPage::Hear() {
  m_work.StopPlaying();  // A tag that is still heard from the list would be in the take.
  m_note.clear();
  m_canTeach = false;
  m_stage->ShowText(Say(resources::kOneMoment), {});
  Enter(State::kListening);
  // What is shown now stays until the microphone is open, which may take a moment.
  m_talk.Hear();
}

void DialPage::CallAgain(int row) {
  // Row i of the list is call i.
  const dialer::RecentCall& call = m_calls.at(static_cast<std::size_t>(row));
  m_canTeach = false;
  m_note.clear();
  m_stage->ShowText(Say(resources::kOneMoment), {});
  Enter(State::kCalling);
  m_talk.Call({.tag = {}, .oid = call.oid, .phoneKind = call.phoneKind});
}

void DialPage::Reply(Kind kind, std::size_t choice) {
  m_talk.Reply({.kind = kind, .choice = choice});
}

void DialPage::OnStep(const TalkStep& step) {
  m_shown = step.step;
  switch (step.step) {
    case Step::kSpeak:
      m_stage->ShowListening(std::exchange(m_note, {}));
      return Enter(State::kListening);
    case Step::kNoSpeech:
      m_note = Say(resources::kHeardNobody);
      return;
    case Step::kUnknown:
      m_note = Say(resources::kUnknownName);
      return;
    case Step::kSure:
    case Step::kOneOf:
    case Step::kInstead:
    case Step::kOffer:
      return OnAsked(step);
    case Step::kCalling:
      m_note = Say(resources::kCallingNow).arg(InSentence(NameOf(step.callees[0])));
      m_stage->ShowCallee(step.callees[0], m_note, m_note);
      return Enter(State::kCalling);
    case Step::kDialling:
      return Enter(step.canHangUp ? State::kDialling : State::kCalling);
    case Step::kInCall:
      // Just after the call, what is shown says all.
      if (m_state != State::kCalling && m_state != State::kDialling) {
        m_stage->ShowCallee(step.callees[0], m_note, m_note);
      }
      return Enter(State::kInCall);
    default:
      return OnOutcome(step);
  }
}

void DialPage::OnAsked(const TalkStep& step) {
  switch (step.step) {
    case Step::kSure:
      m_stage->ShowCallee(step.callees[0],
                          Say(resources::kCallingSoonAloud)
                              .arg(InSentence(NameOf(step.callees[0])),
                                   NameKind(step.callees[0].candidate.phoneKind)),
                          Say(resources::kAnyKeyStops));
      m_stage->ShowLeft(dialer::kSecondThoughts);
      return Enter(State::kSure);
    case Step::kOffer:
      // Whoever has to dial the number sees it here, too.
      m_stage->ShowText(Say(resources::kKeepTakeQuestion).arg(InSentence(NameOf(step.callees[0]))),
                        Say(resources::kKeepTakeAdvice) + QStringLiteral("\n\n") +
                            NumberOf(step.callees[0]) + u'\n' + m_note);
      m_canHangUp = step.canHangUp;
      return Enter(State::kOffer);
    default:
      Enter(State::kChoosing);
      m_stage->ShowChoice(step.callees.empty()        ? Say(resources::kNoOtherGuess)
                          : step.step == Step::kOneOf ? Say(resources::kWhoIsMeant)
                                                      : Say(resources::kWhoInstead),
                          step.callees.empty() ? QString() : Say(resources::kChooseAdvice),
                          step.callees);
      if (step.callees.empty()) {
        m_again->setFocus();
      }
  }
}

/// How it ended. The buttons come with the end itself.
void DialPage::OnOutcome(const TalkStep& step) {
  const QString name = step.callees.empty() ? QString() : InSentence(NameOf(step.callees[0]));
  const QString reason = AsSentence(step.outcome);
  switch (step.step) {
    case Step::kNothingTaught:
      m_canTeach = true;
      return m_stage->ShowText(Say(resources::kNobodyTaught), Say(resources::kNobodyTaughtAdvice));
    case Step::kNotHeard: {
      const auto [title, advice] = ExplainNotHeard(step.notHeard);
      return m_stage->ShowText(title, advice);
    }
    case Step::kSilent:
      return m_stage->ShowText(Say(resources::kOnlySilence), Say(resources::kOnlySilenceAdvice));
    case Step::kCannotCall:
      return m_stage->ShowText(Say(resources::kCannotBeCalled).arg(name), reason);
    case Step::kNotUnderstood:
      return m_stage->ShowText(Say(resources::kNotUnderstood),
                               Say(resources::kNotUnderstoodAdvice));
    case Step::kKept:
      m_note = Say(resources::kTakeKept).arg(name);
      return m_stage->ShowText(m_note, {});
    case Step::kNotKept:
      m_note = Say(resources::kTakeNotKept);
      return m_stage->ShowText(m_note, reason);
    case Step::kNotCalled:
    case Step::kCalled:
    case Step::kHungUp:
    case Step::kNotHungUp:
      m_outcome = step;
      return ShowCall();
    default:
      return m_stage->ShowText(Say(resources::kNobodyCalled), {});
  }
}

/// Shows what became of the call.
void DialPage::ShowCall() {
  const dialer::Callee& callee = m_outcome.callees[0];
  const QString name = InSentence(NameOf(callee));
  const QString reason = AsSentence(m_outcome.outcome);
  if (m_outcome.step == Step::kNotCalled) {
    m_note = Say(resources::kWasNotCalled).arg(name) + QStringLiteral(". ") + reason;
    m_stage->ShowText(Say(resources::kWasNotCalled).arg(name), reason + u'\n' + NumberOf(callee));
  } else if (m_outcome.step == Step::kNotHungUp) {
    m_note = Say(resources::kCallNotEnded) + QLatin1Char(' ') + reason;
  } else {
    m_note = m_outcome.step == Step::kHungUp ? Say(resources::kCallEnded) : reason;
    // The number stays in sight: without a way to call, the user dials it.
    m_stage->ShowCallee(callee, name + QStringLiteral(". ") + m_note, m_note);
  }
}

void DialPage::OnEnded(const std::u16string& problem) {
  if (!problem.empty()) {
    m_stage->ShowText(Say(resources::kCannotDial), qt::ToQString(problem));
  }
  if (m_shown == Step::kOffer) {
    ShowCall();  // The user wanted to keep nothing, and no other step said so.
  }
  m_calls = m_tools.readCalls();
  ShowCalls();
  Enter(State::kIdle);
}

/// The calls to people whom the address book has.
void DialPage::ShowCalls() {
  if (!m_shelf) {
    return;
  }
  std::erase_if(m_calls, [this](const dialer::RecentCall& call) {
    const auto person = std::ranges::find(m_shelf->people, call.oid, &Person::oid);
    return person == m_shelf->people.end() ||
           std::ranges::find(person->numbers, call.phoneKind, &Number::kind) ==
               person->numbers.end();
  });
  m_callList->clear();
  for (const dialer::RecentCall& call : m_calls) {
    const Person& person = *std::ranges::find(m_shelf->people, call.oid, &Person::oid);
    const Number& number = *std::ranges::find(person.numbers, call.phoneKind, &Number::kind);
    const QString name = qt::ToQString(person.name);
    const QStringList lines{
        name, NameKind(number.kind) + QStringLiteral(" · ") + ShowNumber(number.text),
        locale().toString(QDateTime::fromSecsSinceEpoch(call.time), QLocale::ShortFormat)};
    auto* const item = new QListWidgetItem(lines.join(u'\n'), m_callList);
    item->setData(CardDelegate::kNameRole, name);
    item->setData(Qt::AccessibleTextRole, lines.join(QStringLiteral(", ")));
    item->setToolTip(qt::AsToolTip(lines.join(QStringLiteral(", "))));
  }
  if (m_callList->count() > 0) {
    m_callList->setCurrentRow(0);
  }
  const bool isShown = m_state == State::kIdle && m_callList->count() > 0;
  m_callsTitle->setVisible(isShown);
  m_callList->setVisible(isShown);
}

/// The column stands in the middle of a wide window.
void DialPage::resizeEvent(QResizeEvent* event) {
  Page::resizeEvent(event);
  const int most = kMostLettersWide * fontMetrics().averageCharWidth();
  const int edge = style()->pixelMetric(QStyle::PM_LayoutLeftMargin);
  const int side = std::max(edge, (width() - most) / 2);
  layout()->setContentsMargins(side, edge, side, edge);
}

// While somebody is about to be called, every key and every click of this window means one thing,
// whatever has the focus: a call that nobody wants is worse than one that has to be begun again.
bool DialPage::eventFilter(QObject* watched, QEvent* event) {
  return StopsCall(watched, *event) || Page::eventFilter(watched, event);
}

bool DialPage::StopsCall(QObject* watched, QEvent& event) {
  auto* const widget = qobject_cast<QWidget*>(watched);
  if (m_state != State::kSure || widget == nullptr || widget->window() != window()) {
    return false;
  }
  if (event.type() == QEvent::ShortcutOverride) {
    event.accept();  // So that the key comes here, and does nothing else.
    return true;
  }
  if (event.type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent&>(event).key();
    const bool isModifier = key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt ||
                            key == Qt::Key_Meta || key == Qt::Key_AltGr;
    if (!isModifier) {
      Reply(key == Qt::Key_Escape ? Kind::kStop : Kind::kNo);
    }
    return true;
  }
  const bool isClick =
      event.type() == QEvent::MouseButtonPress || event.type() == QEvent::TouchBegin;
  if (isClick && qobject_cast<QPushButton*>(widget) == nullptr) {
    Reply(Kind::kNo);
    return true;
  }
  return false;
}

void DialPage::keyPressEvent(QKeyEvent* event) {
  const int digit = event->key() - Qt::Key_1;
  if (m_state == State::kChoosing && digit >= 0 &&
      digit < static_cast<int>(dialer::kMostCandidates)) {
    Reply(Kind::kChoice, static_cast<std::size_t>(digit));
  } else if (event->key() == Qt::Key_Escape && m_state == State::kOffer) {
    Reply(Kind::kNo);
  } else if (event->key() == Qt::Key_Escape && m_state == State::kDialling) {
    Reply(Kind::kHangUp);
  } else if (event->key() == Qt::Key_Escape && m_state != State::kIdle &&
             m_state != State::kInCall) {
    Reply(Kind::kStop);
  } else {
    Page::keyPressEvent(event);
  }
}

}  // namespace home
