#include "maintenance/reinit_monitor.h"

#include <string>

#include "resources/strings.h"

namespace maintenance {
namespace {

/// The dialog has appeared by then.
constexpr std::uint32_t kMillisecondsBeforeWork = 1000;

}  // namespace

void ReinitMonitor::Run(std::int32_t tagCount) {
  if (tagCount == 0) {
    return;
  }
  m_platform.clock.Sleep(kMillisecondsBeforeWork);
  StartWorker();
  // The question comes after each reset and before each wait. A dialog that goes says so before it
  // sets the event a last time, so either the question or the wait sees it.
  for (std::int32_t i = 0; i < tagCount && !m_progress.IsGone(); ++i) {
    m_progress.Step();
    if (!WaitForRecording()) {
      break;
    }
  }
  m_progress.GetDoneEvent().Set();
}

void ReinitMonitor::StartWorker() {
  if (m_page == nullptr) {
    m_platform.ui.ShowMessage(
        {std::u16string(resources::kReinitWithoutPage), platform::MessageCaption::kText,
         std::u16string(resources::kAppletName), platform::MessageStyle::kTopmost});
    return;
  }
  if (platform::Thread* worker = m_page->GetReinitWorker()) {
    worker->Resume();
  }
}

bool ReinitMonitor::WaitForRecording() {
  if (m_page == nullptr || m_page->GetWorkerEvent() == nullptr) {
    return true;
  }
  platform::Event& event = *m_page->GetWorkerEvent();
  if (event.Wait(platform::kNoLimit) != platform::WaitResult::kSignalled) {
    return false;
  }
  event.Reset();
  return true;
}

}  // namespace maintenance
