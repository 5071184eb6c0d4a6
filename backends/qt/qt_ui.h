#pragma once

#include <QString>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "backends/qt/frame.h"
#include "backends/qt/message_dialog.h"
#include "backends/qt/qt_canvas.h"
#include "backends/qt/ui_thread.h"
#include "platform/ui.h"

namespace qt {

/// The open windows. Modal windows stand one above the other. Next to them are the message boxes of
/// worker threads, which can always be answered and block no window. Belongs to the user-interface
/// thread.
class WindowStack {
 public:
  WindowStack() = default;
  WindowStack(const WindowStack&) = delete;
  WindowStack& operator=(const WindowStack&) = delete;

  /// Returns the window that a new one has to stand above. Returns null if there is none.
  [[nodiscard]] QWidget* GetTop() const { return m_modal.empty() ? nullptr : m_modal.back(); }

  /// Runs `frame` above all other windows until it is over.
  void RunModal(Frame& frame);

  using Awaited = std::shared_future<platform::MessageAnswer>;

  /// Shows a box that blocks no window. Its listener gets the answer and makes `answer` ready.
  void ShowBeside(std::unique_ptr<MessageDialog> box, Awaited answer);

  /// Returns the answer that an open box owes. Returns nothing if no box is open.
  [[nodiscard]] std::optional<Awaited> GetAwaited() const;

  /// Destroys the boxes that were answered.
  void Tidy();

 private:
  /// Puts the boxes above `window`. The library lets a modal window block all others except those
  /// above it.
  void PutBoxesAbove(QWidget* window);

  std::vector<Frame*> m_modal;
  struct Box {
    std::unique_ptr<MessageDialog> window;
    Awaited answer;
  };
  std::vector<Box> m_boxes;
};

/// The user interface on a desktop. The first window makes the application object of the library if
/// the process has none. The application need not run, because each modal call serves its windows
/// itself.
class QtUi final : public platform::Ui {
 public:
  /// `applicationName` is the caption of the framework's plain boxes.
  QtUi(UiThread& thread, std::u16string_view applicationName, PictureSource pictures);
  ~QtUi() override;

  /// Gives each sheet a Cancel button next to OK. For hosts whose sheet stores all at OK.
  void OfferCancel() { m_offersCancel = true; }

  /// Each sheet shows above OK what `remark` says about the text of one of its combo boxes.
  void SetRemark(int comboId, std::function<QString(const QString&)> remark) {
    m_remark = {comboId, std::move(remark)};
  }

  platform::MessageAnswer ShowMessage(const platform::MessageBox& box) override;
  void Beep(platform::Sound sound) override;
  void SetCursor(platform::Cursor cursor) override;
  [[nodiscard]] int RunDialog(const resources::DialogTemplate& dialog,
                              platform::DialogHandler& handler) override;
  [[nodiscard]] bool RunSheet(std::u16string_view caption,
                              std::span<const platform::SheetPage> pages,
                              platform::SheetHandler& handler) override;

 private:
  /// Called before anything is shown.
  static void Begin();
  void RunModal(Frame& frame);
  [[nodiscard]] QString CaptionOf(const platform::MessageBox& box) const;
  [[nodiscard]] platform::MessageAnswer AskOnUiThread(const platform::MessageBox& box);
  void AwaitWorkersBoxes();
  void ShowCursor();

  UiThread& m_thread;
  const QString m_applicationName;
  Pictures m_pictures;
  /// Shared with the answers of boxes, because these may come after the last window has closed.
  const std::shared_ptr<WindowStack> m_windows = std::make_shared<WindowStack>();
  platform::Cursor m_cursor = platform::Cursor::kNormal;
  bool m_isWaitShown = false;
  bool m_offersCancel = false;
  std::pair<int, std::function<QString(const QString&)>> m_remark;  ///< Of a combo box.
};

}  // namespace qt
