#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "framework/dialog.h"
#include "maintenance/nearest_neighbours.h"
#include "platform/platform.h"

namespace maintenance {

/// The box that the user waits in front of while templates are compared that take long: a bar and
/// Cancel. The work goes on on a thread of its own, and ends the box with framework::kIdOk.
class ComparisonDialog final : public framework::CDialog {
 public:
  /// Compares the slots 0 to `count` - 1 of `mathematics`, which nobody else uses meanwhile.
  /// Everything given outlives the dialog.
  ComparisonDialog(const platform::Platform& platform,
                   const voicemath::CVoiceMathematics& mathematics, std::int32_t count);

  /// Returns what was found. There is something if the dialog ended with framework::kIdOk.
  [[nodiscard]] const FoundNeighbours& GetFound() const { return m_found; }

  bool OnInitDialog() override;
  void OnCommand(int id, platform::CommandEvent event) override;
  /// Enter is no answer to a box that goes by itself.
  void OnOK() override {}
  void OnCancel() override;
  /// Returns when the thread has ended, since it knows the window.
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
