#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "framework/dialog.h"
#include "language/texts.h"
#include "maintenance/reinit_progress.h"
#include "maintenance/tag_session.h"
#include "platform/platform.h"

namespace maintenance {

/// The dialog that the user waits in front of while every template is computed anew. It ends when
/// the worker says so. It has no button, and its close box does nothing while the worker is at
/// work; once the worker has given up, the close box (or Enter, or Escape) ends the dialog with
/// framework::kIdCancel.
class ReinitProgressDialog final : public framework::CDialog, private ReinitProgress {
 public:
  /// What `platform` refers to outlives the dialog.
  ReinitProgressDialog(const platform::Platform& platform, language::Texts texts);

  /// The page whose tags are computed anew, which outlives the dialog. Null is told to the user;
  /// the dialog then ends at once when it is opened.
  void set_Pageone_point(TagSession* page);

  /// What the worker sees of this dialog.
  [[nodiscard]] ReinitProgress& GetProgress() { return *this; }

  bool OnInitDialog() override;
  void OnPaint(platform::Canvas& canvas) override;
  void OnOK() override;
  void OnCancel() override;
  /// Returns when the worker and the monitor have ended, since both know the window.
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
