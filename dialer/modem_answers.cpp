#include "dialer/modem_answers.h"

#include <algorithm>
#include <array>
#include <utility>

// Modems differ in their words, their line ends and what they say unasked. So each whole line is
// compared with all answers that modems are known to give. What is neither an answer nor an echo
// nor news counts as noise, which is a sign of a wrong speed.
namespace dialer {
namespace {

/// No line of a modem that matters here is longer. What is beyond it is left out.
constexpr std::size_t kLongestLine = 128;

struct Word {
  std::string_view word;
  ModemAnswer answer;
};

/// Whole lines. The numbers are those of ATV0. Some modems write the dial tone as two words, and
/// some say so if a number is on their list of those that never answer.
constexpr std::array kWords = std::to_array<Word>({
    {"OK", ModemAnswer::kOk},
    {"0", ModemAnswer::kOk},
    {"CONNECT", ModemAnswer::kConnect},
    {"1", ModemAnswer::kConnect},
    {"BUSY", ModemAnswer::kBusy},
    {"7", ModemAnswer::kBusy},
    {"NO CARRIER", ModemAnswer::kNoCarrier},
    {"3", ModemAnswer::kNoCarrier},
    {"NO ANSWER", ModemAnswer::kNoAnswer},
    {"8", ModemAnswer::kNoAnswer},
    {"NO DIALTONE", ModemAnswer::kNoDialTone},
    {"NO DIAL TONE", ModemAnswer::kNoDialTone},
    {"6", ModemAnswer::kNoDialTone},
    {"ERROR", ModemAnswer::kError},
    {"4", ModemAnswer::kError},
    {"BLACKLISTED", ModemAnswer::kError},
    {"DELAYED", ModemAnswer::kError},
    {"COMMAND NOT SUPPORT", ModemAnswer::kError},
});

/// Beginnings of lines that say more.
constexpr std::array kBeginnings = std::to_array<Word>({
    {"CONNECT ", ModemAnswer::kConnect},
    {"+CME ERROR", ModemAnswer::kError},
    {"+CMS ERROR", ModemAnswer::kError},
    {"DELAYED ", ModemAnswer::kError},
});

bool IsPrintable(std::byte byte) { return byte >= std::byte{' '} && byte <= std::byte{'~'}; }

/// Returns whether a byte that is no text belongs to the line all the same: flow control, and the
/// zeros that some lines are filled with.
bool IsSilentControl(std::byte byte) {
  constexpr std::byte kXon{0x11};
  constexpr std::byte kXoff{0x13};
  return byte == std::byte{0} || byte == kXon || byte == kXoff;
}

char ToUpper(char character) {
  return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A')
                                              : character;
}

std::string_view Trim(std::string_view line) {
  const std::size_t first = std::min(line.find_first_not_of(' '), line.size());
  return line.substr(first, line.find_last_not_of(' ') + 1 - first);
}

/// Returns whether a modem says this by itself while it dials.
bool IsNews(std::string_view line) {
  constexpr std::string_view kSigns = "+^*%$#&-";
  constexpr std::array<std::string_view, 5> kNews{"RING", "2", "RINGING", "RINGBACK", "DIALING"};
  return kSigns.find(line.front()) != std::string_view::npos ||
         std::ranges::find(kNews, line) != kNews.end();
}

}  // namespace

std::optional<ModemAnswer> AnswerReader::Take(std::byte byte) {
  m_hasHeard = true;
  if (byte == std::byte{'\r'} || byte == std::byte{'\n'}) {
    return EndLine();
  }
  if (IsPrintable(byte)) {
    if (m_line.size() < kLongestLine) {
      m_line += ToUpper(static_cast<char>(byte));
    }
  } else if (!IsSilentControl(byte)) {
    m_hasNoise = true;
    // Half a word of noise must not make a word with what follows.
    m_line.assign(1, '?');
  }
  return std::nullopt;
}

std::optional<ModemAnswer> AnswerReader::TakeUnendedLine() {
  const std::string before = m_line;
  const bool hadNoise = m_hasNoise;
  const auto answer = EndLine();
  if (!answer) {
    // The line may still go on.
    m_line = before;
    m_hasNoise = hadNoise;
  }
  return answer;
}

std::optional<ModemAnswer> AnswerReader::EndLine() {
  const std::string line = std::exchange(m_line, {});
  return ReadLine(Trim(line));
}

std::optional<ModemAnswer> AnswerReader::ReadLine(std::string_view line) {
  if (line.empty()) {
    return std::nullopt;
  }
  if (const auto word = std::ranges::find(kWords, line, &Word::word); word != kWords.end()) {
    return word->answer;
  }
  const auto begins = [line](const Word& word) { return line.starts_with(word.word); };
  if (const auto word = std::ranges::find_if(kBeginnings, begins); word != kBeginnings.end()) {
    return word->answer;
  }
  if (line.starts_with("AT")) {
    m_hasEcho = true;
  } else if (!IsNews(line)) {
    m_hasNoise = true;
  }
  return std::nullopt;
}

}  // namespace dialer
