#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "host/home/gathering.h"
#include "host/home/work.h"
#include "host/machine/backends.h"
#include "host/session/page_run.h"

namespace home {

/// What became of tags that were to be deleted.
struct DeletedTags {
  Outcome outcome;
  std::vector<std::u16string> trashed;  ///< Names of files in the trash.
};

/// What became of a lesson.
struct TaughtTag {
  Outcome outcome;
  std::u16string tag;                   ///< The name of the new tag. Empty if none was made.
  std::vector<std::u16string> trashed;  ///< Names of files in the trash.
};

/// Does what changes the store, by the Learning page, which nobody sees. The page is open, and has
/// its mutex, only meanwhile. Used by one thread at a time.
class PageTasks {
 public:
  /// Enough for a recording of three seconds, its template, and what the page writes meanwhile.
  static constexpr std::uintmax_t kRoomForTag = 1'000'000;

  /// `options` outlive this. Nothing is deleted if the disk has less room than `room`, in bytes,
  /// and the copies for Undo.
  explicit PageTasks(const machine::Options& options, std::uintmax_t room = kRoomForTag)
      : m_options(options), m_room(room) {}

  [[nodiscard]] DeletedTags Delete(const std::vector<std::u16string>& tags);
  [[nodiscard]] Outcome Restore(const std::vector<std::u16string>& trashed);
  [[nodiscard]] TaughtTag Teach(const Lesson& lesson);

 private:
  const machine::Options& m_options;
  const std::uintmax_t m_room;
  /// When the recordings of deleted tags were written, by the files in the trash. A tag that comes
  /// back was taught when it was taught.
  std::map<std::u16string, std::filesystem::file_time_type> m_writingTimes;
};

/// Returns the names of the tags that the dialer may take for the lesson, the most alike first.
/// Changes nothing.
[[nodiscard]] std::vector<std::u16string> FindAlike(const machine::Options& options,
                                                    const Lesson& lesson);

}  // namespace home
