#pragma once

#include <cstdint>

#include "maintenance/reinit_progress.h"
#include "maintenance/tag_session.h"
#include "platform/platform.h"

namespace maintenance {

/// Paces the base reinitialization, on a thread of the dialog. It lets the worker begin after the
/// dialog has appeared, and moves the bar on after each recording of the worker.
class ReinitMonitor {
 public:
  /// If `page` is null, the user is shown a message. All arguments must outlive this object.
  ReinitMonitor(const platform::Platform& platform, TagSession* page, ReinitProgress& progress)
      : m_platform(platform), m_page(page), m_progress(progress) {}

  /// Steps the bar once for each of `tagCount` tags: at once for the first, and for each later one
  /// after the recording before it is done. Returns early if the dialog is gone.
  void Run(std::int32_t tagCount);

 private:
  void StartWorker();
  [[nodiscard]] bool WaitForRecording();

  platform::Platform m_platform;
  TagSession* m_page;
  ReinitProgress& m_progress;
};

}  // namespace maintenance
