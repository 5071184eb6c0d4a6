#pragma once

#include <cstdint>

#include "maintenance/reinit_progress.h"
#include "maintenance/tag_session.h"
#include "platform/platform.h"

namespace maintenance {

/// Paces the base reinitialization, on a thread of the dialog: lets the worker begin once the
/// dialog can be seen, and moves the bar on whenever the worker has done a recording.
class ReinitMonitor {
 public:
  /// `page` may be null, which is told to the user. Everything given outlives this.
  ReinitMonitor(const platform::Platform& platform, TagSession* page, ReinitProgress& progress)
      : m_platform(platform), m_page(page), m_progress(progress) {}

  /// Steps the bar for `tagCount` tags, each when the one before is done.
  void Run(std::int32_t tagCount);

 private:
  void StartWorker();
  [[nodiscard]] bool WaitForRecording();

  platform::Platform m_platform;
  TagSession* m_page;
  ReinitProgress& m_progress;
};

}  // namespace maintenance
