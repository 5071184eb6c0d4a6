// The Learning page looks after its tags: it tests them, and has their templates computed again.

#include "maintenance/math_version.h"
#include "maintenance/reinit_threads.h"
#include "tags/page_one.h"

namespace tags {

void Page_one::OnTest() { m_testDialog.DoModal(); }

// The templates are computed again by a worker, while the waiting dialog is open. The worker is
// made suspended and belongs to the page. The dialog's monitor lets it run when the dialog is there
// to be stepped.
void Page_one::OnCheckVersion() {
  if (!maintenance::UpdateVersion(m_platform.registry)) {
    return;
  }
  const auto compute = [this] {
    maintenance::ReinitWorker(m_platform, m_texts, *this, m_reinitDialog.GetProgress()).Run();
  };
  m_reinitWorker =
      m_platform.threads.Start(compute, platform::ThreadStart::kSuspended).value_or(nullptr);
  m_reinitDialog.DoModal();
  m_reinitWorker.reset();
}

}  // namespace tags
