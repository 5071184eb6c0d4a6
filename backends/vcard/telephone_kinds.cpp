#include "backends/vcard/telephone_kinds.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "backends/vcard/charset.h"

namespace vcard {
namespace {

using Kind = platform::PhoneKind;
using Places = std::span<const Kind>;

struct KnownWord {
  std::string_view word;
  Words says;
};

/// The words that say something, or nothing at all. Several programs write another word for the
/// same thing. The first ones are written most.
constexpr std::array<KnownWord, 38> kKnownWords = {{
    {"VOICE", 0},
    {"CELL", kCellWord},
    {"WORK", kWorkWord},
    {"HOME", kHomeWord},
    {"PREF", kPreferredWord},
    {"MOBILE", kCellWord},
    {"FAX", kFaxWord},
    {"CELLULAR", kCellWord},
    {"IPHONE", kCellWord},
    {"BUSINESS", kWorkWord},
    {"OFFICE", kWorkWord},
    {"HOMEFAX", kHomeWord | kFaxWord},
    {"WORKFAX", kWorkWord | kFaxWord},
    {"BUSINESSFAX", kWorkWord | kFaxWord},
    {"OTHERFAX", kFaxWord},
    {"ASSISTANT", kAssistantWord},
    {"RADIO", kRadioWord},
    {"CAR", kCarWord},
    {"PAGER", kNoVoiceWord},
    {"BBS", kNoVoiceWord},
    {"MODEM", kNoVoiceWord},
    {"ISDN", kNoVoiceWord},
    {"TELEX", kNoVoiceWord},
    {"TTY", kNoVoiceWord},
    {"TTYTDD", kNoVoiceWord},
    {"TDD", kNoVoiceWord},
    {"TEXTPHONE", kNoVoiceWord},
    {"DATA", kNoVoiceWord},
    {"MAIN", 0},
    {"PHONE", 0},
    {"TEL", 0},
    {"NUMBER", 0},
    {"OTHER", 0},
    {"X", 0},
    {"TELEPHONE", 0},
    {"MY", 0},
    {"PRIMARY", 0},
    {"PRIVATE", 0},
}};

constexpr bool IsWordCharacter(char c) {
  return IsAlphanumeric(c) || static_cast<unsigned char>(c) >= 0x80;
}

/// `word` has letters and digits only. A number says nothing.
Words WordsOfOne(std::string_view word) {
  for (const auto& [known, says] : kKnownWords) {
    if (known.size() == word.size() && ToUpper(word.front()) == known.front() &&
        EqualIgnoringCase(word, known)) {
      return says;
    }
  }
  return word.find_first_not_of("0123456789") == std::string_view::npos ? 0 : kOtherWord;
}

/// Returns the places that a line may take, the best first. Returns an empty list if it may take
/// none, and nothing if the line does not say.
std::optional<Places> PlacesOf(Words words) {
  static constexpr std::array kAssistant = {Kind::kAssistant};
  static constexpr std::array kRadio = {Kind::kRadio};
  static constexpr std::array kCar = {Kind::kCar};
  static constexpr std::array kHomeFax = {Kind::kHomeFax};
  static constexpr std::array kWorkFax = {Kind::kBusinessFax};
  static constexpr std::array kMobile = {Kind::kMobile};
  static constexpr std::array kWorkMobile = {Kind::kMobile, Kind::kBusiness, Kind::kBusiness2};
  static constexpr std::array kHomeMobile = {Kind::kMobile, Kind::kHome, Kind::kHome2};
  static constexpr std::array kWork = {Kind::kBusiness, Kind::kBusiness2};
  static constexpr std::array kHome = {Kind::kHome, Kind::kHome2};
  const auto has = [words](Words wanted) { return (words & wanted) != 0; };

  if (has(kFaxWord)) {
    return has(kHomeWord) ? Places(kHomeFax) : has(kWorkWord) ? Places(kWorkFax) : Places();
  }
  if (has(kNoVoiceWord)) {
    return Places();
  }
  if (has(kAssistantWord)) {
    return kAssistant;
  }
  if (has(kRadioWord)) {
    return kRadio;
  }
  if (has(kCarWord)) {
    return kCar;
  }
  if (has(kCellWord)) {
    return has(kWorkWord)   ? Places(kWorkMobile)
           : has(kHomeWord) ? Places(kHomeMobile)
                            : Places(kMobile);
  }
  if (has(kWorkWord)) {
    return kWork;
  }
  if (has(kHomeWord)) {
    return kHome;
  }
  return std::nullopt;
}

/// Moves `number` into the first free place. Returns whether there was one.
bool Place(std::u16string& number, Places places, Numbers& numbers) {
  for (const Kind kind : places) {
    std::u16string& place = numbers[static_cast<std::size_t>(kind)];
    if (place.empty()) {
      place = std::move(number);
      return true;
    }
  }
  return false;
}

struct RankedLine {
  int rank = 0;
  std::size_t index = 0;
  std::optional<Places> places;
};

/// Returns 1 for the first, and kNoPreference for a line without a preference.
int RankOf(const TelephoneLine& line, const std::optional<Places>& places, Rules rules) {
  constexpr int kNoPreference = 101;
  if (line.preference > 0 && rules == Rules::kNow) {
    return line.preference;
  }
  const bool isPreferred = (line.words & kPreferredWord) != 0;
  return places && places->size() == 1 && isPreferred ? 1 : kNoPreference;
}

std::vector<RankedLine> ByPreference(std::span<const TelephoneLine> lines, Rules rules) {
  std::vector<RankedLine> ranked;
  ranked.reserve(lines.size());
  for (const TelephoneLine& line : lines) {
    const auto places = PlacesOf(line.words);
    ranked.push_back({RankOf(line, places, rules), ranked.size(), places});
  }
  std::ranges::sort(ranked, {},
                    [](const RankedLine& line) { return std::pair(line.rank, line.index); });
  return ranked;
}

}  // namespace

Words WordsOf(std::string_view typeOrLabel) {
  Words words = 0;
  for (std::size_t i = 0; i < typeOrLabel.size(); ++i) {
    const std::size_t first = i;
    while (i < typeOrLabel.size() && IsWordCharacter(typeOrLabel[i])) {
      ++i;
    }
    if (i > first) {
      words |= WordsOfOne(typeOrLabel.substr(first, i - first));
    }
  }
  return words;
}

Words WordsOfLabel(std::string_view label) {
  const Words words = WordsOf(label);
  return (words & kOtherWord) == 0 ? words : 0;
}

// Lines that name a kind come first, each in the best place that is free. A line that names none
// could take the place of one that does, so it waits. The order must not change: a tag knows its
// number by the kind alone.
AssignedNumbers AssignNumbers(std::span<TelephoneLine> lines, Rules rules) {
  // If nothing else is known, the most likely telephone to call somebody on.
  static constexpr std::array kUnknown = {Kind::kMobile, Kind::kHome, Kind::kHome2, Kind::kBusiness,
                                          Kind::kBusiness2};
  AssignedNumbers assigned;
  std::vector<std::size_t> unknown;
  std::vector<std::size_t> mobile;
  for (const auto& [rank, index, places] : ByPreference(lines, rules)) {
    TelephoneLine& line = lines[index];
    if (!places) {
      if (!line.needsKind) {
        unknown.push_back(index);
      }
    } else if (!Place(line.number, *places, assigned.numbers) && !places->empty()) {
      const bool isMobile = rules == Rules::kNow && places->front() == Kind::kMobile;
      (isMobile ? mobile : assigned.unplaced).push_back(index);
    }
  }
  // Further mobile numbers after the others: a number keeps the place that tags know it by.
  unknown.insert(unknown.end(), mobile.begin(), mobile.end());
  for (const std::size_t index : unknown) {
    if (!Place(lines[index].number, kUnknown, assigned.numbers)) {
      assigned.unplaced.push_back(index);
    }
  }
  std::sort(assigned.unplaced.begin(), assigned.unplaced.end());
  return assigned;
}

}  // namespace vcard
