#pragma once

#include "backends/text/say.h"
#include "host/session/session.h"
#include "storage/tag_trash.h"
#include "tags/page_one.h"

namespace session {

[[nodiscard]] inline storage::TagTrash OpenTrash(Session& session) {
  return {session.GetFiles(), session.GetRegistry(), session.GetClock()};
}

/// Holds the tags for the time of a task: no window can open meanwhile. A program that was killed
/// may have left a deletion half done, which is finished or undone first.
class HeldTags {
 public:
  /// Reports it if another Voxtrel has the tags.
  explicit HeldTags(Session& session)
      : m_mutex(session.GetPlatform().threads.CreateNamedMutex(tags::kInstanceMutex)) {
    if (!IsHeld()) {
      session.Fail(text::Say(resources::kTagsHeld));
    } else {
      OpenTrash(session).Recover();
    }
  }

  [[nodiscard]] bool IsHeld() const {
    return m_mutex != platform::Failure(platform::ThreadError::kHeld);
  }

 private:
  platform::CreatedMutex m_mutex;
};

}  // namespace session
