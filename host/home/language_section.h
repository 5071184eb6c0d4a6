#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/home/setup_section.h"
#include "host/home/setup_tools.h"
#include "language/language_choice.h"

class QComboBox;

namespace home {

/// The language of the settings sheet: the installed language files, and English.
class LanguageSection final : public SetupSection {
 public:
  /// Both outlive this.
  LanguageSection(const SetupTools& tools, Errands& errands, QWidget* parent);

  void OnShown() override;

 private:
  struct Found {
    std::vector<std::string> languages;
    std::optional<std::string> current;  ///< Nothing if it is a file of the user's own.
  };
  struct Chosen {
    platform::Result<std::u16string, language::LanguageError> kept;
    std::string keptAt;  ///< The path of this machine of what was kept. Can be empty.
  };

  void Show(const Found& found);
  void Choose(const std::string& language, language::OwnFile ownFile);
  void ShowChoice(const std::string& language, const Chosen& chosen);

  const SetupTools& m_tools;
  Errands& m_errands;
  // Owned by the widget.
  QLabel* m_label;
  QComboBox* m_languages;
  LiveLabel* m_news;
};

}  // namespace home
