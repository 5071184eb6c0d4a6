#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/home/shelf.h"

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

/// A voice tag in the trash.
struct DeletedTag {
  std::u16string file;              ///< Its name in the trash, for Restore.
  std::optional<std::int32_t> oid;  ///< Of the person. Nothing if it is not known.
  std::u16string kind;              ///< The word of the number's kind.
  std::u16string text;              ///< As the sheet listed it: the person and the number.
  std::int64_t deletedAt = 0;       ///< Unix time in seconds.
  std::u16string obstacle;          ///< A sentence if it cannot be restored now. Else empty.
};

/// Does what the window asks for, one thing after another, and never on the thread that asks.
///
/// Used by the thread that runs the event loop. That thread calls each answer, once, and not before
/// the method has returned, nor after the destructor.
class Work {
 public:
  using Show = std::function<void(std::shared_ptr<const Shelf> shelf)>;
  using Answer = std::function<void(const Outcome& outcome)>;
  /// `trashed` are the names of files in the trash, for Restore.
  using DeletedAnswer =
      std::function<void(const Outcome& outcome, const std::vector<std::u16string>& trashed)>;
  /// `tags` begin with the latest deletion.
  using TrashAnswer =
      std::function<void(const Outcome& outcome, const std::vector<DeletedTag>& tags)>;
  /// `tag` is the name of the new tag. It is empty if none was made.
  using TaughtAnswer = std::function<void(const Outcome& outcome, const std::u16string& tag,
                                          const std::vector<std::u16string>& trashed)>;
  /// `alike` are tags of other numbers that the dialer may take for the lesson, the most alike
  /// first.
  using ComparedAnswer = std::function<void(const std::vector<std::u16string>& alike)>;

  Work() = default;
  Work(const Work&) = delete;
  Work& operator=(const Work&) = delete;
  virtual ~Work() = default;

  /// Calls `show` with what the store holds, after each Load and after each change. The first time
  /// a shelf that is not judged may come before.
  virtual void OnLoaded(Show show) = 0;
  virtual void Load() = 0;
  /// The same if another program may have changed tags or contacts since they were loaded. Costs
  /// next to nothing otherwise. For the moment in which the user comes back to the window.
  virtual void LoadIfChanged() = 0;

  /// Plays the recording of a tag, and answers when it has been heard or was stopped. What is
  /// playing ends. Changes nothing.
  virtual void Play(const std::u16string& tag, Answer answer) = 0;
  virtual void StopPlaying() = 0;

  virtual void Delete(const std::vector<std::u16string>& tags, DeletedAnswer answer) = 0;
  /// Lists the tags in the trash. Changes nothing.
  virtual void ListTrash(TrashAnswer answer) = 0;
  /// Puts tags of the trash back. One whose person is in another address book stays there: the one
  /// that was chosen must have the people of all tags.
  virtual void Restore(const std::vector<std::u16string>& trashed, Answer answer) = 0;
  /// Compares a lesson with the tags that stay if it is learned. Changes nothing.
  virtual void Compare(const Lesson& lesson, ComparedAnswer answer) = 0;
  virtual void Teach(const Lesson& lesson, TaughtAnswer answer) = 0;
};

}  // namespace home
