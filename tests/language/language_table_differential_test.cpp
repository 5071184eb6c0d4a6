#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "language/language_table.h"
#include "tests/language/language_bytes.h"
#include "tests/language/twins/compare_with_twin.h"

namespace {

using Random = std::mt19937;

std::size_t Below(Random& random, std::size_t bound) { return random() % bound; }

// Pieces that the format treats in ways of their own, so that they meet in every order.
std::u16string Piece(Random& random) {
  static const std::vector<std::u16string> kPieces = {
      u" ",
      u"  ",
      u"\t",
      u"/",
      u"//",
      u"\r",
      u"\n",
      u"\r\n",
      u"\r\n",
      u"\r\n",
      u"\r\r\n",
      std::u16string(1, u'\0'),
      u"ID_TAB_2",
      u"ID_A",
      u"K",
      u"Learning",
      u"x",
      u"\u0421\u043B\u043E\u0432\u043E",
      u"\u5B66",
      u"\u00A0",
      u"\uFEFF",
      u"\u0D00",
      u"\u000A\u0D0A",
      u"\xD800",
      u"%d",
  };
  return kPieces[Below(random, kPieces.size())];
}

std::u16string Line(Random& random) {
  static const char16_t* const kKeys[] = {u"ID_A", u"ID_B", u"ID_TAB_2", u"id_a", u"//ID_A"};
  std::u16string line;
  if (Below(random, 4) == 0) {
    line += u' ';
  }
  line += kKeys[Below(random, 5)];
  line += Below(random, 2) == 0 ? u"\t" : u"  ";
  line += u"Text ";
  line += Piece(random);
  return line + u"\r\n";
}

std::vector<std::byte> GenerateFile(Random& random) {
  std::u16string text;
  for (std::size_t i = Below(random, 24); i > 0; --i) {
    text += Below(random, 3) == 0 ? Line(random) : Piece(random);
  }
  std::vector<std::byte> file = FileOf(text);
  switch (Below(random, 12)) {
    case 0:  // A byte-order mark that is damaged, or gone.
      file[Below(random, 2)] = static_cast<std::byte>(random());
      break;
    case 1:
      file.erase(file.begin(), file.begin() + 2);
      break;
    case 2:  // Shifted by one byte: big-endian to who reads on.
      file.insert(file.begin() + 2, static_cast<std::byte>(random()));
      break;
    case 3:
      file.resize(Below(random, file.size() + 1));
      break;
    case 4:
    case 5:
      file.push_back(static_cast<std::byte>(Below(random, 3) == 0 ? '\n' : 0));
      break;
    default:
      break;
  }
  return file;
}

TEST(LanguageTableTwin, AgreesOnGeneratedFiles) {
  constexpr std::size_t kFiles = 50000;
  Random random(20030611);
  std::size_t entries = 0;
  for (std::size_t i = 0; i < kFiles; ++i) {
    const std::vector<std::byte> file = GenerateFile(random);
    const std::string difference = twins::DifferenceFromTwin(file);
    ASSERT_EQ(difference, "") << "file " << i;
    language::LanguageTable table;
    table.LoadFrom(file);
    entries += table.GetCount();
  }
  // The generator is of no use once it makes files without entries.
  EXPECT_GT(entries, kFiles);
}

TEST(LanguageTableTwin, AgreesOnEveryEndOfAFile) {
  const std::vector<std::byte> whole =
      FileOf(u"// c\r\nID_A one / c\r\n\tID_B two\r\r\nID_A three\r\nK 1\r\n");
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    EXPECT_EQ(twins::DifferenceFromTwin(std::span(whole).first(size)), "") << size << " bytes";
  }
}

}  // namespace
