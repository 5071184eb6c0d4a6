#include "backends/headless/headless_ui.h"
#include "backends/text/utf.h"
#include "tests/contract/dialog_contract.h"

namespace contract {
namespace {

class HeadlessStage final : public Stage {
 public:
  [[nodiscard]] platform::Ui& GetUi() override { return m_ui; }

  int Run(ReportingDialog& dialog, const std::function<void()>& story) override {
    m_ui.SetDialogStory(dialog.GetTemplate().id, [&](headless::HeadlessDialog& window) {
      m_window = &window;
      story();
      window.EndDialog(99);
    });
    return dialog.DoModal();
  }

  void Choose(int id, int index) override { m_window->Choose(id, index); }
  void Type(int id, const std::string& text) override { m_window->Type(id, text::FromUtf8(text)); }
  void Press(int id) override { m_window->Press(id); }

 private:
  headless::HeadlessUi m_ui;
  headless::HeadlessDialog* m_window = nullptr;
};

const Presentation kWithoutAScreen{"WithoutAScreen",
                                   [] { return std::make_unique<HeadlessStage>(); }};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Dialogs, DialogContract, testing::Values(kWithoutAScreen),
                         NameOfPresentation);

}  // namespace contract
