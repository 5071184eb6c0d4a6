#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/home/shelf.h"
#include "host/machine/backends.h"

namespace home {

/// What the user has said and wants to keep as a voice tag.
struct Lesson {
  std::int32_t oid = 0;
  std::u16string kind;          ///< The word of the number's kind.
  std::vector<std::byte> wave;  ///< The recording as a wave file: 11,025 Hz, mono, 16 bit.
  std::u16string replaced;      ///< A tag that goes to the trash afterwards. Empty if none does.
};

/// How something ended that the window asked for.
struct Outcome {
  bool isDone = false;
  std::u16string message;  ///< A sentence to show: why it was not done, or what the user must know.
};

/// Does what the window asks for, one thing after another, on a thread of its own. Everything that
/// changes the store is done by the Learning page, which nobody sees, as the command line does it:
/// the page is open, and has its mutex, only meanwhile. Its confirmations are agreed to, since the
/// window has asked or offers an Undo.
///
/// Used by the thread that runs the event loop. That thread calls each answer, once, and not after
/// the destructor.
class Work {
 public:
  using Answer = std::function<void(const Outcome& outcome)>;
  /// `trashed` are the names of files in the trash, for Restore.
  using DeletedAnswer =
      std::function<void(const Outcome& outcome, const std::vector<std::u16string>& trashed)>;
  /// `tag` is the name of the new tag. It is empty if none was made.
  using TaughtAnswer = std::function<void(const Outcome& outcome, const std::u16string& tag,
                                          const std::vector<std::u16string>& trashed)>;

  /// `options` outlive this.
  explicit Work(const machine::Options& options);
  Work(const Work&) = delete;
  Work& operator=(const Work&) = delete;
  /// Waits for what is being done, and drops what waits.
  ~Work();

  /// Calls `show` with what the store holds, after each Load and after each change.
  void OnLoaded(std::function<void(std::shared_ptr<const Shelf> shelf)> show);
  void Load();

  /// Plays the recording of a tag. What is playing ends. Changes nothing.
  void Play(const std::u16string& tag, Answer answer);
  void StopPlaying();

  void Delete(const std::vector<std::u16string>& tags, DeletedAnswer answer);
  void Restore(const std::vector<std::u16string>& trashed, Answer answer);
  void Teach(const Lesson& lesson, TaughtAnswer answer);

 private:
  class Thread;
  std::unique_ptr<Thread> m_thread;
};

}  // namespace home
