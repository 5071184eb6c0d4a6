#include "maintenance/comparison_dialog.h"

#include "resources/dialogs.h"

namespace maintenance {
namespace {

constexpr int kSteps = 100;
constexpr int kBarGap = 6;  ///< Pixels between the bar and what stands above and below it.

}  // namespace

ComparisonDialog::ComparisonDialog(const platform::Platform& platform,
                                   const voicemath::CVoiceMathematics& mathematics,
                                   std::int32_t count)
    : CDialog(resources::kComparisonDialog, platform.ui),
      m_platform(platform),
      m_mathematics(mathematics),
      m_count(count) {}

bool ComparisonDialog::OnInitDialog() {
  CDialog::OnInitDialog();
  m_isGone = false;
  CreateBar();
  m_worker = m_platform.threads.Start([this] { Work(); }, platform::ThreadStart::kRunning)
                 .value_or(nullptr);
  if (!m_worker) {
    Work();  // There is no thread. The dialog ends before it is shown.
  }
  return true;
}

void ComparisonDialog::CreateBar() {
  // The template leaves room for the bar between its text and its button.
  const platform::Rect above = GetWindow().GetControlRect(resources::kComparisonTextId);
  const platform::Rect below = GetWindow().GetControlRect(resources::kComparisonCancelId);
  GetWindow().CreateProgressBar(
      resources::kProgressBarId,
      {.rect = {above.left, above.bottom + kBarGap, above.right, below.top - kBarGap},
       .minimum = 0,
       .maximum = kSteps,
       .step = 1,
       .isSmooth = true});
}

// Runs on the thread. The search reports its share in its own steps; the bar has a hundred.
void ComparisonDialog::Work() {
  int steps = 0;
  // The caller of DoModal reads this after Detach has waited for the thread, so it needs no lock.
  m_found = FindNearest(m_mathematics, m_count, [this, &steps](double share) {
    for (; steps < static_cast<int>(share * kSteps); ++steps) {
      GetWindow().StepProgress(resources::kProgressBarId);
    }
    return !m_isGone;
  });
  if (m_found) {
    EndDialog(framework::kIdOk);
  }
}

void ComparisonDialog::OnCommand(int id, platform::CommandEvent event) {
  if (id == resources::kComparisonCancelId && event == platform::CommandEvent::kClick) {
    OnCancel();
  }
}

void ComparisonDialog::OnCancel() {
  m_isGone = true;
  CDialog::OnCancel();
}

void ComparisonDialog::Detach() {
  m_isGone = true;
  if (m_worker) {
    // The wait is short: the search asks after each piece of work whether the dialog is gone.
    static_cast<void>(m_worker->Wait(platform::kNoLimit));
    m_worker.reset();
  }
  CDialog::Detach();
}

}  // namespace maintenance
