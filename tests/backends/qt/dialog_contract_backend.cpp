#include <QLineEdit>
#include <QTest>

#include "backends/qt/qt_ui.h"
#include "tests/backends/qt/user.h"
#include "tests/contract/dialog_contract.h"

namespace contract {
namespace {

class QtStage final : public Stage {
 public:
  [[nodiscard]] platform::Ui& GetUi() override { return m_ui; }

  int Run(ReportingDialog& dialog, const std::function<void()>& story) override {
    m_user.Soon([&dialog, &story] {
      QCoreApplication::sendPostedEvents();  // What the page posted when it was set up.
      story();
      if (dialog.IsOpen()) {
        dialog.EndDialog(99);
      }
    });
    return dialog.DoModal();
  }

  void Choose(int id, int index) override {
    if (support::User::FindList(id) != nullptr) {
      support::User::ChooseLine(id, index);
    } else {
      support::User::Choose(id, index);
    }
  }
  void Type(int id, const std::string& text) override {
    QLineEdit* field = support::User::FindCombo(id)->lineEdit();
    field->selectAll();
    QTest::keyClicks(field, QString::fromStdString(text));
  }
  void Press(int id) override {
    QWidget* const widget = support::User::Find(id);
    // A check box is pressed on its box or its text, which stand at its left.
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, QPoint(5, widget->height() / 2));
  }

 private:
  qt::UiThread m_thread;
  qt::QtUi m_ui{m_thread, u"", {}};
  support::User m_user;
};

const Presentation kOnAScreen{"OnAScreen", [] { return std::make_unique<QtStage>(); }};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Dialogs, DialogContract, testing::Values(kOnAScreen), NameOfPresentation);

}  // namespace contract
