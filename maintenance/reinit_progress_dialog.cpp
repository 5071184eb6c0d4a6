#include "maintenance/reinit_progress_dialog.h"

#include <string>

#include "maintenance/maintenance_dialog.h"
#include "maintenance/reinit_threads.h"
#include "resources/dialogs.h"
#include "resources/fault_strings.h"
#include "resources/strings.h"
#include "resources/translations.h"

namespace maintenance {
namespace {

// The bar on the dialog, in pixels.
constexpr int kBarMargin = 10;
constexpr int kBarTop = 100;
constexpr int kBarBottom = 120;

constexpr platform::Font kWaitFont{u"Tahoma", 14, platform::kBoldWeight};

}  // namespace

ReinitProgressDialog::ReinitProgressDialog(const platform::Platform& platform,
                                           language::Texts texts)
    : CDialog(resources::kReinitDialog, platform.ui), m_platform(platform), m_texts(texts) {}

void ReinitProgressDialog::set_Pageone_point(TagSession* page) {
  m_page = page;
  if (page == nullptr) {
    m_platform.ui.ShowMessage(
        platform::ApplicationBox(std::u16string(resources::kBackPointerMissing)));
  }
}

bool ReinitProgressDialog::OnInitDialog() {
  CDialog::OnInitDialog();
  m_isGone = false;
  m_mayClose = false;
  m_hasFonts = false;
  const std::int32_t tagCount = m_page == nullptr ? 0 : m_page->GetTags().tagCount;
  // Ended while it is set up, the dialog is never shown.
  if (tagCount == 0) {
    EndDialog(0);
    return true;
  }
  CreateBar(tagCount);
  if (m_texts.IsLanguageFileLoaded()) {
    GetWindow().SetText(resources::kReinitWaitLine1Id, m_texts(resources::kReinitWaitLine1));
    GetWindow().SetText(resources::kReinitWaitLine2Id, m_texts(resources::kReinitWaitLine2));
  }
  if (!StartMonitor(tagCount)) {
    m_platform.ui.ShowMessage(
        platform::ApplicationBox(std::u16string(resources::Say(resources::kReinitNotStarted))));
    EndDialog(0);
  }
  return true;
}

void ReinitProgressDialog::CreateBar(std::int32_t tagCount) {
  const platform::Rect client = GetWindow().GetClientRect();
  GetWindow().CreateProgressBar(
      resources::kProgressBarId,
      {.rect = {client.left + kBarMargin, kBarTop, client.right - kBarMargin, kBarBottom},
       .minimum = 0,
       .maximum = tagCount,
       .step = 1,
       .isSmooth = true});
}

bool ReinitProgressDialog::StartMonitor(std::int32_t tagCount) {
  // The event is there before the monitor, and the monitor before the worker runs: each uses the
  // one before from its first step on.
  m_done = m_platform.threads.CreateManualResetEvent().value_or(nullptr);
  if (!m_done || m_page->GetWorkerEvent() == nullptr || m_page->GetReinitWorker() == nullptr) {
    return false;
  }
  m_monitor =
      m_platform.threads
          .Start([this, tagCount] { ReinitMonitor(m_platform, m_page, *this).Run(tagCount); },
                 platform::ThreadStart::kRunning)
          .value_or(nullptr);
  return m_monitor != nullptr;
}

void ReinitProgressDialog::Step() { GetWindow().StepProgress(resources::kProgressBarId); }

void ReinitProgressDialog::LetUserClose() {
  m_mayClose = true;
  GetWindow().SetText(resources::kReinitWaitLine1Id, resources::Say(resources::kReinitGaveUp));
  GetWindow().SetText(resources::kReinitWaitLine2Id, resources::Say(resources::kReinitMayClose));
}

void ReinitProgressDialog::OnPaint(platform::Canvas& canvas) {
  PaintHeader(canvas, m_texts(resources::kReinitTitle));
  if (!m_hasFonts) {
    // Only once, since a new font makes the text be painted again.
    m_hasFonts = true;
    GetWindow().SetFont(resources::kReinitWaitLine1Id, kWaitFont);
    GetWindow().SetFont(resources::kReinitWaitLine2Id, kWaitFont);
  }
}

// The close box of a handheld is OK. As long as the threads work, neither closes the dialog.
void ReinitProgressDialog::OnOK() { OnCancel(); }

void ReinitProgressDialog::OnCancel() {
  if (m_mayClose) {
    CDialog::OnCancel();
  }
}

// The monitor may be waiting for the next recording, so the event is set once more. Then it sees
// that the dialog is gone, and so does the worker after its recording.
void ReinitProgressDialog::Detach() {
  m_isGone = true;
  if (m_monitor) {
    m_page->GetWorkerEvent()->Set();
    static_cast<void>(m_monitor->Wait(platform::kNoLimit));
    // The worker can end, since the monitor has resumed it.
    static_cast<void>(m_page->GetReinitWorker()->Wait(platform::kNoLimit));
    m_monitor.reset();
  }
  m_done.reset();
  CDialog::Detach();
}

}  // namespace maintenance
