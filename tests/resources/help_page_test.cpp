#include <gtest/gtest.h>

#include <cctype>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::string ReadAll(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::string Replace(std::string text, const std::string& what, const std::string& with) {
  for (std::size_t at = text.find(what); at != std::string::npos;
       at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
  return text;
}

/// Runs of blanks and line ends as one blank, none at the ends.
std::string Simplify(const std::string& text) {
  std::istringstream words(text);
  std::string word;
  std::string all;
  while (words >> word) {
    all += (all.empty() ? "" : " ") + word;
  }
  return all;
}

const std::string& HelpSource() {
  static const std::string source =
      ReadAll(VOXTREL_SOURCE_DIR "/resources/help/ZedraVoxtrelPE_help.htm");
  return source;
}

/// What a reader sees.
std::string HelpText() {
  std::string text = std::regex_replace(HelpSource(), std::regex("<[^>]*>"), " ");
  text = Replace(text, "&gt;", ">");
  text = Replace(text, "&lt;", "<");
  text = Replace(text, "&nbsp;", " ");
  return Simplify(Replace(text, "&amp;", "&"));
}

/// The texts of the literals in a source, neighbours joined to one: all but the keys.
std::set<std::string> TextsIn(const std::string& path) {
  const std::string source = std::regex_replace(ReadAll(path), std::regex("//[^\n]*"), "");
  const std::regex literals("u\"(?:[^\"\\\\]|\\\\.)*\"(?:\\s*u\"(?:[^\"\\\\]|\\\\.)*\")*");
  std::set<std::string> texts;
  for (std::sregex_iterator at(source.begin(), source.end(), literals), end; at != end; ++at) {
    std::string text = std::regex_replace(at->str(), std::regex("\"\\s*u\""), "");
    text = text.substr(2, text.size() - 3);
    text = Replace(Replace(text, "\\\\", "\\"), "\\u00A0", " ");
    text = Simplify(Replace(text, "%d", " "));
    if (!text.empty() && !text.starts_with("ID_")) {
      texts.insert(text);
    }
  }
  return texts;
}

/// Of each key: its English text, and not the note for translators that follows.
std::set<std::string> TextsOfKeys() {
  const std::string source = ReadAll(VOXTREL_SOURCE_DIR "/resources/language_keys.h");
  const std::regex rows("u\"ID_[A-Z0-9_]+\",\\s*u\"((?:[^\"\\\\]|\\\\.)*)\"");
  std::set<std::string> texts;
  for (std::sregex_iterator at(source.begin(), source.end(), rows), end; at != end; ++at) {
    std::string text = Replace(Replace((*at)[1].str(), "\\\\", "\\"), "\\u00A0", " ");
    texts.insert(Simplify(text));
  }
  return texts;
}

TEST(HelpPage, ExplainsEveryTextThatAUserCanSee) {
  const std::string page = HelpText();
  std::set<std::string> texts = TextsIn(VOXTREL_SOURCE_DIR "/resources/strings.h");
  const std::set<std::string> ofKeys = TextsOfKeys();
  ASSERT_GT(texts.size(), 10U) << "the texts were not found";
  ASSERT_GT(ofKeys.size(), 50U) << "the keys were not found";
  texts.insert(ofKeys.begin(), ofKeys.end());
  for (const std::string& text : texts) {
    EXPECT_NE(page.find(text), std::string::npos) << text;
  }
}

/// For a text with places to be filled, such as "%1": with anything short in each of them. A full
/// stop after the last of them may be missing.
std::regex PatternFor(const std::string& text) {
  const std::string line = Simplify(Replace(text, "\\n", " "));
  const std::string literal = std::regex_replace(line, std::regex("[.()?*+$^|{}]"), "\\$&");
  return std::regex(std::regex_replace(literal, std::regex("%[12](\\\\\\.$)?"), "[^:]{1,40}"));
}

TEST(HelpPage, ExplainsEveryTextOfTheDesktop) {
  const std::string page = HelpText();
  const std::set<std::string> texts = TextsIn(VOXTREL_SOURCE_DIR "/resources/desktop_strings.h");
  ASSERT_GT(texts.size(), 25U) << "the texts were not found";
  for (const std::string& text : texts) {
    const std::string line = Simplify(Replace(text, "\\n", " "));
    const bool isExplained = line.find('%') == std::string::npos
                                 ? page.find(line) != std::string::npos
                                 : std::regex_search(page, PatternFor(text));
    EXPECT_TRUE(isExplained) << text;
  }
}

TEST(HelpPage, ExplainsTheTextsThatAreNeverTranslated) {
  const std::string page = HelpText();
  for (const char* text : {"There are no wave-record devices in you computer.",
                           "File :", " couldn't be creat", "Can't process this file", "Error Code",
                           "Failed to get IContact in OnSelchangeComboName", "ERROR"}) {
    EXPECT_NE(page.find(text), std::string::npos) << text;
  }
}

TEST(HelpPage, HasTheAnchorThatTheTestWindowOpens) {
  EXPECT_NE(HelpSource().find("<h2 id=\"test\">"), std::string::npos);
}

TEST(HelpPage, HasATargetForEveryLinkWithinIt) {
  const std::string& source = HelpSource();
  const std::regex links("href=\"#([^\"]+)\"");
  int count = 0;
  for (std::sregex_iterator at(source.begin(), source.end(), links), end; at != end; ++at) {
    EXPECT_NE(source.find("id=\"" + (*at)[1].str() + "\""), std::string::npos) << (*at)[1];
    ++count;
  }
  EXPECT_GT(count, 10);
}

TEST(HelpPage, HasEachTargetOnce) {
  const std::string& source = HelpSource();
  const std::regex targets("\\sid=\"([^\"]+)\"");
  std::set<std::string> seen;
  for (std::sregex_iterator at(source.begin(), source.end(), targets), end; at != end; ++at) {
    EXPECT_TRUE(seen.insert((*at)[1].str()).second) << (*at)[1];
  }
}

TEST(HelpPage, NeedsNothingFromTheNetwork) {
  const std::regex outside("(src|href)=\"[a-z]+:");
  EXPECT_FALSE(std::regex_search(HelpSource(), outside));
  EXPECT_EQ(HelpSource().find("@import"), std::string::npos);
  EXPECT_EQ(HelpSource().find("<script"), std::string::npos);
}

TEST(HelpPage, ClosesEveryElement) {
  const std::string source =
      std::regex_replace(HelpSource(), std::regex("<style>[^]*?</style>"), "");
  const std::set<std::string> empty{"meta", "img"};
  const std::regex tags("<(/?)([a-z0-9]+)[^>]*?(/?)>");
  std::vector<std::string> open;
  for (std::sregex_iterator at(source.begin(), source.end(), tags), end; at != end; ++at) {
    const std::string name = (*at)[2].str();
    if (empty.contains(name) || (*at)[3].length() > 0) {
      continue;
    }
    if ((*at)[1].length() == 0) {
      open.push_back(name);
      continue;
    }
    ASSERT_FALSE(open.empty()) << name;
    ASSERT_EQ(open.back(), name);
    open.pop_back();
  }
  EXPECT_TRUE(open.empty());
}

}  // namespace
