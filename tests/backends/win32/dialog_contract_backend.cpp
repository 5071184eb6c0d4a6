#include "backends/win32/win32_ui.h"
#include "tests/backends/win32/user.h"
#include "tests/contract/dialog_contract.h"

namespace contract {
namespace {

class Win32Stage final : public Stage {
 public:
  [[nodiscard]] platform::Ui& GetUi() override { return m_ui; }

  int Run(ReportingDialog& dialog, const std::function<void()>& story) override {
    support::User::WhenShown([this, &dialog, story](HWND window) {
      m_window = window;
      story();
      if (dialog.IsOpen()) {
        dialog.EndDialog(99);
      }
    });
    const int result = dialog.DoModal();
    support::User::Leave();
    return result;
  }

  void Choose(int id, int index) override {
    support::User::Choose(support::User::FindControl(m_window, id), index);
  }
  void Type(int id, const std::string& text) override {
    support::User::Type(support::User::FindControl(m_window, id), {text.begin(), text.end()});
  }
  void Press(int id) override { support::User::Press(support::User::FindControl(m_window, id)); }

 private:
  win32::UiThread m_thread;
  win32::Win32Ui m_ui{m_thread, u"", nullptr};
  HWND m_window = nullptr;
};

const Presentation kOnWindows{"OnWindows", [] { return std::make_unique<Win32Stage>(); }};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Dialogs, DialogContract, testing::Values(kOnWindows), NameOfPresentation);

}  // namespace contract
