#pragma once

#include "backends/qt/frame.h"
#include "backends/qt/qt_dialog.h"

namespace qt {

/// The window of one dialog.
class DialogFrame final : public Frame {
 public:
  DialogFrame(const resources::DialogTemplate& dialog, platform::DialogHandler& handler,
              UiThread& thread, Pictures& pictures, QWidget* parent);

  [[nodiscard]] QtDialog& GetDialog() { return m_dialog; }

 protected:
  void OnCloseBox() override { m_dialog.TellCancel(); }
  void OnHelpKey() override { static_cast<void>(m_dialog.AskForHelp()); }
  void OnEnterKey() override { m_dialog.TellOk(); }

 private:
  QtDialog m_dialog;
};

}  // namespace qt
