#include "framework/dialog.h"

namespace framework {

int CDialog::DoModal() { return m_ui.RunDialog(m_template, *this); }

void CDialog::EndDialog(int result) {
  if (m_window != nullptr) {
    m_window->EndDialog(result);
  }
}

}  // namespace framework
