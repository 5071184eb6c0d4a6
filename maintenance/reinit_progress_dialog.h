#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "framework/dialog.h"
#include "language/texts.h"
#include "maintenance/maintenance_dialog.h"
#include "maintenance/reinit_threads.h"
#include "platform/platform.h"

namespace maintenance {

/// The dialog in which the user waits while every template is computed again. The worker ends it.
/// It has no button, and its close box does nothing while the worker is at work. After the worker
/// has given up, the close box (or Enter, or Escape) ends the dialog with framework::kIdCancel.
class ReinitProgressDialog final : public framework::CDialog, private ReinitProgress {
 public:
  /// What `platform` refers to must outlive the dialog.
  ReinitProgressDialog(const platform::Platform& platform, language::Texts texts);

  /// Sets the page whose templates are computed again. The page must outlive the dialog. If it is
  /// null, the user is shown a message, and the dialog ends as soon as it is opened.
  void set_Pageone_point(TagSession* page);

  /// Returns what the worker sees of this dialog.
  [[nodiscard]] ReinitProgress& GetProgress() { return *this; }

  bool OnInitDialog() override;
  void OnPaint(platform::Canvas& canvas) override;
  void OnOK() override;
  void OnCancel() override;
  /// Returns after the worker and the monitor have ended, since both use the window.
  void Detach() override;

 private:
  void Step() override;
  [[nodiscard]] platform::Event& GetDoneEvent() override { return *m_done; }
  [[nodiscard]] bool IsGone() const override { return m_isGone; }
  void LetUserClose() override;
  void End() override { EndDialog(0); }

  void CreateBar(std::int32_t tagCount);
  [[nodiscard]] bool StartMonitor(std::int32_t tagCount);

  platform::Platform m_platform;
  language::Texts m_texts;
  TagSession* m_page = nullptr;
  std::unique_ptr<platform::Event> m_done;
  std::unique_ptr<platform::Thread> m_monitor;
  std::atomic<bool> m_isGone = false;
  std::atomic<bool> m_mayClose = false;
  bool m_hasFonts = false;
};

}  // namespace maintenance
