#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/clock.h"
#include "platform/file_system.h"
#include "resources/strings.h"

namespace language {

class LanguageTable;

/// What the user reads. Everything that shows text asks this.
///
/// If a language file is loaded, a text is what the file has for its key, and empty if the file
/// lacks the key. Otherwise it is the built-in English. English never stands in for a key that a
/// language file lacks, so a broken file shows as empty texts.
class Texts {
 public:
  /// No language file is loaded.
  Texts() = default;

  /// `table` holds the language file and must outlive this. Null means that there is no file.
  explicit Texts(const LanguageTable* table) : m_table(table) {}

  /// Returns the text. It is valid until the table is loaded again or destroyed.
  [[nodiscard]] std::u16string_view operator()(const resources::Text& text) const;

  /// Some places differ in more than their text: in the style of a box, or in how a count is joined
  /// to its words.
  [[nodiscard]] bool IsLanguageFileLoaded() const { return m_table != nullptr; }

 private:
  const LanguageTable* m_table = nullptr;
};

/// Loads the language file at `path` into the table of the process and returns its texts. Returns
/// the built-in ones if there is no such file, or no memory to look for it. Waits up to a second
/// while another process reads the file.
[[nodiscard]] Texts LoadTexts(platform::FileSystem& files, std::u16string_view path,
                              platform::Clock& clock);

/// Returns `format` with its first "%d" replaced by the decimal number. Nothing else in it is
/// interpreted: any other percent sign, a second "%d" too, is shown as it is.
[[nodiscard]] std::u16string FormatNumber(std::u16string_view format, std::int32_t number);

/// Returns the number as decimal text, with a sign only if it is negative.
[[nodiscard]] std::u16string Decimal(std::int32_t number);

/// Returns the label under the tag list. A language file gives only the words; one blank and the
/// count follow them.
[[nodiscard]] std::u16string CountLabel(const Texts& texts, std::int32_t tagCount);

/// Returns the same label as the deletion of one tag leaves it, deliberately: in English, whatever
/// language file is loaded.
[[nodiscard]] std::u16string EnglishCountLabel(std::int32_t tagCount);

/// Returns the message that refuses one tag too many. The number follows the text directly.
[[nodiscard]] std::u16string TagLimitMessage(const Texts& texts, std::int32_t limit);

/// Returns the message that there is no recording to test: two texts with an empty line between
/// them.
[[nodiscard]] std::u16string NoVoiceTagsMessage(const Texts& texts);

}  // namespace language
