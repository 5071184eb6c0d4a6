#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace xdg {

/// A page of the disk, and a place within it.
struct HelpPage {
  std::string path;
  std::string anchor;  ///< Empty: the page's beginning.

  /// The page's address for a browser.
  [[nodiscard]] std::string GetUrl() const;
};

/// Where help pages lie, best first. Those in another language than the program's own lie in a
/// folder below, which is named by the language.
struct HelpFolders {
  std::vector<std::string> folders;
  std::vector<std::string> languages;  ///< Of the user, best first.

  /// The page that a help viewer's "file:NAME#anchor" means. Where there is no such page, it is the
  /// one that should be there.
  [[nodiscard]] HelpPage Find(std::string_view address) const;
};

}  // namespace xdg
