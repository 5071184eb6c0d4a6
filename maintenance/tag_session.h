#pragma once

#include "platform/threads.h"
#include "storage/tag_record.h"
#include "voicemath/voice_mathematics.h"

namespace maintenance {

/// What the Learning page lends to the dialogs that look after its tags. All of it belongs to the
/// page and lives as long as it.
class TagSession {
 public:
  TagSession() = default;
  TagSession(const TagSession&) = delete;
  TagSession& operator=(const TagSession&) = delete;
  virtual ~TagSession() = default;

  /// Not changed while a dialog runs, so every thread may read it then.
  [[nodiscard]] virtual const storage::TagTable& GetTags() const = 0;

  /// Belongs to the user-interface thread.
  [[nodiscard]] virtual voicemath::CVoiceMathematics& GetMathematics() = 0;

  /// Manual-reset: set by the worker after each recording, reset by the monitor. Null where the
  /// system had none to give.
  [[nodiscard]] virtual platform::Event* GetWorkerEvent() = 0;

  /// The thread that computes the templates anew, suspended until the monitor resumes it. Null
  /// while there is none.
  [[nodiscard]] virtual platform::Thread* GetReinitWorker() = 0;
};

}  // namespace maintenance
