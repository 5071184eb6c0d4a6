#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "language/texts.h"
#include "maintenance/maintenance_dialog.h"
#include "platform/platform.h"
#include "platform/threads.h"
#include "storage/tag_store.h"
#include "voicemath/voice_mathematics.h"

// The threads of the reinitialization, which computes every template again after an update.
//
// The user waits in a dialog with a bar. Two threads work meanwhile. The worker computes one
// template after the other and sets an event after each. The monitor, a thread of the dialog,
// resumes the worker and moves the bar on at each event. When the worker is done it lets the bar
// reach its end and ends the dialog. The dialog goes only after both threads have ended, since both
// use it.

namespace maintenance {

/// What the worker and the monitor know of the dialog in which the user waits. Their threads call
/// it. The dialog stays until both have ended.
class ReinitProgress {
 public:
  ReinitProgress() = default;
  ReinitProgress(const ReinitProgress&) = delete;
  ReinitProgress& operator=(const ReinitProgress&) = delete;
  virtual ~ReinitProgress() = default;

  /// Moves the bar on by one.
  virtual void Step() = 0;

  /// Returns the event that the monitor sets after the last step of the bar.
  [[nodiscard]] virtual platform::Event& GetDoneEvent() = 0;

  /// Returns whether the dialog has ended or is about to go. A thread that sees this ends as soon
  /// as it can.
  [[nodiscard]] virtual bool IsGone() const = 0;

  /// Lets the user close the dialog. The dialog stays and says that it may be closed.
  virtual void LetUserClose() = 0;

  /// Ends the dialog with result 0.
  virtual void End() = 0;
};

/// Computes the template of every recording again, on a thread of its own and with a mathematics
/// object of its own. Recordings without a tag get their template as well.
class ReinitWorker {
 public:
  /// All arguments must outlive this object.
  ReinitWorker(const platform::Platform& platform, language::Texts texts, TagSession& page,
               ReinitProgress& progress);

  /// The body of the thread.
  void Run();

 private:
  /// Returns false if the thread has to end at once. A message has been shown then.
  [[nodiscard]] bool ProcessAll();
  /// Returns false if the template could not be written.
  [[nodiscard]] bool Recompute(std::u16string_view waveFile);
  void ReportNoRecordings();
  void ReportSearchFailure();
  void ReportNotWritten(std::u16string_view waveFile);

  platform::Platform m_platform;
  language::Texts m_texts;
  TagSession& m_page;
  ReinitProgress& m_progress;
  storage::TagStore m_store;
  std::unique_ptr<voicemath::CVoiceMathematics> m_mathematics;
};

/// Paces the reinitialization, on a thread of the dialog. It lets the worker begin after the
/// dialog has appeared, and moves the bar on after each recording of the worker.
class ReinitMonitor {
 public:
  /// If `page` is null, the user is shown a message. All arguments must outlive this object.
  ReinitMonitor(const platform::Platform& platform, TagSession* page, ReinitProgress& progress)
      : m_platform(platform), m_page(page), m_progress(progress) {}

  /// Steps the bar once for each of `tagCount` tags: at once for the first, and for each later
  /// one after the recording before it is done. Returns early if the dialog is gone.
  void Run(std::int32_t tagCount);

 private:
  void StartWorker();
  [[nodiscard]] bool WaitForRecording();

  platform::Platform m_platform;
  TagSession* m_page;
  ReinitProgress& m_progress;
};

}  // namespace maintenance
