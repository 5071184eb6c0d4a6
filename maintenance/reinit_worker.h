#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "language/texts.h"
#include "maintenance/reinit_progress.h"
#include "maintenance/tag_session.h"
#include "platform/platform.h"
#include "storage/tag_store.h"
#include "voicemath/voice_mathematics.h"

namespace maintenance {

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

}  // namespace maintenance
