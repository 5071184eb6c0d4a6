#pragma once

#include <string>
#include <vector>

namespace xdg {

/// What the environment of the process says about the user's programs.
struct Environment {
  std::vector<std::string> programFolders;  ///< Where programs are looked for, best first.
  std::vector<std::string> dataFolders;     ///< Where programs keep their data, best first.
  std::vector<std::string> languages;  ///< Of the user's texts, best first, as "pt_BR" or "de".
  std::string browsers;                ///< $BROWSER: commands with colons between them.
};

/// To be called before there is a second thread.
[[nodiscard]] Environment ReadEnvironment();

}  // namespace xdg
