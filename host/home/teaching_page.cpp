#include "host/home/teaching_page.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPointer>
#include <algorithm>
#include <utility>

#include "audio/samples.h"
#include "host/home/lesson_panel.h"
#include "host/home/numbers.h"
#include "host/home/people_list.h"
#include "host/home/say.h"
#include "resources/teaching_strings.h"

// One lesson after another. Comparing and keeping a take last a while, and the user may have begun
// another lesson by then, or have left the page. So each question carries the number of its lesson,
// and an answer to an earlier lesson is passed over.
namespace home {
namespace {

/// Enough for a screen reader to say "Speak now".
constexpr std::uint32_t kSpokenCueTime = 1200;

// In average letters.
constexpr int kWideLetters = 80;     ///< From this width on people and lesson stand side by side.
constexpr int kLessonLetters = 130;  ///< A lesson is not wider.

}  // namespace

TeachingPage::TeachingPage(Work& work, Frame& frame, const Sound& sound)
    : m_work(work),
      m_frame(frame),
      m_recorder(sound),
      m_people(new PeopleList(
          [this](const Person& person, const Number& number) {
            Choose(person, number, FindTagOf(person, number));
          },
          [this] { m_frame.ShowPage(PageId::kSetup, {}); }, this)),
      m_panel(new LessonPanel({.record = [this] { Record(); },
                               .cancel = [this] { Discard(); },
                               .keep = [this] { Keep(); },
                               .discard = [this] { Discard(); },
                               .hear = [this] { Hear(); },
                               .playBoth = [this] { PlayBoth(); },
                               .leave = [this] { Leave(); }},
                              this)) {
  setWindowTitle(Say(resources::kTeachingTitle));
  auto* const layout = new QHBoxLayout(this);
  layout->addWidget(m_people, 2);
  layout->addWidget(m_panel, 3);
  Arrange();
}

TeachingPage::~TeachingPage() = default;

void TeachingPage::OnShelf(const std::shared_ptr<const Shelf>& shelf) {
  m_shelf = shelf;
  m_people->Show(shelf);
}

void TeachingPage::OnShown(const std::u16string& tag) {
  Leave();
  m_isForOneTag = !tag.empty();
  if (tag.empty()) {
    m_people->Begin();
  } else if (!ChooseOf(tag)) {
    m_isForOneTag = false;
    m_frame.Report({.isDone = false, .message = qt::ToText(Say(resources::kPersonIsGone))});
    m_people->Begin();
  }
}

void TeachingPage::OnLeft() { Leave(); }

const Tag* TeachingPage::FindTag(const std::u16string& name) const {
  const auto found = std::ranges::find(m_shelf->tags, name, &Tag::name);
  return found == m_shelf->tags.end() ? nullptr : &*found;
}

/// A number that has a tag is taught again, so that it does not have two in the end.
std::u16string TeachingPage::FindTagOf(const Person& person, const Number& number) const {
  const auto found = std::ranges::find_if(m_shelf->tags, [&](const Tag& tag) {
    return tag.oid == person.oid && tag.kind == number.kind;
  });
  return found == m_shelf->tags.end() ? std::u16string() : found->name;
}

bool TeachingPage::ChooseOf(const std::u16string& name) {
  const Tag* const tag = FindTag(name);
  if (tag == nullptr || !tag->oid) {
    return false;
  }
  const auto person = std::ranges::find(m_shelf->people, *tag->oid, &Person::oid);
  if (person == m_shelf->people.end()) {
    return false;
  }
  const auto number = std::ranges::find(person->numbers, tag->kind, &Number::kind);
  if (number == person->numbers.end()) {
    return false;
  }
  Choose(*person, *number, name);
  return true;
}

void TeachingPage::Choose(const Person& person, const Number& number,
                          const std::u16string& replaced) {
  if (m_state == State::kKeeping) {
    return;
  }
  Silence();
  m_pupil = {person, number, replaced};
  m_state = State::kReady;
  Arrange();
  m_panel->ShowReady(person, number, !replaced.empty());
}

/// Back to the people. Nothing of a recording is left.
void TeachingPage::Leave() {
  Silence();
  m_pupil.reset();
  m_state = State::kChoosing;
  m_panel->ShowNobody();
  Arrange();
  m_people->FocusSearch();
}

void TeachingPage::Record() {
  Silence();
  m_work.StopPlaying();  // A tag that is still heard from the list would be in the take.
  m_state = State::kRecording;
  m_recorder.SetCueTime(QAccessible::isActive() ? kSpokenCueTime : 0);
  m_recorder.Record([this](const TakeProgress& progress) { m_panel->ShowProgress(progress); },
                    [this](const HeardTake& take) { OnHeard(take); });
  m_panel->ShowProgress({});
}

void TeachingPage::OnHeard(HeardTake take) {
  m_take = std::move(take);
  m_state = m_take.IsLearnable() ? State::kHeard : State::kReady;
  m_panel->ShowTake(m_take);
  if (m_take.IsLearnable()) {
    m_work.Compare(ToLesson(), [self = QPointer<TeachingPage>(this),
                                lesson = m_lesson](const std::vector<std::u16string>& alike) {
      if (self && self->m_lesson == lesson && self->m_state == State::kHeard) {
        self->OnCompared(alike);
      }
    });
  }
}

void TeachingPage::OnCompared(const std::vector<std::u16string>& alike) {
  std::vector<std::u16string> people;
  for (const std::u16string& name : alike) {
    if (const Tag* const tag = FindTag(name)) {
      people.push_back(tag->contact);
    }
  }
  m_alike = alike.empty() ? std::u16string() : alike.front();
  m_panel->ShowAlike(people);
}

/// Ends what is recorded or heard, and forgets the take.
void TeachingPage::Silence() {
  m_recorder.Stop();
  if (std::exchange(m_isPlaying, false)) {
    m_work.StopPlaying();
    m_panel->ShowPlaying(false);
  }
  ++m_lesson;
  m_take = {};
  m_alike.clear();
}

void TeachingPage::Discard() {
  Silence();
  m_state = State::kReady;
  m_panel->ShowReady(m_pupil->person, m_pupil->number, !m_pupil->replaced.empty());
}

void TeachingPage::Hear() {
  if (std::exchange(m_isPlaying, false)) {
    m_recorder.Stop();
    m_work.StopPlaying();
    m_panel->ShowPlaying(false);
    return;
  }
  m_isPlaying = true;
  m_panel->ShowPlaying(true);
  m_recorder.Play(KeptSamples(), [this](bool isPlayed) {
    m_isPlaying = false;
    m_panel->ShowPlaying(false);
    if (!isPlayed) {
      m_frame.Report({.isDone = false, .message = qt::ToText(Say(resources::kNotHeard))});
    }
  });
}

void TeachingPage::PlayBoth() {
  m_work.StopPlaying();
  m_isPlaying = true;
  m_panel->ShowPlaying(true);
  m_recorder.Play(KeptSamples(), [this](bool /*isPlayed*/) {
    m_work.Play(m_alike,
                [self = QPointer<TeachingPage>(this), lesson = m_lesson](const Outcome& outcome) {
                  if (self && self->m_lesson == lesson && std::exchange(self->m_isPlaying, false)) {
                    self->m_panel->ShowPlaying(false);
                    self->m_frame.Report(outcome);
                  }
                });
  });
}

std::vector<std::int16_t> TeachingPage::KeptSamples() const {
  const auto begin = m_take.samples.begin();
  return {begin + m_take.kept.first, begin + m_take.kept.last + 1};
}

Lesson TeachingPage::ToLesson() const {
  return {.oid = m_pupil->person.oid,
          .kind = m_pupil->number.kind,
          .wave = audio::ToWaveFile(m_take.samples),
          .replaced = m_pupil->replaced};
}

void TeachingPage::Keep() {
  const Lesson lesson = ToLesson();
  const HeardTake take = std::move(m_take);
  Silence();
  m_take = take;  // If it cannot be kept now, the user may try again.
  m_state = State::kKeeping;
  m_panel->ShowKeeping();
  m_work.Teach(lesson, [self = QPointer<TeachingPage>(this), number = m_lesson](
                           const Outcome& outcome, const std::u16string& /*tag*/,
                           const std::vector<std::u16string>& /*trashed*/) {
    if (self && self->m_lesson == number) {
      self->OnTaught(outcome);
    }
  });
}

void TeachingPage::OnTaught(const Outcome& outcome) {
  if (!outcome.isDone) {
    OnHeard(m_take);  // The other tags may have changed, so it is compared again.
    m_frame.Report({.isDone = false,
                    .message = outcome.message.empty() ? qt::ToText(Say(resources::kNotLearned))
                                                       : outcome.message});
    return;
  }
  QString learned = Say(resources::kLearned).arg(InSentence(m_pupil->person.name));
  if (!outcome.message.empty()) {
    learned += u'\n' + qt::ToQString(outcome.message);
  }
  const bool isOneTag = m_isForOneTag;
  Leave();
  m_people->Begin();
  if (isOneTag) {
    m_frame.ShowTags();
  }
  m_frame.Report({.isDone = true, .message = qt::ToText(learned)});
}

void TeachingPage::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Escape) {
    Page::keyPressEvent(event);
    return;
  }
  switch (m_state) {
    case State::kRecording:
    case State::kHeard:
      Discard();
      break;
    case State::kReady:
      if (m_isForOneTag) {
        event->ignore();
      } else {
        Leave();
      }
      break;
    case State::kChoosing:
      if (!m_people->ClearSearch()) {
        event->ignore();
      }
      break;
    default:
      break;
  }
}

void TeachingPage::resizeEvent(QResizeEvent* event) {
  Page::resizeEvent(event);
  Arrange();
}

void TeachingPage::changeEvent(QEvent* event) {
  Page::changeEvent(event);
  if (event->type() == QEvent::FontChange) {
    Arrange();
  }
}

/// A wide window shows people and lesson. A narrow one shows the people until somebody is chosen.
void TeachingPage::Arrange() {
  const int letter = fontMetrics().averageCharWidth();
  const bool isWide = width() >= kWideLetters * letter;
  m_panel->setMaximumWidth(kLessonLetters * letter);
  m_people->setVisible(isWide || !m_pupil);
  m_panel->setVisible(isWide || m_pupil);
}

}  // namespace home
