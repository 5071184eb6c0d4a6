#include "host/home/dial_page.h"

#include <gmock/gmock.h>

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <deque>

#include "tests/host/home/page_fixture.h"
#include "tests/support/signals.h"

namespace {

using dialer::Certainty;
using dialer::Step;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

/// The page over a machine in memory. The test says who is understood.
class DialPage : public testing::Test {
 protected:
  DialPage() {
    machine::WaveInScript script;
    script.sound = support::BytesOf(
        support::Mixed(support::Noise(33075, 20, 1), 9000, support::SpeechLike(9000, 9000, 2)));
    constexpr std::uint32_t kLook = 1102;  // What comes in about 50 ms.
    for (std::uint32_t bytes = kLook; bytes < script.sound.size(); bytes += kLook) {
      script.arrivals.push_back(bytes);
    }
    script.arrivals.push_back(static_cast<std::uint32_t>(script.sound.size()));
    m_machine.waveIn.SetScript(script);
    m_tags = {{u"100", 11, u"Mobile", {}, {}}};
    m_page.OnShelf(std::make_shared<home::Shelf>(home_test::MakePeople()));
    m_page.resize(360, 640);
    m_page.show();
    m_page.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&m_page));
    m_page.OnShown({});
  }

  [[nodiscard]] home::DialPage::Tools MakeTools() {
    return {{m_machine.time,
             [this](const std::function<void(const dialer::Parts&)>& use) {
               if (m_problem.empty()) {
                 use(MakeParts());
               }
               return m_problem;
             }},
            [this] { return m_calls; }};
  }
  [[nodiscard]] dialer::Parts MakeParts() {
    return {
        .tags = m_tags,
        .sound = {m_machine.waveIn, m_machine.waveOut, m_machine.time},
        .recognize =
            [this](std::span<const dialer::Take> /*takes*/) {
              dialer::Answer answer = m_answers.empty() ? dialer::Answer() : m_answers.front();
              if (!m_answers.empty()) {
                m_answers.pop_front();
              }
              return answer;
            },
        .lookUp =
            [](const dialer::Candidate& candidate) {
              return dialer::Callee{.candidate = candidate,
                                    .name = candidate.oid == 11 ? u"Anna Berg" : u"Bob Ray",
                                    .number = u"+49 171 555 0101"};
            },
        .call = [this](const dialer::Callee& callee, dialer::Waiter& waiter) -> dialer::CallResult {
          m_called.push_back(callee.name);
          return m_hasModem ? DialByModem(waiter) : dialer::CallState::kHandedOver;
        },
        .keep = {},
        .hangUp = [this]() -> platform::Result<void, dialer::CallFault> {
          ++m_hangUps;
          if (m_refusesToHangUp) {
            return platform::Failure(dialer::CallFault{dialer::CallProblem::kHangUpRefused, {}});
          }
          return {};
        }};
  }
  /// A modem that takes five seconds to dial.
  static dialer::CallResult DialByModem(dialer::Waiter& waiter) {
    for (int i = 0; i < 100; ++i) {
      if (!waiter.Wait(50)) {
        return platform::Failure(dialer::CallFault{dialer::CallProblem::kStopped, {}});
      }
    }
    return dialer::CallState::kDialled;
  }
  void Understand(Certainty certainty, const std::vector<std::int32_t>& oids) {
    dialer::Answer answer{certainty, {}};
    for (const std::int32_t oid : oids) {
      answer.candidates.push_back(
          {.tag = oid == 11 ? u"100" : u"", .oid = oid, .phoneKind = u"Mobile"});
    }
    m_answers.push_back(std::move(answer));
  }
  /// Lets time pass until the button is there.
  void AwaitButton(const char* name) {
    for (int i = 0; i < 400 && !Button(name).isVisible(); ++i) {
      Pass(50);
    }
    ASSERT_TRUE(Button(name).isVisible()) << name;
  }
  /// Anna is called, and the modem dials.
  void DialAnna() {
    m_hasModem = true;
    Understand(Certainty::kSure, {11, 15});
    Say();
    AwaitButton("callNow");
    Button("callNow").click();
    AwaitButton("hangUp");
  }
  /// The second of two people was meant, a modem called, and the question is whether to keep the
  /// take.
  void CallTheSecondOfTwo() {
    m_hasModem = true;
    Understand(Certainty::kOneOf, {11, 15});
    Say();
    AwaitTitle("Who is it?");
    Key(Qt::Key_2);
    AwaitTitle("Keep what you said");
  }
  /// Lets time pass until the title begins so.
  void AwaitTitle(const std::string& title) {
    constexpr int kMostSteps = 200;
    for (int i = 0; i < kMostSteps && Text("dialTitle").rfind(title, 0) != 0; ++i) {
      Pass(50);
    }
    ASSERT_THAT(Text("dialTitle"), StartsWith(title));
  }
  void Pass(std::uint32_t milliseconds) {
    m_machine.time.Sleep(milliseconds);
    QCoreApplication::processEvents();
  }
  void Say() { Button("sayName").click(); }
  [[nodiscard]] QPushButton& Button(const char* name) {
    return *m_page.findChild<QPushButton*>(QLatin1String(name));
  }
  [[nodiscard]] std::string Text(const char* name) {
    const auto* const label = m_page.findChild<QLabel*>(QLatin1String(name));
    return label->isVisible() ? label->text().toStdString() : std::string();
  }
  void Key(Qt::Key key) {
    QWidget* const focus = QApplication::focusWidget();
    QTest::keyClick(focus == nullptr ? &m_page : focus, key);
  }

  home_test::Machine m_machine;
  home_test::PageWork m_work;
  home_test::NotedFrame m_frame;
  std::vector<dialer::TaughtTag> m_tags;
  std::deque<dialer::Answer> m_answers;
  std::vector<dialer::RecentCall> m_calls;
  std::vector<std::u16string> m_called;
  bool m_hasModem = false;
  bool m_refusesToHangUp = false;
  int m_hangUps = 0;
  std::u16string m_problem;
  home::DialPage m_page{m_work, m_frame, MakeTools()};
};

TEST_F(DialPage, CallsWhoeverIsUnderstoodAfterTwoSeconds) {
  EXPECT_TRUE(Button("sayName").hasFocus());
  Understand(Certainty::kSure, {11});
  Say();
  AwaitTitle("Speak now");
  AwaitTitle("Anna Berg");
  EXPECT_NE(Text("dialText").find("+49 171 555 0101"), std::string::npos);
  EXPECT_NE(Text("dialText").find("Any key or a click stops the call."), std::string::npos);
  Pass(1500);
  EXPECT_THAT(m_called, IsEmpty());
  Pass(1000);
  AwaitTitle("Anna Berg");
  EXPECT_THAT(m_called, ElementsAre(u"Anna Berg"));
  EXPECT_TRUE(Button("sayName").isVisible());
  EXPECT_NE(Text("dialText").find("+49 171 555 0101"), std::string::npos)
      << "Whoever has to dial it sees it.";
}

TEST_F(DialPage, EscapeStopsTheCall) {
  Understand(Certainty::kSure, {11});
  Say();
  AwaitTitle("Anna Berg");
  Key(Qt::Key_Escape);
  Pass(3000);
  EXPECT_EQ(Text("dialTitle"), "Nobody was called");
  EXPECT_THAT(m_called, IsEmpty());
}

TEST_F(DialPage, AnyKeyStopsTheCallWhateverHasTheFocus) {
  for (const Qt::Key key : {Qt::Key_X, Qt::Key_Return, Qt::Key_Tab, Qt::Key_Space}) {
    Understand(Certainty::kSure, {11, 15});
    Say();
    AwaitTitle("Anna Berg");
    Key(key);
    Pass(3000);
    EXPECT_EQ(Text("dialTitle"), "Who is it instead?") << key;
    Key(Qt::Key_Escape);
    Pass(100);
    EXPECT_EQ(Text("dialTitle"), "Nobody was called");
  }
  EXPECT_THAT(m_called, IsEmpty());
}

TEST_F(DialPage, AClickStopsTheCall) {
  Understand(Certainty::kSure, {11});
  Say();
  AwaitTitle("Anna Berg");
  QTest::mouseClick(&m_page, Qt::LeftButton, {}, {10, 10});
  Pass(3000);
  EXPECT_THAT(m_called, IsEmpty());
}

TEST_F(DialPage, TheButtonCallsAtOnce) {
  Understand(Certainty::kSure, {11});
  Say();
  AwaitTitle("Anna Berg");
  QTest::mouseClick(&Button("callNow"), Qt::LeftButton);
  Pass(100);
  EXPECT_THAT(m_called, ElementsAre(u"Anna Berg"));
}

TEST_F(DialPage, OneOfThemIsChosenByItsNumberOrItsButton) {
  Understand(Certainty::kOneOf, {11, 15});
  Say();
  AwaitTitle("Who is it?");
  EXPECT_TRUE(Button("choice1").hasFocus());
  EXPECT_TRUE(
      Button("choice1").accessibleName().startsWith(QStringLiteral("1, Anna Berg, Mobile")));
  Key(Qt::Key_2);
  Pass(100);
  EXPECT_THAT(m_called, ElementsAre(u"Bob Ray"));
  Key(Qt::Key_Escape);  // The offer to keep the take.
  Pass(100);
  Understand(Certainty::kOneOf, {11, 15});
  Say();
  AwaitTitle("Who is it?");
  QTest::mouseClick(&Button("choice1"), Qt::LeftButton);
  Pass(100);
  EXPECT_THAT(m_called, ElementsAre(u"Bob Ray", u"Anna Berg"));
}

TEST_F(DialPage, WhoeverIsChosenFromHasTheEndOfTheNumberInSightAlsoInLargeLetters) {
  QFont large = m_page.font();
  large.setPointSizeF(20);
  m_page.setFont(large);
  const auto paint = [this](std::u16string_view number) {
    const dialer::Callee callee{.candidate = {.tag = {}, .oid = 11, .phoneKind = u"BusinessFax"},
                                .name = u"Anna Berg",
                                .number = std::u16string(number)};
    m_page.OnStep({Step::kOneOf, {callee, callee}, {}, {}, false});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);  // The choices before.
    QCoreApplication::processEvents();
    return Button("choice1").grab().toImage();
  };
  static_cast<void>(paint(u"+49 171 555 0101"));  // The layout is the same from now on.
  const QImage first = paint(u"+49 171 555 0101");
  ASSERT_TRUE(first == paint(u"+49 171 555 0101"));
  EXPECT_FALSE(first == paint(u"+49 171 555 0108"));
}

TEST_F(DialPage, ANameThatIsNotKnownIsAskedForAgain) {
  Understand(Certainty::kUnknown, {});
  Understand(Certainty::kSure, {11});
  Say();
  AwaitTitle("Speak now");
  for (int i = 0; i < 100 && Text("dialText").empty(); ++i) {
    Pass(50);
  }
  EXPECT_EQ(Text("dialText"), "I do not know that name. Say it once more, as you taught it.");
  AwaitTitle("Anna Berg");
}

TEST_F(DialPage, AfterACorrectionTheTakeIsKeptIfTheUserAgrees) {
  Understand(Certainty::kSure, {11, 15});
  Say();
  AwaitTitle("Anna Berg");
  QTest::mouseClick(&Button("somebodyElse"), Qt::LeftButton);
  AwaitTitle("Who is it instead?");
  Key(Qt::Key_1);
  AwaitTitle("Keep what you said as one more voice tag of Bob Ray?");
  EXPECT_THAT(m_called, ElementsAre(u"Bob Ray"));
  Button("keepTake").click();
  for (int i = 0; i < 20 && m_work.taught.empty(); ++i) {
    Pass(50);
  }
  ASSERT_THAT(m_work.taught, SizeIs(1));
  EXPECT_EQ(m_work.taught[0].oid, 15);
  EXPECT_EQ(m_work.taught[0].kind, u"Mobile");
  EXPECT_EQ(m_work.taught[0].replaced, u"") << "one more, and not another one";
  EXPECT_GT(m_work.taught[0].wave.size(), 10'000U);
  m_work.endTeaching({true, {}}, u"200", {});
  AwaitTitle("Bob Ray has one more voice tag");
}

TEST_F(DialPage, ATakeThatTheUserDoesNotWantIsNotKept) {
  Understand(Certainty::kSure, {11, 15});
  Say();
  AwaitTitle("Anna Berg");
  QTest::mouseClick(&Button("somebodyElse"), Qt::LeftButton);
  AwaitTitle("Who is it instead?");
  Key(Qt::Key_1);
  AwaitTitle("Keep what you said");
  Button("dropTake").click();
  Pass(200);
  EXPECT_THAT(m_work.taught, IsEmpty());
  EXPECT_TRUE(Button("sayName").isVisible());
}

TEST_F(DialPage, AfterANoTheNumberThatWasCalledIsShownAgain) {
  Understand(Certainty::kOneOf, {11, 15});
  Say();
  AwaitTitle("Who is it?");
  Key(Qt::Key_2);
  AwaitTitle("Keep what you said");
  EXPECT_NE(Text("dialText").find("+49 171 555 0101"), std::string::npos)
      << "Whoever has to dial it sees it.";
  Button("dropTake").click();
  AwaitTitle("Bob Ray");
  EXPECT_NE(Text("dialText").find("+49 171 555 0101"), std::string::npos);
}

TEST_F(DialPage, WhileAModemDialsAButtonHangsUp) {
  DialAnna();
  EXPECT_NE(Text("dialText").find("Calling Anna Berg…"), std::string::npos);
  EXPECT_TRUE(Button("hangUp").hasFocus());
  EXPECT_FALSE(Button("sayName").isVisible());
  Key(Qt::Key_Space);
  AwaitTitle("Anna Berg was not called");
  EXPECT_THAT(Text("dialText"), StartsWith("The call was stopped."));
  EXPECT_TRUE(Button("sayName").isVisible());
  EXPECT_FALSE(Button("hangUp").isVisible());
}

TEST_F(DialPage, EscapeHangsUpWhileAModemDials) {
  DialAnna();
  Key(Qt::Key_Escape);
  AwaitTitle("Anna Berg was not called");
}

TEST_F(DialPage, ACallThatAModemMadeIsEndedByAButton) {
  DialAnna();
  AwaitButton("sayName");
  EXPECT_TRUE(Button("hangUp").hasFocus());
  EXPECT_NE(Text("dialText").find("The number was dialled."), std::string::npos);
  Key(Qt::Key_Space);
  Pass(100);
  EXPECT_EQ(m_hangUps, 1);
  EXPECT_EQ(Text("dialTitle"), "Anna Berg");
  EXPECT_NE(Text("dialText").find("The call was ended."), std::string::npos);
  EXPECT_FALSE(Button("hangUp").isVisible());
}

TEST_F(DialPage, AHangUpInTheMomentOfTheAnswerEndsTheCall) {
  DialAnna();
  m_machine.time.Sleep(10'000);  // The modem has dialled, and the page does not know it yet.
  Button("hangUp").click();
  Pass(100);
  Pass(100);
  EXPECT_EQ(m_hangUps, 1);
}

TEST_F(DialPage, WhoeverLeavesWhileAModemDialsHangsUpAlsoInTheMomentOfTheAnswer) {
  DialAnna();
  m_machine.time.Sleep(10'000);  // The modem has dialled, and the page does not know it yet.
  m_page.OnLeft();
  Pass(100);
  EXPECT_EQ(m_hangUps, 1);
  m_page.OnShown({});
  EXPECT_FALSE(Button("hangUp").isVisible());
}

TEST_F(DialPage, ACallThatDoesNotEndCanBeEndedOnceMore) {
  m_refusesToHangUp = true;
  DialAnna();
  AwaitButton("sayName");
  Button("hangUp").click();
  Pass(100);
  EXPECT_NE(Text("dialText").find("The call was not ended. The modem does not take the command."),
            std::string::npos)
      << Text("dialText");
  m_refusesToHangUp = false;
  Button("hangUp").click();
  Pass(100);
  EXPECT_EQ(m_hangUps, 2);
  EXPECT_FALSE(Button("hangUp").isVisible());
}

TEST_F(DialPage, WhoeverComesBackDuringACallCanStillEndIt) {
  DialAnna();
  AwaitButton("sayName");
  m_page.OnLeft();
  Pass(60'000);
  EXPECT_EQ(m_hangUps, 0) << "The call goes on.";
  m_page.OnShown({});
  EXPECT_TRUE(Button("hangUp").isVisible());
  Button("hangUp").click();
  Pass(100);
  EXPECT_EQ(m_hangUps, 1);
}

TEST_F(DialPage, ACallCanBeEndedWhileItIsAskedWhetherToKeepATake) {
  CallTheSecondOfTwo();
  Button("hangUp").click();
  Pass(100);
  EXPECT_EQ(m_hangUps, 1);
  EXPECT_TRUE(Button("keepTake").isVisible());
  EXPECT_FALSE(Button("hangUp").isVisible());
}

TEST_F(DialPage, WhoeverLeavesDuringTheQuestionKeepsNothingAndCanStillEndTheCall) {
  CallTheSecondOfTwo();
  m_page.OnLeft();
  Pass(100);
  m_page.OnShown({});
  EXPECT_TRUE(Button("hangUp").isVisible());
  EXPECT_THAT(m_work.taught, IsEmpty());
}

TEST_F(DialPage, AnotherNameCanBeSaidDuringACall) {
  DialAnna();
  AwaitButton("sayName");
  Understand(Certainty::kSure, {15});
  Say();
  AwaitTitle("Speak now");
  AwaitTitle("Bob Ray");
  EXPECT_EQ(m_hangUps, 0);
}

TEST_F(DialPage, LeavingThePageStopsWhatGoesOn) {
  Understand(Certainty::kSure, {11});
  Say();
  AwaitTitle("Anna Berg");
  m_page.OnLeft();
  Pass(5000);
  EXPECT_THAT(m_called, IsEmpty());
  EXPECT_EQ(Text("dialTitle"), "Say a name");
  EXPECT_EQ(m_machine.waveIn.OpenDevices(), 0U);
}

TEST_F(DialPage, IfNoNameIsTaughtItLeadsToTeaching) {
  m_tags.clear();
  Say();
  AwaitTitle("No name is taught yet");
  Button("teachFirst").click();
  EXPECT_THAT(m_frame.shownPages, SizeIs(1));
  EXPECT_EQ(m_frame.shownPages[0].first, home::PageId::kTeaching);
}

TEST_F(DialPage, SaysWhyNothingCanBegin) {
  m_problem = u"The settings cannot be read.";
  Say();
  AwaitTitle("Nobody can be called now");
  EXPECT_EQ(Text("dialText"), "The settings cannot be read.");
}

TEST_F(DialPage, ListsTheLastCallsAndCallsOneAgain) {
  m_calls = {{1'795'299'005, 11, u"Mobile"}, {1'795'299'000, 99, u"Home"}};
  m_page.OnShown({});
  auto* const list = m_page.findChild<QListWidget*>();
  ASSERT_TRUE(list->isVisible());
  ASSERT_EQ(list->count(), 1) << "nobody knows whose number the other one was";
  EXPECT_TRUE(list->item(0)->text().startsWith(QStringLiteral("Anna Berg\nMobile · ")));
  list->setFocus();
  Key(Qt::Key_Return);
  AwaitTitle("Anna Berg");
  EXPECT_THAT(m_called, IsEmpty()) << "it can be stopped, too";
  Pass(3000);
  EXPECT_THAT(m_called, ElementsAre(u"Anna Berg"));
}

}  // namespace
