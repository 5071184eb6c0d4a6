#include "language/translation.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "language/language_file_reader.h"
#include "platform/file_system.h"
#include "resources/language_keys.h"

// What translators need: a template with every text and its note, and a check of what the dialer's
// reader would drop without a word. The reader accepts nearly everything. So the check goes over
// the same lines and reports what a person would not see.
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
      return u"Computing every voice tag again";
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

bool BeginsWith(std::span<const std::byte> file, std::initializer_list<unsigned> start) {
  if (file.size() < start.size()) {
    return false;
  }
  std::size_t at = 0;
  for (const unsigned expected : start) {
    if (std::to_integer<unsigned>(file[at++]) != expected) {
      return false;
    }
  }
  return true;
}

/// Most files that are refused were saved in another encoding, and their first bytes say in which.
std::string DescribeEncoding(std::span<const std::byte> file) {
  constexpr std::string_view kWanted = "save it as UTF-16LE with a byte-order mark";
  std::string_view found = "the file does not begin with the bytes FF FE";
  if (file.empty()) {
    found = "the file is empty";
  } else if (BeginsWith(file, {0xEF, 0xBB, 0xBF})) {
    found = "the file is in UTF-8";
  } else if (BeginsWith(file, {0xFE, 0xFF})) {
    found = "the file is in UTF-16BE";
  } else if (BeginsWith(file, {0xFF, 0xFE, 0, 0})) {
    found = "the file is in UTF-32LE";
  } else if (BeginsWith(file, {0xFF, 0xFE, 0})) {
    found = "the low byte of the first character is zero, which the dialer refuses";
  } else if (BeginsWith(file, {0xFF, 0xFE})) {
    found = "the file holds nothing";
  }
  return std::string(found) + "; " + std::string(kWanted);
}

std::u16string_view FirstWord(std::u16string_view line) {
  const std::size_t start = line.find_first_not_of(u" \t");
  if (start == std::u16string_view::npos) {
    return {};
  }
  line.remove_prefix(start);
  return line.substr(0, line.find_first_of(std::u16string_view(u" \t\0", 3)));
}

/// Returns whether a comment follows the text, after a blank: "text // comment". The instructions
/// in the template advise translators to write it so.
bool IsComment(std::u16string_view rest) {
  const std::size_t slash = rest.find(u'/');
  return slash > 0 && rest.substr(slash).starts_with(u"//");
}

/// One check of a file. It reads the lines as the table does, and reports what the table would
/// drop, cut or never find.
class Check {
 public:
  explicit Check(std::span<const std::byte> file) : m_reader(file) {}

  std::vector<Finding> Run() {
    while (const auto line = m_reader.Next()) {
      CheckLine(*line);
    }
    for (const resources::LanguageKey& row : resources::kLanguageKeys) {
      if (m_lines.contains(std::u16string(row.key))) {
        continue;
      }
      Add(FindingKind::kMissingKey, 0, row.key, "the key is missing, so its text is empty");
    }
    return std::move(m_findings);
  }

 private:
  void Add(FindingKind kind, std::size_t line, std::u16string_view key, std::string message) {
    m_findings.push_back({kind, line, std::u16string(key), std::move(message)});
  }

  void CheckLine(const LanguageLine& line) {
    if (line.whole.find_first_of(std::u16string_view(u"\r\n\0", 3)) != std::u16string_view::npos) {
      Add(FindingKind::kStrayCharacter, line.number, line.key,
          "the line holds a NUL, or a CR or LF alone; lines end with CR LF");
    }
    if (line.kind == LineKind::kEntry) {
      CheckEntry(line);
    } else if (line.kind != LineKind::kComment && !FirstWord(line.whole).empty()) {
      Add(FindingKind::kNoText, line.number, FirstWord(line.whole),
          "the line has no text: it is empty, begins with \"/\", or ends the file without CR LF");
    }
  }

  void CheckEntry(const LanguageLine& line) {
    // The first line of a key counts, as in the table.
    const auto [known, isFirst] = m_lines.try_emplace(std::u16string(line.key), line.number);
    if (!isFirst) {
      Add(FindingKind::kDuplicateKey, line.number, line.key,
          "the key stands in line " + std::to_string(known->second) + " already, which counts");
    }
    const resources::LanguageKey* const row = resources::FindLanguageKey(line.key);
    if (row == nullptr) {
      Add(FindingKind::kUnknownKey, line.number, line.key, "no text has this key");
    } else if (row->use == resources::TextUse::kFormatted &&
               line.text.find(u'%') != std::u16string_view::npos) {
      Add(FindingKind::kPercentSign, line.number, line.key,
          "a percent sign has no place in a text that takes part in formatting");
    }
    if (line.rest.find(u'/') != std::u16string_view::npos && !IsComment(line.rest)) {
      Add(FindingKind::kTextCut, line.number, line.key,
          "the text ends at its first \"/\"; a comment begins with a blank and \"//\"");
    }
  }

  LanguageFileReader m_reader;
  std::map<std::u16string, std::size_t> m_lines;  ///< First line of each key.
  std::vector<Finding> m_findings;
};

}  // namespace

// The template is the English language file itself: what a translator edits is what the dialer
// reads.
// Keys stand in a column, so that the texts begin below each other. Each key has its note above it.
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

std::string_view ToWord(FindingKind kind) {
  switch (kind) {
    case FindingKind::kWrongEncoding:
      return "wrong-encoding";
    case FindingKind::kStrayCharacter:
      return "stray-character";
    case FindingKind::kNoText:
      return "no-text";
    case FindingKind::kUnknownKey:
      return "unknown-key";
    case FindingKind::kDuplicateKey:
      return "duplicate-key";
    case FindingKind::kTextCut:
      return "text-cut";
    case FindingKind::kPercentSign:
      return "percent-sign";
    case FindingKind::kMissingKey:
      return "missing-key";
  }
  return "unknown";
}

std::vector<Finding> CheckLanguageFile(std::span<const std::byte> file) {
  if (!LanguageFileReader(file).IsAccepted()) {
    return {{FindingKind::kWrongEncoding, 0, {}, DescribeEncoding(file)}};
  }
  std::vector<Finding> findings = Check(file).Run();
  if (file.size() % 2 != 0) {
    const std::string message = "the file ends in the middle of a character";
    findings.insert(findings.begin(), {FindingKind::kWrongEncoding, 0, {}, message});
  }
  return findings;
}

}  // namespace language
