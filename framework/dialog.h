#pragma once

#include "framework/object.h"
#include "platform/dialog_handler.h"
#include "platform/dialog_window.h"
#include "platform/ui.h"

namespace framework {

/// Result of a dialog that the user closed by OK or by its close box.
inline constexpr int kIdOk = 1;
inline constexpr int kIdCancel = 2;

/// A dialog in the style of the framework: overrides answer what the presentation tells. Nothing
/// here knows how a dialog looks.
class CDialog : public CObject, public platform::DialogHandler {
 public:
  CDialog(const resources::DialogTemplate& dialog, platform::Ui& ui)
      : m_template(dialog), m_ui(ui) {}

  /// Shows the dialog and returns the result with which it was ended.
  int DoModal();
  void EndDialog(int result);

  [[nodiscard]] const resources::DialogTemplate& GetTemplate() const { return m_template; }

  void Attach(platform::DialogWindow& window) override { m_window = &window; }
  void Detach() override { m_window = nullptr; }

  bool OnInitDialog() override { return true; }
  void OnCommand(int /*id*/, platform::CommandEvent /*event*/) override {}
  void OnPaint(platform::Canvas& /*canvas*/) override {}
  void OnLButtonDown(platform::Point /*point*/) override {}
  bool OnHelp() override { return false; }
  void OnOK() override { EndDialog(kIdOk); }
  void OnCancel() override { EndDialog(kIdCancel); }

 protected:
  /// The live window; only while the dialog runs.
  [[nodiscard]] platform::DialogWindow& GetWindow() const { return *m_window; }
  [[nodiscard]] bool HasWindow() const { return m_window != nullptr; }
  [[nodiscard]] platform::Ui& GetUi() const { return m_ui; }

 private:
  const resources::DialogTemplate& m_template;
  platform::Ui& m_ui;
  platform::DialogWindow* m_window = nullptr;
};

}  // namespace framework
