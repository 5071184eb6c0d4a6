#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <filesystem>
#include <functional>
#include <utility>

#include "host/home/take_recorder.h"
#include "host/home/task_thread.h"
#include "host/home/work.h"
#include "host/machine/backends.h"
#include "host/machine/places.h"

namespace home {

/// Does errands of the set-up page one after another, on a thread of its own, since the desktop's
/// address books and the sound server can take seconds. Used by the thread of the event loop. The
/// destructor waits for the errand that is being done, and drops the others.
class Errands {
 public:
  /// Calls `errand` on the thread of the errands, and then `answer` with its result on the thread
  /// of the event loop. `answer` is not called after the destructor.
  template <typename Errand, typename Answer>
  void Do(Errand errand, Answer answer) {
    m_thread.Do([this, errand = std::move(errand), answer = std::move(answer)] {
      Tell([answer, result = errand()] { answer(result); });
    });
  }

  /// Calls `call` on the thread of the event loop, but not after the destructor. May be called from
  /// any thread.
  void Tell(std::function<void()> call) {
    QMetaObject::invokeMethod(&m_here, std::move(call), Qt::QueuedConnection);
  }

 private:
  QObject m_here;  ///< What is posted to it goes with it.
  TaskThread m_thread;
};

/// What the set-up page asks the user in windows of their own.
struct Questions {
  /// Returns the path of a file to open, and of one to write. Returns an empty text if the user
  /// wants none. `name` is proposed.
  std::function<QString(QWidget* parent, const QString& title, const QString& filter)> openFile;
  std::function<QString(QWidget* parent, const QString& title, const QString& filter,
                        const QString& name)>
      saveFile;
  /// Returns whether the user presses `yes` and not `no`, which is the button for Escape.
  std::function<bool(QWidget* parent, const QString& question, const QString& yes,
                     const QString& no)>
      agrees;
};

/// Returns the questions of the desktop.
[[nodiscard]] Questions DesktopQuestions();

/// What the set-up page works with. All of it outlives the page.
struct SetupTools {
  const machine::Options& options;
  Work& work;  ///< Loads the store again after a change.
  Sound sound;
  platform::WaveInputs& inputs;
  std::filesystem::path languages;  ///< The folder of the language files.
  /// Starts another program of the system. Returns false if it cannot be started.
  std::function<bool(const machine::Program& program, const QStringList& arguments)> start;
  Questions questions = DesktopQuestions();
};

}  // namespace home
