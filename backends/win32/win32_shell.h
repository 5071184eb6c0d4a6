#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/shell.h"

namespace win32 {

/// The device's help viewer and browser on Windows. Both are what the user has for pages.
class Win32Shell final : public platform::Shell {
 public:
  /// `helpFolder` holds the help pages; those in another language lie in a folder below, which is
  /// named by the language. `report` says something to the user in a few words.
  Win32Shell(std::filesystem::path helpFolder, std::function<void(std::u16string_view)> report);

  void StartProgram(std::u16string_view program, std::u16string_view commandLine) override;
  void Execute(std::u16string_view verb, std::u16string_view file,
               std::u16string_view parameters) override;

 private:
  void Open(const std::u16string& address) const;

  const std::filesystem::path m_helpFolder;
  const std::function<void(std::u16string_view)> m_report;
};

/// Returns the address of the help page that a help viewer's "file:NAME#anchor" means, in the first
/// of `languages` that has it. If there is no such page, returns that of the page that should be
/// there.
[[nodiscard]] std::u16string FindHelpPage(const std::filesystem::path& folder,
                                          const std::vector<std::u16string>& languages,
                                          std::u16string_view commandLine);

}  // namespace win32
