#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "framework/dialog.h"
#include "maintenance/test_results.h"
#include "platform/platform.h"

namespace maintenance {

/// The box in which the user waits while a comparison takes long: a bar and Cancel. A thread of the
/// box does the work, and then ends the box with framework::kIdOk.
class ComparisonDialog final : public framework::CDialog {
 public:
  /// Compares the slots 0 to `count` - 1 of `mathematics`. Nobody else may use it meanwhile. All
  /// arguments must outlive the dialog.
  ComparisonDialog(const platform::Platform& platform,
                   const voicemath::CVoiceMathematics& mathematics, std::int32_t count);

  /// Returns what was found. There is something if the dialog ended with framework::kIdOk.
  [[nodiscard]] const FoundNeighbours& GetFound() const { return m_found; }

  bool OnInitDialog() override;
  void OnCommand(int id, platform::CommandEvent event) override;
  /// Enter does nothing, since the box goes by itself.
  void OnOK() override {}
  void OnCancel() override;
  /// Returns after the thread has ended, since it uses the window.
  void Detach() override;

 private:
  void CreateBar();
  void Work();

  platform::Platform m_platform;
  const voicemath::CVoiceMathematics& m_mathematics;
  const std::int32_t m_count;
  std::unique_ptr<platform::Thread> m_worker;
  std::atomic<bool> m_isGone = false;
  FoundNeighbours m_found = platform::Failure(voicemath::SearchStopped{});
};

}  // namespace maintenance
