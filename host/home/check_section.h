#pragma once

#include "host/home/setup_section.h"
#include "host/home/setup_tools.h"
#include "host/session/store_checking.h"

class QProgressBar;

namespace home {

/// The check of all voice tags, and the repair of what it finds.
class CheckSection final : public SetupSection {
 public:
  /// Both outlive this.
  CheckSection(const SetupTools& tools, Errands& errands, QWidget* parent);

 private:
  struct Checked {
    std::optional<session::CheckedStore> store;
    std::u16string message;  ///< Why it was not checked, and what else the user should know.
  };

  void Check(session::Repairing repairing);
  void Show(const Checked& checked, session::Repairing repairing);
  void SetBusy(bool isBusy);

  const SetupTools& m_tools;
  Errands& m_errands;
  // Owned by the widget.
  QPushButton* m_check;
  QPushButton* m_repair;
  QProgressBar* m_progress;
  LiveLabel* m_news;
  QLabel* m_findings;
};

}  // namespace home
