#pragma once

#include <QString>
#include <memory>

#include "backends/qt/pictures.h"
#include "backends/qt/ui_thread.h"
#include "backends/qt/window_stack.h"
#include "platform/ui.h"

namespace qt {

/// The user interface on a desktop. There is an application object of the library before it; the
/// application need not run, for each modal call serves its windows itself.
class QtUi final : public platform::Ui {
 public:
  /// `applicationName` is the caption of the framework's plain boxes.
  QtUi(UiThread& thread, std::u16string_view applicationName, PictureSource pictures);
  ~QtUi() override;

  platform::MessageAnswer ShowMessage(const platform::MessageBox& box) override;
  void Beep(platform::Sound sound) override;
  void SetCursor(platform::Cursor cursor) override;
  [[nodiscard]] int RunDialog(const resources::DialogTemplate& dialog,
                              platform::DialogHandler& handler) override;
  [[nodiscard]] bool RunSheet(std::u16string_view caption,
                              std::span<const platform::SheetPage> pages,
                              platform::SheetHandler& handler) override;

 private:
  void RunModal(Frame& frame);
  [[nodiscard]] QString CaptionOf(const platform::MessageBox& box) const;
  [[nodiscard]] platform::MessageAnswer AskOnUiThread(const platform::MessageBox& box);
  void ShowCursor();

  UiThread& m_thread;
  const QString m_applicationName;
  Pictures m_pictures;
  /// Shared with the answers of boxes, which may come in after the last window has closed.
  const std::shared_ptr<WindowStack> m_windows = std::make_shared<WindowStack>();
  platform::Cursor m_cursor = platform::Cursor::kNormal;
  bool m_isWaitShown = false;
};

}  // namespace qt
