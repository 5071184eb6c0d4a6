#pragma once

#include <string_view>

#include "platform/clock.h"
#include "platform/file_system.h"
#include "resources/strings.h"

namespace language {

class LanguageTable;

/// What the user reads, for everything that shows text: while a language file is loaded the text of
/// the site's key, which is empty where the file lacks the key; else the built-in English. English
/// never stands in for a key that a language file lacks, so a broken file shows as empty texts.
class Texts {
 public:
  /// No language file is loaded.
  Texts() = default;

  /// `table` is what the language file gave and outlives this; null means that there was none.
  explicit Texts(const LanguageTable* table) : m_table(table) {}

  /// Valid as long as the table is neither loaded anew nor destroyed.
  [[nodiscard]] std::u16string_view operator()(const resources::Text& text) const;

  /// Some sites differ in more than their text, as the style of the box or the way a count is
  /// joined on.
  [[nodiscard]] bool IsLanguageFileLoaded() const { return m_table != nullptr; }

 private:
  const LanguageTable* m_table = nullptr;
};

/// The texts of the language file at `path`, which the process-wide table takes in; the built-in
/// ones where there is no such file, or no memory to look for it. Waits up to a second while
/// another process reads the file.
[[nodiscard]] Texts LoadTexts(platform::FileSystem& files, std::u16string_view path,
                              platform::Clock& clock);

}  // namespace language
