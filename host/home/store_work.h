#pragma once

#include <QObject>
#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/home/page_tasks.h"
#include "host/home/playback.h"
#include "host/home/task_thread.h"
#include "host/home/work.h"
#include "host/machine/backends.h"

namespace home {

/// The work on the real store. Everything that changes it is done by the Learning page, which
/// nobody sees, as the command line does it. One thread does that, and another one plays.
///
/// The destructor waits for what is being done, and drops what waits.
class StoreWork final : public Work {
 public:
  /// `options` outlive this.
  explicit StoreWork(const machine::Options& options);
  ~StoreWork() override;

  void OnLoaded(Show show) override { m_show = std::move(show); }
  void Load() override;
  void LoadIfChanged() override;

  void Play(const std::u16string& tag, Answer answer) override;
  void StopPlaying() override;

  void Delete(const std::vector<std::u16string>& tags, DeletedAnswer answer) override;
  void ListTrash(TrashAnswer answer) override;
  void Restore(const std::vector<std::u16string>& trashed, Answer answer) override;
  void Compare(const Lesson& lesson, ComparedAnswer answer) override;
  void Teach(const Lesson& lesson, TaughtAnswer answer) override;

 private:
  /// A file or folder as it was at some moment.
  struct Seen {
    std::filesystem::path path;
    std::filesystem::file_time_type time;  ///< The earliest time if it is not there.
    std::uintmax_t size = 0;               ///< 0 for a folder.

    friend bool operator==(const Seen&, const Seen&) = default;
  };

  [[nodiscard]] static Seen LookAt(const std::filesystem::path& path);

  /// Does `task` on the thread of work, and then what it returns on this one. If `isChange`, the
  /// store is loaded in between, so that an answer finds the change in the shelf.
  void Do(std::function<std::function<void()>()> task, bool isChange);
  void Answered(std::function<void()> answer);
  void ReadStore();

  const machine::Options& m_options;
  Show m_show;
  std::vector<Seen> m_seen;  ///< Before the latest load.
  std::shared_ptr<Playback> m_playback;
  std::atomic<bool> m_isLoadWaiting = false;
  bool m_hasRead = false;  ///< Of the thread of work.
  PageTasks m_tasks;       ///< Of the thread of work.
  QObject m_here;          ///< On the thread that asks. What is posted to it goes with it.
  TaskThread m_player;
  TaskThread m_thread;
};

}  // namespace home
