#include "host/home/teaching_page.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTest>

#include "tests/host/home/page_fixture.h"
#include "tests/support/signals.h"

namespace {

using platform::WaveResult;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// The page over a machine in memory, with real keys and clicks.
class TeachingPage : public testing::Test {
 protected:
  TeachingPage() {
    m_page.OnShelf(std::make_shared<home::Shelf>(home_test::MakePeople()));
    m_page.resize(900, 600);
    m_page.show();
    m_page.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&m_page));
    m_page.OnShown({});
    Hear(Spoken());
  }

  static support::Samples Spoken() {
    return support::Mixed(support::Noise(33075, 20, 1), 9000, support::SpeechLike(9000, 9000, 2));
  }
  void Hear(const support::Samples& sound) {
    machine::WaveInScript script;
    script.sound = support::BytesOf(sound);
    m_machine.waveIn.SetScript(script);
  }
  void Pass(std::uint32_t milliseconds = 20'000) {
    m_machine.time.Sleep(milliseconds);
    QApplication::processEvents();
  }
  template <typename Widget>
  [[nodiscard]] Widget* Find(const char* name) {
    return m_page.findChild<Widget*>(QLatin1String(name));
  }
  /// What is shown there, or nothing.
  [[nodiscard]] std::string Text(const char* name) {
    const auto* const label = Find<QLabel>(name);
    return label->isVisible() ? label->text().toStdString() : std::string();
  }
  [[nodiscard]] bool IsOffered(const char* name) {
    return Find<QPushButton>(name)->isVisible() && Find<QPushButton>(name)->isEnabled();
  }
  void Click(const char* name) {
    ASSERT_TRUE(IsOffered(name)) << name;
    QTest::mouseClick(Find<QPushButton>(name), Qt::LeftButton);
  }
  static void Press(Qt::Key key) {
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    QTest::keyClick(QApplication::focusWidget(), key);
  }
  /// Finds somebody by what is typed, and chooses the first match.
  void Choose(const char* typed) {
    ASSERT_EQ(QApplication::focusWidget(), Find<QLineEdit>("peopleSearch"));
    QTest::keyClicks(QApplication::focusWidget(), QLatin1String(typed));
    Press(Qt::Key_Return);
  }
  /// Somebody has said the name, and looks at what was heard.
  void Say(const char* person = "robert") {
    Choose(person);
    Press(Qt::Key_Return);
    Pass();
  }

  home_test::Machine m_machine;
  home_test::PageWork m_work;
  home_test::NotedFrame m_frame;
  home::TeachingPage m_page{m_work, m_frame, m_machine.Get()};
};

TEST_F(TeachingPage, TeachesSomebodyByKeysAlone) {
  Choose("0107 rob");
  EXPECT_EQ(Text("lessonName"), "Robert");
  Press(Qt::Key_Return);
  EXPECT_EQ(Text("cue"), "Get ready…");
  Pass();
  EXPECT_EQ(Text("verdicts"), "The recording is good.");
  Press(Qt::Key_Return);  // Keep has the focus after a good take.
  ASSERT_THAT(m_work.taught, SizeIs(1));
  EXPECT_EQ(m_work.taught[0].oid, 15);
  EXPECT_EQ(m_work.taught[0].kind, u"Mobile");
  EXPECT_EQ(m_work.taught[0].replaced, u"");
  EXPECT_EQ(m_work.taught[0].wave, support::WaveFile(Spoken()));
  m_work.endTeaching({true, {}}, u"300", {});
  ASSERT_THAT(m_frame.reports, SizeIs(1));
  EXPECT_EQ(m_frame.reports[0].message, u"Learned Robert.");
  EXPECT_EQ(QApplication::focusWidget(), Find<QLineEdit>("peopleSearch")) << "for the next one";
  EXPECT_EQ(Find<QLineEdit>("peopleSearch")->text(), QString());
}

TEST_F(TeachingPage, ShowsTheCueTheTimeLeftAndTheLevelWhileSomebodySpeaks) {
  machine::WaveInScript script;
  script.sound = support::BytesOf(support::Tone(33075, 40, 16384));
  script.arrivals = {2000, 4000, 6000, 8000};
  m_machine.waveIn.SetScript(script);
  Choose("robert");
  Press(Qt::Key_Return);
  EXPECT_TRUE(IsOffered("cancel"));
  Pass(500 + 50 + 100 + 1000);
  EXPECT_EQ(Text("cue"), "Speak now");
  EXPECT_THAT(m_machine.waveOut.GetPlayed(), SizeIs(1)) << "the tone";
}

TEST_F(TeachingPage, LeavesNothingAfterEscapeWhileItRecordsAndAfterIt) {
  Choose("robert");
  Press(Qt::Key_Return);
  Pass(700);
  Press(Qt::Key_Escape);
  EXPECT_EQ(Text("lessonTitle"), "Say the name");
  Pass();
  EXPECT_EQ(Text("lessonTitle"), "Say the name") << "What was heard before is passed over.";
  EXPECT_EQ(m_machine.waveIn.OpenDevices(), 0U);
  Press(Qt::Key_Return);
  Pass();
  EXPECT_NE(Text("verdicts"), "");
  Press(Qt::Key_Escape);
  EXPECT_EQ(Text("lessonTitle"), "Say the name");
  Press(Qt::Key_Escape);
  EXPECT_EQ(Text("lessonName"), "");
  EXPECT_THAT(m_work.taught, IsEmpty());
}

TEST_F(TeachingPage, LeavesNothingIfItIsLeftWhileItRecordsOrBeforeTheTakeIsKept) {
  Choose("robert");
  Press(Qt::Key_Return);
  Pass(700);
  m_page.OnLeft();
  Pass();
  EXPECT_EQ(Text("lessonName"), "");
  EXPECT_EQ(m_machine.waveIn.OpenDevices(), 0U);
  m_page.OnShown({});
  Say();
  m_page.OnLeft();
  EXPECT_THAT(m_work.taught, IsEmpty());
  m_page.OnShown({});
  EXPECT_EQ(Text("verdicts"), "");
}

TEST_F(TeachingPage, PassesEscapeOnIfThereIsNothingToCancel) {
  QKeyEvent first(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
  Find<QLineEdit>("peopleSearch")->setText(QStringLiteral("ann"));
  QApplication::sendEvent(&m_page, &first);
  EXPECT_TRUE(first.isAccepted());
  EXPECT_EQ(Find<QLineEdit>("peopleSearch")->text(), QString());
  QKeyEvent second(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
  QApplication::sendEvent(&m_page, &second);
  EXPECT_FALSE(second.isAccepted());
}

TEST_F(TeachingPage, DiscardsATakeAndRecordsAnother) {
  Say();
  Click("discard");
  EXPECT_EQ(Text("lessonTitle"), "Say the name");
  Press(Qt::Key_Return);
  Pass();
  Click("record");
  EXPECT_EQ(Text("cue"), "Get ready…");
  Pass();
  EXPECT_THAT(m_work.compared, SizeIs(3));
  EXPECT_THAT(m_work.taught, IsEmpty());
}

TEST_F(TeachingPage, WarnsOfABadTakeAndKeepsItAllTheSameIfTheUserWants) {
  Hear(support::Samples(33075));
  Say();
  EXPECT_EQ(Text("verdicts"), "The recording is silent. The microphone may be muted.");
  EXPECT_EQ(QApplication::focusWidget(), Find<QPushButton>("record")) << "Enter records again.";
  Click("keep");
  EXPECT_THAT(m_work.taught, SizeIs(1));
}

TEST_F(TeachingPage, SaysThatAPartOfALongNameIsLeftOut) {
  Hear(support::Mixed(support::Noise(33075, 20, 1), 6000, support::SpeechLike(20'000, 9000, 4)));
  Say();
  EXPECT_EQ(
      Text("verdicts"),
      "The name is long. Its end is left out of the voice tag: only the marked part is kept.");
  Hear(support::Mixed(support::Noise(33075, 20, 1), 6000, support::SpeechLike(20'000, 9000, 2)));
  Click("record");
  Pass();
  EXPECT_THAT(Text("verdicts"), testing::StartsWith("The name is long. Its beginning is left out"));
}

TEST_F(TeachingPage, NamesWhoseNameIsTooAlikeAndPlaysBoth) {
  Say();
  EXPECT_FALSE(IsOffered("playBoth"));
  ASSERT_THAT(m_work.compared, SizeIs(1));
  m_work.endComparing({u"100", u"200"});
  EXPECT_EQ(Text("verdicts"),
            "It sounds like Anna Berg. The dialer may take one for the other.\n"
            "It sounds like 李小龙. The dialer may take one for the other.");
  Click("playBoth");
  EXPECT_THAT(m_work.played, IsEmpty()) << "first what was just said";
  Pass();
  EXPECT_THAT(m_machine.waveOut.GetPlayed(), SizeIs(2)) << "the tone, and the take";
  EXPECT_THAT(m_work.played, ElementsAre(u"100"));
  EXPECT_EQ(Find<QPushButton>("hear")->text(), QStringLiteral("Sto&p"));
  m_work.endPlaying({true, {}});
  EXPECT_EQ(Find<QPushButton>("hear")->text(), QStringLiteral("&Hear it"));
  EXPECT_TRUE(IsOffered("keep")) << "A warning never forbids.";
}

TEST_F(TeachingPage, NamesTheThreeMostAlikeAndCountsTheOthers) {
  home::Shelf shelf = home_test::MakePeople();
  for (const auto* name : {u"301", u"302", u"303"}) {
    shelf.tags.push_back(shelf.tags[1]);
    shelf.tags.back().name = name;
  }
  m_page.OnShelf(std::make_shared<home::Shelf>(shelf));
  Say();
  m_work.endComparing({u"100", u"200", u"301", u"302"});
  EXPECT_THAT(Text("verdicts"), testing::EndsWith("\nIt sounds like 1 other name too."));
  Click("record");
  Pass();
  m_work.endComparing({u"100", u"200", u"301", u"302", u"303"});
  EXPECT_THAT(Text("verdicts"), testing::EndsWith("\nIt sounds like 2 other names too."));
  EXPECT_EQ(QString::fromStdString(Text("verdicts")).count(u'\n'), 3);
}

TEST_F(TeachingPage, StopsATagThatIsStillHeardBeforeItRecords) {
  Choose("robert");
  EXPECT_EQ(m_work.stops, 0);
  Press(Qt::Key_Return);
  EXPECT_EQ(m_work.stops, 1);
}

TEST_F(TeachingPage, PassesOverAComparisonOfAnEarlierTake) {
  Say();
  const auto late = m_work.endComparing;
  Click("record");
  Pass();
  late({u"100"});
  EXPECT_EQ(Text("verdicts"), "The recording is good.");
}

TEST_F(TeachingPage, LetsThePartThatIsKeptBeHeardAndStopped) {
  Say();
  Click("hear");
  Pass();
  const auto played = m_machine.waveOut.GetPlayed();
  ASSERT_THAT(played, SizeIs(2));
  EXPECT_LT(played[1].bytes.size(), 66150U) << "without the room around it";
  EXPECT_GT(played[1].bytes.size(), 18000U);
  Click("hear");
  Click("hear");
  EXPECT_EQ(Find<QPushButton>("hear")->text(), QStringLiteral("&Hear it")) << "stopped";
}

TEST_F(TeachingPage, SaysThatThereIsNoMicrophoneAndGoesOnByItselfWhenThereIsOne) {
  machine::WaveInScript none;
  none.deviceCount = 0;
  m_machine.waveIn.SetScript(none);
  Choose("robert");
  Press(Qt::Key_Return);
  Pass();
  EXPECT_EQ(Text("lessonTitle"), "There is no microphone");
  Hear(Spoken());
  Pass();
  EXPECT_EQ(Text("verdicts"), "The recording is good.");
}

TEST_F(TeachingPage, SaysThatTheMicrophoneGivesNothingOrWasLost) {
  machine::WaveInScript busy;
  busy.open = WaveResult::kFailed;
  m_machine.waveIn.SetScript(busy);
  Say();
  EXPECT_EQ(Text("lessonTitle"), "The microphone gives no sound");
  EXPECT_FALSE(IsOffered("keep"));
  machine::WaveInScript lost;
  lost.unprepare = WaveResult::kNoDevice;
  lost.arrivals = {0};
  m_machine.waveIn.SetScript(lost);
  Click("record");
  Pass();
  EXPECT_EQ(Text("lessonTitle"), "The microphone was lost");
  EXPECT_FALSE(IsOffered("keep"));
}

TEST_F(TeachingPage, TeachesANumberThatHasATagAgain) {
  Say("171");
  Click("keep");
  ASSERT_THAT(m_work.taught, SizeIs(1));
  EXPECT_EQ(m_work.taught[0].replaced, u"100");
}

TEST_F(TeachingPage, IsOpenedForATagAndGoesBackToTheListWhenItIsTaught) {
  m_page.OnShown(u"200");
  EXPECT_EQ(Text("lessonName"), "李小龙");
  EXPECT_EQ(QApplication::focusWidget(), Find<QPushButton>("record"));
  Press(Qt::Key_Return);
  Pass();
  Click("keep");
  EXPECT_EQ(m_work.taught[0].replaced, u"200");
  m_work.endTeaching({true, {}}, u"300", {u"x"});
  EXPECT_EQ(m_frame.shownTags, 1);
}

TEST_F(TeachingPage, SaysThatATagCannotBeTaughtAgainIfItsNumberHasGone) {
  home::Shelf shelf = home_test::MakePeople();
  shelf.tags[0].kind = u"Car";
  shelf.tags[1].oid.reset();
  m_page.OnShelf(std::make_shared<home::Shelf>(shelf));
  for (const auto* tag : {u"100", u"200", u"999"}) {
    m_frame.reports.clear();
    m_page.OnShown(tag);
    EXPECT_EQ(Text("lessonName"), "");
    EXPECT_THAT(m_frame.reports, SizeIs(1));
  }
}

TEST_F(TeachingPage, SaysWhyANameWasNotLearnedAndKeepsTheTakeForAnotherTry) {
  Say();
  Click("keep");
  EXPECT_EQ(Text("lessonTitle"), "Learning the name…");
  Press(Qt::Key_Escape);
  EXPECT_EQ(Text("lessonTitle"), "Learning the name…") << "It is too late to cancel.";
  m_work.endTeaching({false, u"The disk is full."}, u"", {});
  EXPECT_EQ(m_frame.reports.back().message, u"The disk is full.");
  EXPECT_FALSE(m_frame.reports.back().isDone);
  Click("keep");
  ASSERT_THAT(m_work.taught, SizeIs(2));
  EXPECT_EQ(m_work.taught[1].wave, support::WaveFile(Spoken()));
}

TEST_F(TeachingPage, NamesWhoseNameIsTooAlikeAlsoAfterATakeThatCouldNotBeKept) {
  Say();
  m_work.endComparing({u"100"});
  Click("keep");
  m_work.endTeaching({false, u"The tags are in use."}, u"", {});
  ASSERT_THAT(m_work.compared, SizeIs(2));
  m_work.endComparing({u"100"});
  EXPECT_EQ(Text("verdicts"), "It sounds like Anna Berg. The dialer may take one for the other.");
  EXPECT_TRUE(IsOffered("playBoth"));
}

TEST_F(TeachingPage, ShowsPeopleAndLessonSideBySideOnlyIfThereIsRoom) {
  auto* const people = Find<QListView>("people");
  Choose("robert");
  EXPECT_TRUE(people->isVisible());
  EXPECT_EQ(Text("lessonName"), "Robert");
  m_page.resize(360, 600);
  EXPECT_FALSE(people->isVisible());
  EXPECT_EQ(Text("lessonName"), "Robert");
  Click("leave");
  EXPECT_TRUE(people->isVisible());
  EXPECT_EQ(Text("lessonTitle"), "") << "No lesson without somebody.";
}

TEST_F(TeachingPage, FitsOnAPhoneInEveryStateWithTargetsForAFinger) {
  m_page.resize(360, 584);
  Say();
  m_work.endComparing({u"100"});
  QApplication::processEvents();
  EXPECT_EQ(m_page.width(), 360);
  for (const char* name : {"keep", "record", "hear", "playBoth", "discard"}) {
    const auto* const button = Find<QPushButton>(name);
    ASSERT_TRUE(button->isVisible()) << name;
    EXPECT_GE(button->height(), 44) << name;
    EXPECT_GE(button->width(), button->sizeHint().width()) << name;
    EXPECT_TRUE(m_page.rect().contains(QRect(button->mapTo(&m_page, QPoint()), button->size())))
        << name;
  }
}

}  // namespace
