#pragma once

#include <string_view>

#include "platform/canvas.h"
#include "platform/threads.h"
#include "storage/tag_record.h"
#include "voicemath/voice_mathematics.h"

namespace maintenance {

/// What the Learning page lends to the dialogs that look after its tags. The page owns all of it,
/// and it lives as long as the page.
class TagSession {
 public:
  TagSession() = default;
  TagSession(const TagSession&) = delete;
  TagSession& operator=(const TagSession&) = delete;
  virtual ~TagSession() = default;

  /// Returns the tags of the page. While a dialog runs they do not change, so every thread may read
  /// them.
  [[nodiscard]] virtual const storage::TagTable& GetTags() const = 0;

  /// Returns the mathematics of the page. Only the user-interface thread may use it.
  [[nodiscard]] virtual voicemath::CVoiceMathematics& GetMathematics() = 0;

  /// Returns the event that the worker sets after each recording and that the monitor resets.
  /// Returns null if the system gave none.
  [[nodiscard]] virtual platform::Event* GetWorkerEvent() = 0;

  /// Returns the thread that computes the templates again. It is suspended until the monitor
  /// resumes it. Returns null while there is none.
  [[nodiscard]] virtual platform::Thread* GetReinitWorker() = 0;
};

/// Paints the header of a dialog: a rule across its whole width and the title above it. The title
/// is data: a percent sign in it is shown and never read as a format.
void PaintHeader(platform::Canvas& canvas, std::u16string_view title);

}  // namespace maintenance
