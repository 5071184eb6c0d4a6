#include "backends/vcard/telephone_kinds.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "backends/vcard/ascii.h"
#include "platform/contacts_store.h"

namespace vcard {
namespace {

using Kind = platform::PhoneKind;
using Words = std::vector<std::string>;

/// Words that several programs write for the same thing.
constexpr std::array<std::pair<std::string_view, std::string_view>, 11> kSynonyms = {{
    {"MOBILE", "CELL"},
    {"CELLULAR", "CELL"},
    {"IPHONE", "CELL"},
    {"BUSINESS", "WORK"},
    {"OFFICE", "WORK"},
    {"HOMEFAX", "HOME-FAX"},
    {"WORKFAX", "WORK-FAX"},
    {"BUSINESSFAX", "WORK-FAX"},
    {"OTHERFAX", "OTHER-FAX"},
    {"TTYTDD", "TTY"},
    {"TDD", "TTY"},
}};

/// Lines that are no telephone to speak through.
constexpr std::array<std::string_view, 9> kNoVoice = {
    "FAX", "PAGER", "BBS", "MODEM", "ISDN", "TELEX", "TTY", "TEXTPHONE", "DATA"};

constexpr bool IsWordCharacter(char c) {
  return IsAlphanumeric(c) || static_cast<unsigned char>(c) >= 0x80;
}

bool Has(const Words& words, std::string_view word) {
  return std::any_of(words.begin(), words.end(), [word](const std::string& each) {
    return each.size() == word.size() && each.front() == word.front() && each == word;
  });
}

bool HasAny(const Words& words, std::span<const std::string_view> wanted) {
  return std::any_of(wanted.begin(), wanted.end(),
                     [&words](std::string_view word) { return Has(words, word); });
}

/// Returns the places that a line may take, the best first. Returns an empty list if it may take
/// none, and nothing if the line does not say.
std::optional<std::span<const Kind>> PlacesOf(const Words& words) {
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
  using Places = std::span<const Kind>;

  if (Has(words, "FAX")) {
    return Has(words, "HOME") ? Places(kHomeFax) : Has(words, "WORK") ? Places(kWorkFax) : Places();
  }
  if (HasAny(words, kNoVoice)) {
    return Places();
  }
  if (Has(words, "ASSISTANT")) {
    return kAssistant;
  }
  if (Has(words, "RADIO")) {
    return kRadio;
  }
  if (Has(words, "CAR")) {
    return kCar;
  }
  if (Has(words, "CELL")) {
    return Has(words, "WORK")   ? Places(kWorkMobile)
           : Has(words, "HOME") ? Places(kHomeMobile)
                                : Places(kMobile);
  }
  if (Has(words, "WORK")) {
    return kWork;
  }
  if (Has(words, "HOME")) {
    return kHome;
  }
  return std::nullopt;
}

/// Puts `number` into the first free place. Returns whether there was one.
bool Place(const std::u16string& number, std::span<const Kind> places, Numbers& numbers) {
  for (const Kind kind : places) {
    std::u16string& place = numbers[static_cast<std::size_t>(kind)];
    if (place.empty()) {
      place = number;
      return true;
    }
  }
  return false;
}

using MaybePlaces = std::optional<std::span<const Kind>>;

/// Returns 1 for the first, and kNoPreference for a line without a preference.
int RankOf(const TelephoneLine& line, const MaybePlaces& places, Rules rules) {
  constexpr int kNoPreference = 101;
  if (line.preference > 0 && rules == Rules::kNow) {
    return line.preference;
  }
  return places && places->size() == 1 && Has(line.words, "PREF") ? 1 : kNoPreference;
}

std::vector<std::size_t> ByPreference(std::span<const TelephoneLine> lines,
                                      std::span<const MaybePlaces> places, Rules rules) {
  std::vector<std::pair<int, std::size_t>> ranked;
  ranked.reserve(lines.size());
  for (std::size_t index = 0; index < lines.size(); ++index) {
    ranked.emplace_back(RankOf(lines[index], places[index], rules), index);
  }
  std::sort(ranked.begin(), ranked.end());
  std::vector<std::size_t> order;
  order.reserve(ranked.size());
  for (const auto& [rank, index] : ranked) {
    order.push_back(index);
  }
  return order;
}

/// Returns whether a word in a label says what kind of telephone it is, or nothing at all.
bool IsPlainWord(const std::string& word) {
  static constexpr std::array<std::string_view, 18> kPlain = {
      "ASSISTANT", "RADIO", "CAR",    "CELL",  "WORK", "HOME",      "PREF", "MAIN",    "VOICE",
      "PHONE",     "TEL",   "NUMBER", "OTHER", "X",    "TELEPHONE", "MY",   "PRIMARY", "PRIVATE"};
  const bool isNumber = word.find_first_not_of("0123456789") == std::string::npos;
  return isNumber || std::find(kPlain.begin(), kPlain.end(), word) != kPlain.end() ||
         std::find(kNoVoice.begin(), kNoVoice.end(), word) != kNoVoice.end();
}

}  // namespace

void AppendWords(std::string_view typeOrLabel, Words& words) {
  std::size_t begin = 0;
  const std::string upper = ToUpper(typeOrLabel);
  while (begin < upper.size()) {
    const auto first = std::find_if(upper.begin() + static_cast<std::ptrdiff_t>(begin), upper.end(),
                                    IsWordCharacter);
    const auto end = std::find_if(first, upper.end(), [](char c) { return !IsWordCharacter(c); });
    const std::string_view word(first, end);
    const auto synonym = std::find_if(kSynonyms.begin(), kSynonyms.end(),
                                      [word](const auto& pair) { return pair.first == word; });
    if (synonym == kSynonyms.end()) {
      words.emplace_back(word);
    } else {
      const std::string_view meant = synonym->second;
      const std::size_t hyphen = meant.find('-');
      words.emplace_back(meant.substr(0, hyphen));
      if (hyphen != std::string_view::npos) {
        words.emplace_back(meant.substr(hyphen + 1));
      }
    }
    begin = static_cast<std::size_t>(end - upper.begin());
  }
}

void AppendLabel(std::string_view label, Words& words) {
  Words ofLabel;
  AppendWords(label, ofLabel);
  if (std::all_of(ofLabel.begin(), ofLabel.end(), IsPlainWord)) {
    words.insert(words.end(), ofLabel.begin(), ofLabel.end());
  }
}

// Lines that name a kind come first, each in the best place that is free. A line that names none
// could take the place of one that does, so it waits. The order must not change: a tag knows its
// number by the kind alone.
AssignedNumbers AssignNumbers(std::span<const TelephoneLine> lines, Rules rules) {
  // If nothing else is known, the most likely telephone to call somebody on.
  static constexpr std::array kUnknown = {Kind::kMobile, Kind::kHome, Kind::kHome2, Kind::kBusiness,
                                          Kind::kBusiness2};
  AssignedNumbers assigned;
  std::vector<std::size_t> unknown;
  std::vector<std::size_t> mobile;
  std::vector<MaybePlaces> allPlaces;
  allPlaces.reserve(lines.size());
  for (const TelephoneLine& line : lines) {
    allPlaces.push_back(PlacesOf(line.words));
  }
  for (const std::size_t index : ByPreference(lines, allPlaces, rules)) {
    const TelephoneLine& line = lines[index];
    const MaybePlaces& places = allPlaces[index];
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
