#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/home/setup_section.h"
#include "host/home/setup_tools.h"
#include "host/session/backups.h"

class QProgressBar;

namespace home {

/// Backup of everything that was taught into one file, and its return.
class BackupSection final : public SetupSection {
 public:
  /// Both outlive this.
  BackupSection(const SetupTools& tools, Errands& errands, QWidget* parent);

 private:
  struct Made {
    std::optional<storage::BackupMade> backup;
    std::u16string message;  ///< Why there is none.
  };
  struct Restored {
    std::optional<session::RestoredBackup> backup;
    session::Differences differences;  ///< That stayed, since nobody has agreed yet.
    std::u16string message;            ///< Why nothing was restored.
  };
  enum class Replacing : std::uint8_t { kNotAsked, kAgreed };

  void BackUp();
  void ChooseBackup();
  void Restore(const std::string& path, Replacing replacing);
  void ShowRestored(const std::string& path, const Restored& restored);
  [[nodiscard]] bool AgreesToReplace(const session::Differences& differences);
  void SetBusy(bool isBusy);

  const SetupTools& m_tools;
  Errands& m_errands;
  // Owned by the widget.
  QPushButton* m_backUp;
  QPushButton* m_restore;
  QProgressBar* m_progress;
  LiveLabel* m_news;
};

}  // namespace home
