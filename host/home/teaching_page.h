#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/home/page.h"
#include "host/home/take_recorder.h"
#include "host/home/work.h"

namespace home {

class LessonPanel;
class PeopleList;

/// Teaches names: somebody is chosen, the name is said, and the recording is kept or not. What was
/// said lies in memory only until it is kept, so to leave the page leaves nothing.
class TeachingPage : public Page {
 public:
  /// All outlive this.
  TeachingPage(Work& work, Frame& frame, const Sound& sound);
  ~TeachingPage() override;

  void OnShelf(const std::shared_ptr<const Shelf>& shelf) override;
  void OnShown(const std::u16string& tag) override;
  void OnLeft() override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  enum class State : std::uint8_t { kChoosing, kReady, kRecording, kHeard, kKeeping };

  /// Who is taught.
  struct Pupil {
    Person person;
    Number number;
    std::u16string replaced;  ///< The tag that is taught again. Empty if none is.
  };

  void Choose(const Person& person, const Number& number, const std::u16string& replaced);
  [[nodiscard]] bool ChooseOf(const std::u16string& name);
  [[nodiscard]] std::u16string FindTagOf(const Person& person, const Number& number) const;
  void Leave();
  void Record();
  void OnHeard(HeardTake take);
  void OnCompared(const std::vector<std::u16string>& alike);
  void Discard();
  void Hear();
  void PlayBoth();
  void Silence();
  void Keep();
  void OnTaught(const Outcome& outcome);
  void Arrange();
  [[nodiscard]] Lesson ToLesson() const;
  [[nodiscard]] std::vector<std::int16_t> KeptSamples() const;
  [[nodiscard]] const Tag* FindTag(const std::u16string& name) const;

  Work& m_work;
  Frame& m_frame;
  TakeRecorder m_recorder;
  std::shared_ptr<const Shelf> m_shelf;  ///< Null until the store has been read.
  bool m_isForOneTag = false;            ///< Opened to teach a tag again, which is all.
  State m_state = State::kChoosing;
  std::optional<Pupil> m_pupil;
  HeardTake m_take;
  std::u16string m_alike;  ///< The tag that the take is most alike to. Empty if there is none.
  bool m_isPlaying = false;
  int m_lesson = 0;  ///< How many takes there were. An answer to an earlier one is passed over.
  // Owned by the widgets.
  PeopleList* m_people;
  LessonPanel* m_panel;
};

}  // namespace home
