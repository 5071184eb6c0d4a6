#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "dialer/recent_calls.h"
#include "host/home/page.h"
#include "host/home/talk.h"
#include "host/home/work.h"

class QListWidget;
class QPushButton;

namespace home {

class ButtonRow;
class DialStage;

/// Hears a name and calls that person. What it hears lies in memory, and goes with the page, unless
/// the user keeps it as a voice tag.
class DialPage : public Page {
 public:
  struct Tools {
    TalkTools talk;
    std::function<std::vector<dialer::RecentCall>()> readCalls;
  };

  /// All outlive this.
  DialPage(Work& work, Frame& frame, Tools tools);
  ~DialPage() override;

  void OnShelf(const std::shared_ptr<const Shelf>& shelf) override;
  void OnShown(const std::u16string& tag) override;
  void OnLeft() override;

  /// Shows a step of the conversation.
  void OnStep(const TalkStep& step);
  /// The conversation is over. `problem` is why it could not be had, if it could not.
  void OnEnded(const std::u16string& problem);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  enum class State : std::uint8_t {
    kIdle,
    kListening,
    kSure,
    kChoosing,
    kCalling,
    kDialling,
    kOffer,
    kInCall,
  };

  void MakeButtons();
  void Hear();
  void CallAgain(int row);
  void Reply(dialer::Reply::Kind kind, std::size_t choice = 0);
  void ShowIdle();
  void OnAsked(const TalkStep& step);
  void OnOutcome(const TalkStep& step);
  void ShowCall();
  void Enter(State state);
  void ShowCalls();
  /// Returns whether a modem's call goes on that can be ended here.
  [[nodiscard]] bool IsInCall() const {
    return m_state == State::kInCall || (m_state == State::kOffer && m_canHangUp);
  }
  /// Takes the keys and clicks that stop the call which is about to begin. Returns whether the
  /// event goes no further.
  [[nodiscard]] bool StopsCall(QObject* watched, QEvent& event);

  Work& m_work;
  Frame& m_frame;
  const Tools m_tools;
  std::shared_ptr<const Shelf> m_shelf;  ///< Null until the store has been read.
  std::vector<dialer::RecentCall> m_calls;
  State m_state = State::kIdle;
  bool m_canTeach = false;  ///< There is a button that teaches.
  bool m_canHangUp = false;
  dialer::Step m_shown = dialer::Step::kSpeak;  ///< The latest one.
  TalkStep m_outcome;                           ///< Of the latest call.
  QString m_note;  ///< What went before: why it listens again, or what became of the call.
  // Owned by the widgets.
  DialStage* m_stage;
  ButtonRow* m_buttons;
  QWidget* m_callsTitle = nullptr;
  QListWidget* m_callList = nullptr;
  QPushButton* m_say = nullptr;
  QPushButton* m_call = nullptr;
  QPushButton* m_other = nullptr;
  QPushButton* m_again = nullptr;
  QPushButton* m_keep = nullptr;
  QPushButton* m_drop = nullptr;
  QPushButton* m_hangUp = nullptr;
  QPushButton* m_cancel = nullptr;
  QPushButton* m_teach = nullptr;
  Talk m_talk;  ///< Last: nothing of it goes on while the rest is destroyed.
};

}  // namespace home
