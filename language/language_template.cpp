#include "language/language_template.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "resources/language_keys.h"

namespace language {
namespace {

constexpr std::u16string_view kLineEnd = u"\r\n";

constexpr std::u16string_view kInstructions[] = {
    u"Language file of Zedra Voxtrel: English, the template for translators.",
    u"",
    u"The dialer's settings read it as Voxtrel.lng in their install folder.",
    u"Save it as UTF-16LE with a byte-order mark, and end every line with CR LF.",
    u"A line holds a key, blanks and a text. Translate the texts and keep the keys.",
    u"A text ends at its first slash: what follows is dropped, as are blanks at both ends.",
    u"There are no escape sequences and no quotes: what stands there is shown.",
    u"A key left out shows an empty text, not the English one.",
    u"Lines that begin with two slashes are comments.",
};

std::u16string_view Heading(resources::TextArea area) {
  using enum resources::TextArea;
  switch (area) {
    case kSheet:
      return u"Property sheet";
    case kEveryPage:
      return u"Captions of messages";
    case kLearningPage:
      return u"Learning page";
    case kRecording:
      return u"Recording a voice tag";
    case kDeleting:
      return u"Deleting voice tags";
    case kFolders:
      return u"Folders that cannot be created";
    case kContacts:
      return u"Contacts that cannot be read";
    case kTestDialog:
      return u"Test dialog";
    case kReinitialization:
      return u"Computing every voice tag anew";
  }
  return u"";
}

void AddComment(std::u16string& file, std::u16string_view comment) {
  file += u"//";
  if (!comment.empty()) {
    file += u' ';
  }
  file += comment;
  file += kLineEnd;
}

}  // namespace

std::u16string LanguageTemplate() {
  std::u16string file;
  for (const std::u16string_view line : kInstructions) {
    AddComment(file, line);
  }

  std::size_t width = 0;
  for (const resources::LanguageKey& row : resources::kLanguageKeys) {
    width = std::max(width, row.key.size());
  }
  const resources::LanguageKey* previous = nullptr;
  for (const resources::LanguageKey& row : resources::kLanguageKeys) {
    if (previous == nullptr || previous->area != row.area) {
      file += kLineEnd;
      AddComment(file, u"---- " + std::u16string(Heading(row.area)) + u" ----");
    }
    previous = &row;
    AddComment(file, row.note);
    file += row.key;
    file.append(width + 2 - row.key.size(), u' ');
    file += row.english;
    file += kLineEnd;
  }
  return file;
}

std::vector<std::byte> ToLanguageFile(std::u16string_view text) {
  std::vector<std::byte> bytes = {std::byte{0xFF}, std::byte{0xFE}};
  bytes.reserve(2 + 2 * text.size());
  for (const char16_t character : text) {
    bytes.push_back(static_cast<std::byte>(character & 0xFFU));
    bytes.push_back(static_cast<std::byte>(character >> 8U));
  }
  return bytes;
}

}  // namespace language
