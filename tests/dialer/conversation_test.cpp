#include "dialer/conversation.h"

#include <gmock/gmock.h>

#include <deque>
#include <span>
#include <string>
#include <utility>

#include "audio/samples.h"
#include "tests/machine/simulated_wave_in.h"
#include "tests/machine/simulated_wave_out.h"
#include "tests/machine/simulation.h"
#include "tests/support/signals.h"

namespace {

using dialer::Answer;
using dialer::Callee;
using dialer::CallProblem;
using dialer::CallResult;
using dialer::Candidate;
using dialer::Certainty;
using dialer::NotHeard;
using dialer::Reply;
using dialer::Step;
using testing::ElementsAre;
using testing::IsEmpty;

/// A user who answers each step that waits for him from a list, and then does nothing.
class ScriptedFace final : public dialer::Face {
 public:
  explicit ScriptedFace(machine::Simulation& time) : m_time(time) {}

  void Show(const dialer::StepShown& shown) override {
    steps.push_back(shown.step);
    names.clear();
    for (const Callee& callee : shown.callees) {
      names.push_back(callee.name);
    }
    notHeard = shown.notHeard;
    whyNotKept = shown.whyNotKept;
    canHangUp = shown.canHangUp;
    problem = shown.call != nullptr && !*shown.call ? shown.call->error().problem
                                                    : CallProblem::kNoTelephoneProgram;
    if (shown.step != Step::kSpeak && !replies.empty() && replies.front().first == shown.step) {
      m_reply = replies.front().second;
      replies.pop_front();
    } else {
      m_reply = {};
    }
  }
  void ShowProgress(const dialer::ListeningProgress& /*progress*/) override {}

  [[nodiscard]] Reply Await(std::uint32_t milliseconds) override {
    if (m_reply.kind != Reply::Kind::kNone) {
      return std::exchange(m_reply, {});
    }
    if (milliseconds == platform::kNoLimit) {
      return {.kind = Reply::Kind::kStop};
    }
    m_time.Sleep(milliseconds);
    return {};
  }

  /// What is answered when a step is shown.
  std::deque<std::pair<Step, Reply>> replies;
  std::vector<Step> steps;
  std::vector<std::u16string> names;  ///< Of the callees of the last step.
  NotHeard notHeard = NotHeard::kStopped;
  CallProblem problem = CallProblem::kNoTelephoneProgram;
  std::string whyNotKept;
  bool canHangUp = false;

 private:
  machine::Simulation& m_time;
  Reply m_reply;
};

support::Samples Spoken(std::uint32_t seed) {
  return support::Mixed(support::Noise(33075, 20, 1), 9000, support::SpeechLike(9000, 9000, seed));
}

Candidate CandidateOf(std::u16string tag, std::int32_t oid) {
  return {.tag = std::move(tag), .oid = oid, .phoneKind = u"Mobile"};
}

const Candidate kAnna = CandidateOf(u"1", 10);
const Candidate kBob = CandidateOf(u"2", 20);
const Candidate kCarl = CandidateOf(u"3", 30);

class ConversationTest : public testing::Test {
 protected:
  ConversationTest() { Hear(Spoken(2)); }

  void Hear(const support::Samples& sound) {
    machine::WaveInScript script;
    script.sound = support::BytesOf(sound);
    m_waveIn.SetScript(script);
  }
  /// What the recognizer answers next.
  void Answers(Certainty certainty, std::vector<Candidate> candidates) {
    m_answers.push_back({.certainty = certainty, .candidates = std::move(candidates)});
  }
  void User(Step step, Reply::Kind kind, std::size_t choice = 0) {
    m_face.replies.emplace_back(step, Reply{.kind = kind, .choice = choice});
  }
  bool Run(dialer::Manner manner = {}) {
    return dialer::Conversation(m_parts, m_face, manner).HearAndCall();
  }

  [[nodiscard]] static Callee LookUp(const Candidate& candidate) {
    Callee callee{.candidate = candidate, .name = u"Anna", .number = u"555 0101"};
    if (candidate.oid == 20) {
      callee.name = u"Bob";
    } else if (candidate.oid == 30) {
      callee.name = u"Carl";
    } else if (candidate.oid != 10) {
      callee.name = u"Contact 99";
      callee.number.clear();
      callee.fault = "it is not among the contacts";
    }
    return callee;
  }

  machine::Simulation m_time;
  machine::SimulatedWaveIn m_waveIn;
  machine::SimulatedWaveOut m_waveOut;
  ScriptedFace m_face{m_time};
  std::deque<Answer> m_answers;
  std::vector<std::vector<support::Samples>> m_asked;  ///< Of the recognizer.
  std::vector<std::u16string> m_called;
  std::vector<std::pair<std::u16string, support::Samples>> m_kept;
  CallResult m_call = dialer::CallState::kHandedOver;
  /// A modem makes the calls, and can end them.
  void PlugModem() {
    m_hasModem = true;
    m_call = dialer::CallState::kDialled;
    m_parts.hangUp = [this] {
      ++m_hangUps;
      return m_hangingUp;
    };
  }

  bool m_hasModem = false;
  int m_hangUps = 0;
  platform::Result<void, dialer::CallFault> m_hangingUp;
  platform::Result<void, std::string> m_keeping;
  std::vector<dialer::TaughtTag> m_tags{{.name = u"1",
                                         .oid = 10,
                                         .phoneKind = u"Mobile",
                                         .features = {},
                                         .samples = support::Noise(400, 99, 1)},
                                        {.name = u"2",
                                         .oid = 20,
                                         .phoneKind = u"Mobile",
                                         .features = {},
                                         .samples = support::Noise(400, 99, 2)}};
  dialer::Parts m_parts{.tags = m_tags,
                        .sound = {.waveIn = m_waveIn, .waveOut = m_waveOut, .clock = m_time},
                        .recognize =
                            [this](std::span<const dialer::Take> takes) {
                              auto& asked = m_asked.emplace_back();
                              for (const dialer::Take take : takes) {
                                asked.emplace_back(take.begin(), take.end());
                              };
                              Answer answer;
                              if (!m_answers.empty()) {
                                answer = m_answers.front();
                                m_answers.pop_front();
                              }
                              return answer;
                            },
                        .lookUp = LookUp,
                        .call = [this](const Callee& callee, dialer::Waiter& waiter) -> CallResult {
                          m_called.push_back(callee.name);
                          if (m_hasModem && !waiter.Wait(10)) {
                            return platform::Failure(dialer::CallFault{CallProblem::kStopped, {}});
                          }
                          return m_call;
                        },
                        .keep =
                            [this](const Callee& callee, dialer::Take take) {
                              m_kept.emplace_back(callee.name,
                                                  support::Samples(take.begin(), take.end()));
                              return m_keeping;
                            }};
};

TEST_F(ConversationTest, WhoeverIsSureIsHeardAndCalledAfterTwoSeconds) {
  Answers(Certainty::kSure, {kAnna, kBob});
  EXPECT_TRUE(Run());
  EXPECT_THAT(m_face.steps, ElementsAre(Step::kSpeak, Step::kSure, Step::kCalling, Step::kCalled));
  EXPECT_THAT(m_called, ElementsAre(u"Anna"));
  ASSERT_EQ(m_waveOut.GetPlayed().size(), 2U) << "The tone, and the voice tag.";
  EXPECT_EQ(m_waveOut.GetPlayed()[1].bytes, audio::ToBytes(m_tags[0].samples));
  EXPECT_GE(m_time.GetElapsed(), 2000U);
  EXPECT_LT(m_time.GetElapsed(), 2500U);
}

TEST_F(ConversationTest, WhoeverIsSureIsCalledAtOnceIfNobodyWantsToWait) {
  Answers(Certainty::kSure, {kAnna});
  EXPECT_TRUE(Run({.waits = false, .asks = false}));
  EXPECT_LT(m_time.GetElapsed(), 500U);
  EXPECT_EQ(m_waveOut.GetPlayed().size(), 1U) << "The tone alone.";
}

TEST_F(ConversationTest, NobodyIsCalledIfNobodyCouldStopTheCall) {
  Answers(Certainty::kSure, {kAnna});
  EXPECT_FALSE(Run({.waits = true, .asks = false}));
  EXPECT_THAT(m_face.steps, ElementsAre(Step::kSpeak, Step::kSure, Step::kNobodyAsked));
  EXPECT_THAT(m_called, IsEmpty());
}

TEST_F(ConversationTest, TheUserStopsTheCallWhileTheTagIsPlayedAndAfterIt) {
  for (const int playing : {0, 10}) {
    machine::WaveOutScript script;
    script.stillPlaying = playing;
    m_waveOut.SetScript(script);
    Answers(Certainty::kSure, {kAnna, kBob});
    User(Step::kSure, Reply::Kind::kStop);
    EXPECT_FALSE(Run());
    EXPECT_EQ(m_face.steps.back(), Step::kStopped);
    EXPECT_EQ(m_waveOut.CountOpenDevices(), 0);
  }
  EXPECT_THAT(m_called, IsEmpty());
}

TEST_F(ConversationTest, TheUserCallsWithoutWaitingTwoSeconds) {
  Answers(Certainty::kSure, {kAnna});
  User(Step::kSure, Reply::Kind::kYes);
  EXPECT_TRUE(Run());
  EXPECT_LT(m_time.GetElapsed(), 500U);
}

TEST_F(ConversationTest, OneOfThreeIsChosenAndCalledAtOnce) {
  Answers(Certainty::kOneOf, {kAnna, kBob, kCarl});
  User(Step::kOneOf, Reply::Kind::kChoice, 2);
  EXPECT_TRUE(Run());
  EXPECT_THAT(m_called, ElementsAre(u"Carl"));
  EXPECT_LT(m_time.GetElapsed(), 500U);
}

TEST_F(ConversationTest, AChoiceThatIsNotThereIsNone) {
  Answers(Certainty::kOneOf, {kAnna, kBob});
  User(Step::kOneOf, Reply::Kind::kChoice, 2);
  EXPECT_FALSE(Run());
  EXPECT_THAT(m_called, IsEmpty());
}

TEST_F(ConversationTest, NobodyIsChosenIfNobodyCanBeAsked) {
  Answers(Certainty::kOneOf, {kAnna, kBob});
  EXPECT_FALSE(Run({.waits = false, .asks = false}));
  EXPECT_EQ(m_face.steps.back(), Step::kNobodyAsked);
}

TEST_F(ConversationTest, ANameThatIsSaidAgainCountsTogetherWithTheFirstTime) {
  Answers(Certainty::kOneOf, {kAnna, kBob});
  Answers(Certainty::kSure, {kAnna, kBob});
  User(Step::kOneOf, Reply::Kind::kAgain);
  EXPECT_TRUE(Run());
  ASSERT_EQ(m_asked.size(), 2U);
  ASSERT_EQ(m_asked[1].size(), 2U);
  EXPECT_EQ(m_asked[1][0], m_asked[0][0]);
  EXPECT_THAT(m_called, ElementsAre(u"Anna"));
}

TEST_F(ConversationTest, AnUnknownNameIsTriedAgainThreeTimesAndIsNoEvidence) {
  EXPECT_FALSE(Run());
  EXPECT_THAT(m_face.steps, ElementsAre(Step::kSpeak, Step::kUnknown, Step::kSpeak, Step::kUnknown,
                                        Step::kSpeak, Step::kUnknown, Step::kNotUnderstood));
  ASSERT_EQ(m_asked.size(), 3U);
  EXPECT_EQ(m_asked[2].size(), 1U);
}

TEST_F(ConversationTest, AFileIsHeardOnce) {
  m_parts.sound.hearsFile = true;
  EXPECT_FALSE(Run());
  EXPECT_THAT(m_face.steps, ElementsAre(Step::kSpeak, Step::kUnknown, Step::kNotUnderstood));
}

TEST_F(ConversationTest, IfNobodySpeaksItListensAgainAndAsksNoRecognizer) {
  Hear(support::Noise(33075, 20, 1));
  EXPECT_FALSE(Run());
  EXPECT_THAT(m_face.steps,
              ElementsAre(Step::kSpeak, Step::kNoSpeech, Step::kSpeak, Step::kNoSpeech,
                          Step::kSpeak, Step::kNoSpeech, Step::kNotUnderstood));
  EXPECT_THAT(m_asked, IsEmpty());
}

TEST_F(ConversationTest, ASilentMicrophoneIsReportedAtOnce) {
  Hear(support::Constant(33075, 0));
  EXPECT_FALSE(Run());
  EXPECT_THAT(m_face.steps, ElementsAre(Step::kSpeak, Step::kSilent));
}

TEST_F(ConversationTest, AMicrophoneThatIsMissingIsReported) {
  m_waveIn.SetScript({.deviceCount = 0});
  EXPECT_FALSE(Run());
  EXPECT_THAT(m_face.steps, ElementsAre(Step::kSpeak, Step::kNotHeard));
  EXPECT_EQ(m_face.notHeard, NotHeard::kNoMicrophone);
}

TEST_F(ConversationTest, WithoutTagsNobodyListens) {
  m_parts.tags = {};
  EXPECT_FALSE(Run());
  EXPECT_THAT(m_face.steps, ElementsAre(Step::kNothingTaught));
}

TEST_F(ConversationTest, TheUserStopsListening) {
  machine::WaveInScript script;
  script.sound = support::BytesOf(Spoken(2));
  script.arrivals = {0};
  m_waveIn.SetScript(script);
  // The tone is over; the stop comes while nothing has arrived yet.
  class Impatient final : public dialer::Face {
   public:
    void Show(const dialer::StepShown& shown) override { steps.push_back(shown.step); }
    void ShowProgress(const dialer::ListeningProgress& /*progress*/) override {}
    [[nodiscard]] Reply Await(std::uint32_t /*milliseconds*/) override {
      return {.kind = Reply::Kind::kNo};
    }
    std::vector<Step> steps;
  } face;
  EXPECT_FALSE(dialer::Conversation(m_parts, face, {}).HearAndCall());
  EXPECT_THAT(face.steps, ElementsAre(Step::kSpeak, Step::kStopped));
}

TEST_F(ConversationTest, SomebodyWhoCannotBeCalledIsSaidAndNotCalled) {
  Answers(Certainty::kSure, {CandidateOf(u"1", 99)});
  EXPECT_FALSE(Run());
  EXPECT_THAT(m_face.steps, ElementsAre(Step::kSpeak, Step::kSure, Step::kCannotCall));
  EXPECT_THAT(m_face.names, ElementsAre(u"Contact 99"));
  Answers(Certainty::kOneOf, {kAnna, CandidateOf(u"9", 99)});
  User(Step::kOneOf, Reply::Kind::kChoice, 1);
  EXPECT_FALSE(Run());
  EXPECT_EQ(m_face.steps.back(), Step::kCannotCall);
  EXPECT_THAT(m_face.names, ElementsAre(u"Contact 99", u"Anna"));
  EXPECT_THAT(m_called, IsEmpty());
}

TEST_F(ConversationTest, ACallThatFailsIsReportedWithItsReason) {
  Answers(Certainty::kSure, {kAnna});
  m_call = platform::Failure(dialer::CallFault{.problem = CallProblem::kBusy, .subject = {}});
  EXPECT_FALSE(Run());
  EXPECT_EQ(m_face.steps.back(), Step::kNotCalled);
  EXPECT_EQ(m_face.problem, CallProblem::kBusy);
}

TEST_F(ConversationTest, NoBobLeadsToBobAndOffersToKeepWhatWasMisheard) {
  Answers(Certainty::kSure, {kAnna, kBob, kCarl});
  User(Step::kSure, Reply::Kind::kNo);
  User(Step::kInstead, Reply::Kind::kChoice, 0);
  User(Step::kOffer, Reply::Kind::kYes);
  EXPECT_TRUE(Run());
  EXPECT_THAT(m_face.steps, ElementsAre(Step::kSpeak, Step::kSure, Step::kInstead, Step::kCalling,
                                        Step::kCalled, Step::kOffer, Step::kKept));
  EXPECT_THAT(m_called, ElementsAre(u"Bob"));
  ASSERT_EQ(m_kept.size(), 1U);
  EXPECT_EQ(m_kept[0].first, u"Bob");
  EXPECT_EQ(m_kept[0].second, m_asked[0][0]);
}

TEST_F(ConversationTest, NobodyWhoWasRejectedIsOfferedAgain) {
  Answers(Certainty::kSure, {kAnna, kBob});
  Answers(Certainty::kSure, {kAnna, kBob});
  User(Step::kSure, Reply::Kind::kNo);
  User(Step::kInstead, Reply::Kind::kAgain);
  EXPECT_FALSE(Run());
  // Bob is not sure only because Anna is out of the question.
  EXPECT_THAT(m_face.steps, ElementsAre(Step::kSpeak, Step::kSure, Step::kInstead, Step::kSpeak,
                                        Step::kOneOf, Step::kStopped));
}

TEST_F(ConversationTest, ACorrectionBySayingTheNameAgainKeepsTheTakeThatWasMisheard) {
  Answers(Certainty::kSure, {kAnna, kBob});
  Answers(Certainty::kSure, {kBob, kAnna});
  User(Step::kSure, Reply::Kind::kNo);
  User(Step::kInstead, Reply::Kind::kAgain);
  User(Step::kOffer, Reply::Kind::kYes);
  EXPECT_TRUE(Run());
  EXPECT_THAT(m_called, ElementsAre(u"Bob"));
  ASSERT_EQ(m_kept.size(), 1U);
  EXPECT_EQ(m_kept[0].second, m_asked[0][0]);
}

TEST_F(ConversationTest, NothingIsKeptWithoutAYes) {
  for (const Reply::Kind kind : {Reply::Kind::kNo, Reply::Kind::kStop, Reply::Kind::kNone}) {
    Answers(Certainty::kOneOf, {kAnna, kBob});
    User(Step::kOneOf, Reply::Kind::kChoice, 1);
    User(Step::kOffer, kind);
    EXPECT_TRUE(Run());
    EXPECT_EQ(m_face.steps.back(), Step::kOffer);
  }
  EXPECT_THAT(m_kept, IsEmpty());
}

TEST_F(ConversationTest, NothingIsOfferedIfTheFirstOneWasMeant) {
  Answers(Certainty::kOneOf, {kAnna, kBob});
  User(Step::kOneOf, Reply::Kind::kChoice, 0);
  EXPECT_TRUE(Run());
  EXPECT_EQ(m_face.steps.back(), Step::kCalled);
}

TEST_F(ConversationTest, ABadTakeIsNotOffered) {
  support::Samples begunTooEarly = Spoken(2);
  begunTooEarly.erase(begunTooEarly.begin(), begunTooEarly.begin() + 9700);
  Hear(begunTooEarly);
  Answers(Certainty::kOneOf, {kAnna, kBob});
  User(Step::kOneOf, Reply::Kind::kChoice, 1);
  EXPECT_TRUE(Run());
  EXPECT_EQ(m_face.steps.back(), Step::kCalled);
}

TEST_F(ConversationTest, ATakeThatCannotBeKeptIsReported) {
  m_keeping = platform::Failure(std::string("there are 100 voice tags"));
  Answers(Certainty::kOneOf, {kAnna, kBob});
  User(Step::kOneOf, Reply::Kind::kChoice, 1);
  User(Step::kOffer, Reply::Kind::kYes);
  EXPECT_TRUE(Run()) << "The call was made.";
  EXPECT_EQ(m_face.steps.back(), Step::kNotKept);
  EXPECT_EQ(m_face.whyNotKept, "there are 100 voice tags");
}

TEST_F(ConversationTest, WhateverTheUserDoesWhileAModemDialsStopsThat) {
  PlugModem();
  for (const Reply::Kind kind : {Reply::Kind::kHangUp, Reply::Kind::kStop, Reply::Kind::kNo}) {
    Answers(Certainty::kSure, {kAnna});
    User(Step::kDialling, kind);
    EXPECT_FALSE(Run());
    EXPECT_EQ(m_face.steps.back(), Step::kNotCalled);
    EXPECT_EQ(m_face.problem, CallProblem::kStopped);
  }
  EXPECT_EQ(m_hangUps, 0) << "The modem was asked while it dialled.";
}

TEST_F(ConversationTest, TheUserEndsTheCallOfAModem) {
  PlugModem();
  Answers(Certainty::kSure, {kAnna});
  User(Step::kInCall, Reply::Kind::kHangUp);
  EXPECT_TRUE(Run());
  EXPECT_THAT(m_face.steps, ElementsAre(Step::kSpeak, Step::kSure, Step::kCalling, Step::kDialling,
                                        Step::kCalled, Step::kInCall, Step::kHungUp));
  EXPECT_EQ(m_hangUps, 1);
  EXPECT_FALSE(m_face.canHangUp);
}

TEST_F(ConversationTest, ACallThatTheUserLeavesGoesOn) {
  PlugModem();
  Answers(Certainty::kSure, {kAnna});
  User(Step::kInCall, Reply::Kind::kStop);
  EXPECT_TRUE(Run());
  EXPECT_EQ(m_face.steps.back(), Step::kInCall);
  EXPECT_TRUE(m_face.canHangUp);
  EXPECT_EQ(m_hangUps, 0);
}

TEST_F(ConversationTest, ACallThatDoesNotEndCanBeEndedOnceMore) {
  PlugModem();
  m_hangingUp = platform::Failure(dialer::CallFault{CallProblem::kHangUpRefused, {}});
  Answers(Certainty::kSure, {kAnna});
  User(Step::kInCall, Reply::Kind::kHangUp);
  EXPECT_TRUE(Run());
  EXPECT_THAT(std::span(m_face.steps).last(4),
              ElementsAre(Step::kCalled, Step::kInCall, Step::kNotHungUp, Step::kInCall));
}

TEST_F(ConversationTest, ACallCanBeEndedWhileItIsAskedWhetherToKeepATake) {
  PlugModem();
  Answers(Certainty::kOneOf, {kAnna, kBob});
  User(Step::kOneOf, Reply::Kind::kChoice, 1);
  User(Step::kOffer, Reply::Kind::kHangUp);
  User(Step::kOffer, Reply::Kind::kYes);
  EXPECT_TRUE(Run());
  EXPECT_THAT(std::span(m_face.steps).last(5),
              ElementsAre(Step::kCalled, Step::kOffer, Step::kHungUp, Step::kOffer, Step::kKept));
  EXPECT_EQ(m_hangUps, 1);
}

TEST_F(ConversationTest, NobodyCanEndHereACallThatNoModemMade) {
  PlugModem();
  m_call = dialer::CallState::kHandedOver;
  Answers(Certainty::kSure, {kAnna});
  EXPECT_TRUE(Run());
  EXPECT_EQ(m_face.steps.back(), Step::kCalled);
}

TEST_F(ConversationTest, SomebodyWhoWasChosenOtherwiseIsCalledInTheSameWay) {
  EXPECT_TRUE(dialer::Conversation(m_parts, m_face, {}).Call(LookUp(kBob)));
  EXPECT_THAT(m_face.steps, ElementsAre(Step::kSure, Step::kCalling, Step::kCalled));
  EXPECT_GE(m_time.GetElapsed(), 2000U);
  User(Step::kSure, Reply::Kind::kNo);
  EXPECT_FALSE(dialer::Conversation(m_parts, m_face, {}).Call(LookUp(kBob)));
  EXPECT_EQ(m_face.steps.back(), Step::kStopped);
  EXPECT_EQ(m_called.size(), 1U);
}

}  // namespace
