#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "host/home/shelf.h"
#include "host/home/take_recorder.h"

class QBoxLayout;
class QLabel;
class QProgressBar;
class QPushButton;
class QStackedWidget;

namespace home {

class Avatar;
class ButtonRow;
class LevelMeter;
class LiveLabel;
class WavePicture;

/// Where a name is spoken, heard and judged. Shows what it is given, and asks for what its buttons
/// stand for. Knows neither microphone nor store.
class LessonPanel : public QWidget {
 public:
  /// What the buttons ask for.
  struct Acts {
    std::function<void()> record;
    std::function<void()> cancel;  ///< The recording that is being made.
    std::function<void()> keep;
    std::function<void()> discard;
    std::function<void()> hear;      ///< Or stops what is heard.
    std::function<void()> playBoth;  ///< What was said, and the tag that it is too alike to.
    std::function<void()> leave;
  };

  LessonPanel(Acts acts, QWidget* parent);

  /// Nobody is chosen.
  void ShowNobody();
  /// Somebody is chosen, and nothing said yet.
  void ShowReady(const Person& person, const Number& number, bool hasTag);
  /// A recording is being made.
  void ShowProgress(const TakeProgress& progress);
  /// A recording was made. It is not kept yet.
  void ShowTake(const HeardTake& take);
  /// The recording sounds like the names of these people.
  void ShowAlike(const std::vector<std::u16string>& people);
  void ShowPlaying(bool isPlaying);
  /// The recording is being kept.
  void ShowKeeping();

 private:
  [[nodiscard]] QWidget* MakeHeader();
  [[nodiscard]] QWidget* MakeHint();
  [[nodiscard]] QWidget* MakeRecording();
  [[nodiscard]] QWidget* MakeTake();
  void MakeButtons(const Acts& acts);
  void ShowHint(const QString& title, const QString& text);
  void ShowVerdicts();

  // Owned by the widgets.
  Avatar* m_avatar = nullptr;
  QLabel* m_name = nullptr;
  QLabel* m_number = nullptr;
  QStackedWidget* m_stage = nullptr;
  QWidget* m_hintPage = nullptr;
  LiveLabel* m_hintTitle = nullptr;
  QLabel* m_hint = nullptr;
  QWidget* m_recordingPage = nullptr;
  LiveLabel* m_cue = nullptr;
  QProgressBar* m_left = nullptr;
  LevelMeter* m_meter = nullptr;
  QWidget* m_takePage = nullptr;
  WavePicture* m_wave = nullptr;
  QLabel* m_mark = nullptr;
  LiveLabel* m_verdicts = nullptr;
  QStringList m_sentences;
  ButtonRow* m_buttons = nullptr;
  QPushButton* m_record = nullptr;
  QPushButton* m_cancel = nullptr;
  QPushButton* m_keep = nullptr;
  QPushButton* m_hear = nullptr;
  QPushButton* m_playBoth = nullptr;
  QPushButton* m_discard = nullptr;
  QPushButton* m_leave = nullptr;
};

}  // namespace home
