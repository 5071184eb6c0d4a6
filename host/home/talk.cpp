#include "host/home/talk.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <utility>

#include "audio/samples.h"
#include "backends/text/utf.h"

namespace home {
namespace {

using dialer::Step;
using ReplyKind = dialer::Reply::Kind;

/// So often it is shown how much time is left to stop a call.
constexpr std::uint32_t kCountInterval = 100;

TalkStep ToTalkStep(const dialer::StepShown& shown) {
  TalkStep step{shown.step,
                {shown.callees.begin(), shown.callees.end()},
                shown.notHeard,
                {},
                shown.canHangUp};
  if (shown.call != nullptr) {
    step.outcome = text::FromUtf8(*shown.call ? dialer::Explain(**shown.call)
                                              : dialer::Explain(shown.call->error()));
  } else if (shown.step == Step::kNotKept) {
    step.outcome = text::FromUtf8(shown.whyNotKept);
  } else if (shown.step == Step::kCannotCall) {
    step.outcome = text::FromUtf8(shown.callees[0].fault);
  }
  return step;
}

/// Returns whether a reply that was given before a step is none to that step. Whoever wants to end
/// a call means it, whatever is shown by then.
bool IsOutdated(const dialer::Reply& reply, Step step) {
  const bool asks = step == Step::kOneOf || step == Step::kInstead || step == Step::kOffer ||
                    step == Step::kInCall;
  return asks && reply.kind != ReplyKind::kHangUp;
}

}  // namespace

/// One conversation: a face that shows each step in the event loop, and waits for what comes back
/// from there. What the user wants passes from one thread to the other under the mutex; the event
/// only wakes whoever waits.
class Talk::Job final : public dialer::Face {
 public:
  Job(const Events& events, QObject& context, std::unique_ptr<platform::Event> woken)
      : m_events(events), m_context(context), m_woken(std::move(woken)) {}

  // On the thread of the event loop.

  void Stop() {
    m_isSilent = true;
    Wake([this] { m_isStopped = true; });
  }
  void Take(dialer::Reply reply) {
    Wake([this, reply] { m_reply = reply; });
  }
  void TakeOutcome(const Outcome& outcome) {
    Wake([this, &outcome] { m_outcome = outcome; });
  }

  void End(const std::u16string& problem) const { m_events.ended(problem); }

  // On the thread of the conversation.

  void Show(const dialer::StepShown& shown) override {
    m_step = shown.step;
    {
      const std::lock_guard lock(m_mutex);
      if (m_reply && IsOutdated(*m_reply, shown.step)) {
        m_reply.reset();
      }
    }
    Post([this, step = ToTalkStep(shown)] { m_events.show(step); });
  }

  void ShowProgress(const dialer::ListeningProgress& progress) override {
    Post([this, progress] { m_events.listening(progress); });
  }

  [[nodiscard]] dialer::Reply Await(std::uint32_t milliseconds) override {
    // The time in which a call can be stopped is counted down in sight. Any other wait is one wait.
    const bool counts = m_step == Step::kSure && milliseconds == dialer::kSecondThoughts;
    std::uint32_t left = milliseconds;
    for (;;) {
      if (const auto reply = TakeReply()) {
        return *reply;
      }
      if (left == 0) {
        return {};
      }
      if (counts) {
        Post([this, left] { m_events.waiting(left); });
      }
      const std::uint32_t slice = counts ? std::min(left, kCountInterval) : left;
      if (m_woken->Wait(slice) == platform::WaitResult::kFailed) {
        return {.kind = ReplyKind::kStop};
      }
      left = left == platform::kNoLimit ? left : left - slice;
    }
  }

  /// Lets the event loop keep a take, and waits until that is done.
  [[nodiscard]] platform::Result<void, std::string> Keep(const std::shared_ptr<Job>& self,
                                                         const dialer::Callee& callee,
                                                         dialer::Take take) {
    Lesson lesson{
        callee.candidate.oid.value_or(0), callee.candidate.phoneKind, audio::ToWaveFile(take), {}};
    // The store has a thread of its own, which the event loop asks. So the answer comes by way of
    // the event loop, too.
    Post([this, self, lesson = std::move(lesson)] {
      m_events.keep(lesson, [self](const Outcome& outcome) { self->TakeOutcome(outcome); });
    });
    for (;;) {
      {
        const std::lock_guard lock(m_mutex);
        m_woken->Reset();
        if (m_outcome && m_outcome->isDone) {
          return {};
        }
        if (m_outcome || m_isStopped) {
          return platform::Failure(m_outcome ? text::ToUtf8(m_outcome->message) : std::string());
        }
      }
      if (m_woken->Wait(platform::kNoLimit) == platform::WaitResult::kFailed) {
        return platform::Failure(std::string());
      }
    }
  }

  /// Lets the event loop call `call`, unless the conversation has been stopped by then.
  void Post(std::function<void()> call) {
    QMetaObject::invokeMethod(
        &m_context,
        [self = m_self.lock(), call = std::move(call)] {
          if (self && !self->m_isSilent) {
            call();
          }
        },
        Qt::QueuedConnection);
  }

  std::weak_ptr<Job> m_self;  ///< Set before the thread begins.

 private:
  template <typename Change>
  void Wake(Change change) {
    const std::lock_guard lock(m_mutex);
    change();
    m_woken->Set();
  }

  std::optional<dialer::Reply> TakeReply() {
    const std::lock_guard lock(m_mutex);
    m_woken->Reset();
    // A user who hangs up and goes away does not want the call, even if it has just begun.
    if (m_isStopped && !(m_reply && m_reply->kind == ReplyKind::kHangUp)) {
      return dialer::Reply{.kind = ReplyKind::kStop};
    }
    return std::exchange(m_reply, std::nullopt);
  }

  const Events& m_events;
  QObject& m_context;
  const std::unique_ptr<platform::Event> m_woken;
  bool m_isSilent = false;     ///< Of the thread of the event loop.
  Step m_step = Step::kSpeak;  ///< Of the thread of the conversation.
  std::mutex m_mutex;          ///< For the rest.
  bool m_isStopped = false;
  std::optional<dialer::Reply> m_reply;
  std::optional<Outcome> m_outcome;  ///< Of what was to be kept.
};

Talk::Talk(TalkTools tools, Events events)
    : m_tools(std::move(tools)),
      m_events(std::move(events)),
      m_context(std::make_unique<QObject>()) {}

Talk::~Talk() { Stop(); }

void Talk::Hear() {
  Start([](dialer::Conversation& conversation, const dialer::Parts& /*parts*/) {
    static_cast<void>(conversation.HearAndCall());
  });
}

void Talk::Call(const dialer::Candidate& candidate) {
  Start([candidate](dialer::Conversation& conversation, const dialer::Parts& parts) {
    static_cast<void>(conversation.Call(parts.lookUp(candidate)));
  });
}

void Talk::Start(std::function<void(dialer::Conversation&, const dialer::Parts&)> talk) {
  Stop();
  auto woken = m_tools.threads.CreateManualResetEvent();
  if (!woken) {
    return;
  }
  const auto job = std::make_shared<Job>(m_events, *m_context, std::move(*woken));
  job->m_self = job;
  auto started = m_tools.threads.Start(
      // The conversation before may still hold the microphone or the modem, so its end is waited
      // for.
      [job, talk = std::move(talk), prepare = m_tools.prepare, previous = m_thread]() mutable {
        if (previous) {
          static_cast<void>(previous->Wait(platform::kNoLimit));
          previous.reset();
        }
        const std::u16string problem = prepare([&](const dialer::Parts& given) {
          dialer::Parts parts = given;
          parts.keep = [&job](const dialer::Callee& callee, dialer::Take take) {
            return job->Keep(job, callee, take);
          };
          dialer::Conversation conversation(parts, *job, {});
          talk(conversation, parts);
        });
        job->Post([job = job.get(), problem] { job->End(problem); });
      },
      platform::ThreadStart::kRunning);
  if (started) {
    m_job = job;
    m_thread = std::move(*started);
  }
}

void Talk::Reply(dialer::Reply reply) {
  if (m_job) {
    m_job->Take(reply);
  }
}

void Talk::Stop() {
  if (m_job) {
    m_job->Stop();
    m_job.reset();
  }
}

}  // namespace home
