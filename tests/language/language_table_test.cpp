#include "language/language_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "language/texts.h"
#include "platform/clock.h"
#include "tests/language/language_bytes.h"
#include "tests/machine/memory_file_system.h"
#include "tests/support/watched_clock.h"
#include "tests/support/watched_file_system.h"

namespace {

using language::LanguageTable;
using std::string_view_literals::operator""sv;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Entries = std::vector<std::pair<std::u16string, std::u16string>>;

Entries EntriesOf(const std::vector<std::byte>& file) {
  LanguageTable table;
  table.LoadFrom(file);
  Entries entries;
  for (const LanguageTable::Entry& entry : table.GetEntries()) {
    entries.emplace_back(entry.key, entry.text);
  }
  return entries;
}

Entries EntriesOf(std::u16string_view text) { return EntriesOf(FileOf(text)); }

std::u16string LookUp(const LanguageTable& table, const char16_t* key) {
  const char16_t* const text = table.LookUp(key, u"(default)");
  return text;
}

TEST(LanguageTable, TakesTheTextBeforeATrailingComment) {
  EXPECT_THAT(EntriesOf(u"ID_TAB_2  Learning / the first tab\r\n"),
              ElementsAre(Pair(u"ID_TAB_2", u"Learning")));
}

TEST(LanguageTable, CutsATextAtASlashInItsMiddle) {
  EXPECT_THAT(EntriesOf(u"ID_A  and \t/or\r\nID_B on/off\r\n"),
              ElementsAre(Pair(u"ID_A", u"and"), Pair(u"ID_B", u"on")));
}

TEST(LanguageTable, DropsBlanksAroundKeyAndText) {
  EXPECT_THAT(EntriesOf(u" \t ID_A\t \tA text  with blanks \t\r\n"),
              ElementsAre(Pair(u"ID_A", u"A text  with blanks")));
}

TEST(LanguageTable, TakesOnlySpaceAndTabForBlanks) {
  EXPECT_THAT(EntriesOf(u"ID_A\u00A0B text\u00A0\u3000\r\n"),
              ElementsAre(Pair(u"ID_A\u00A0B", u"text\u00A0\u3000")));
}

TEST(LanguageTable, SkipsALineWhoseTextWouldBeginWithASlash) {
  EXPECT_THAT(EntriesOf(u"ID_A /text\r\nID_B // comment\r\n"), IsEmpty());
}

TEST(LanguageTable, SkipsAKeyWithoutText) {
  EXPECT_THAT(EntriesOf(u"ID_A\r\nID_B  \t\r\nID_C text\r\n"), ElementsAre(Pair(u"ID_C", u"text")));
}

TEST(LanguageTable, SkipsCommentsAndEmptyLines) {
  EXPECT_THAT(EntriesOf(u"// ID_A text\r\n\r\n  \t\r\n//ID_B text\r\n"), IsEmpty());
}

TEST(LanguageTable, TakesSlashesBehindABlankForAKey) {
  EXPECT_THAT(
      EntriesOf(u" //ID_A text\r\n// ID_B text\r\n/ID_C text\r\nID/D text\r\n"),
      ElementsAre(Pair(u"//ID_A", u"text"), Pair(u"/ID_C", u"text"), Pair(u"ID/D", u"text")));
}

TEST(LanguageTable, HasNoEscapesAndNoQuotes) {
  EXPECT_THAT(EntriesOf(u"ID_A \"one\\ntwo\"\r\n"), ElementsAre(Pair(u"ID_A", u"\"one\\ntwo\"")));
}

TEST(LanguageTable, SkipsALineWithANulBeforeItsText) {
  EXPECT_THAT(
      EntriesOf(u"ID_X text\r\n\0ID_A text\r\nID\0_B text\r\nID_C \0text\r\nID_D text\r\n"sv),
      ElementsAre(Pair(u"ID_X", u"text"), Pair(u"ID_D", u"text")));
}

TEST(LanguageTable, ShowsATextUpToItsFirstNulWithTheBlanksBeforeIt) {
  EXPECT_THAT(EntriesOf(u"ID_A one \0two  \r\nID_B text\r\n"sv),
              ElementsAre(Pair(u"ID_A", u"one "), Pair(u"ID_B", u"text")));
}

TEST(LanguageTable, EndsNoLineAtALoneCrOrLf) {
  EXPECT_THAT(EntriesOf(u"ID_A one\rtwo\nthree\n\rfour\r\nID_B text\r\n"),
              ElementsAre(Pair(u"ID_A", u"one\rtwo\nthree\n\rfour"), Pair(u"ID_B", u"text")));
}

TEST(LanguageTable, ReadsLinesSeparatedByLfAloneAsOneLongLine) {
  EXPECT_THAT(EntriesOf(u"ID_A one\nID_B two\nID_C on/off\n"),
              ElementsAre(Pair(u"ID_A", u"one\nID_B two\nID_C on")));
  EXPECT_THAT(EntriesOf(u"ID_A one\nID_B two\n"), ElementsAre(Pair(u"ID_A", u"one\nID_B two\n")));
}

TEST(LanguageTable, TakesALineEndOfCrCrLfAtItsLastTwoCharacters) {
  EXPECT_THAT(EntriesOf(u"ID_A one\r\r\nID_B two\r\n"),
              ElementsAre(Pair(u"ID_A", u"one\r"), Pair(u"ID_B", u"two")));
}

TEST(LanguageTable, NeedsNoLineEndBehindTheLastLine) {
  EXPECT_THAT(EntriesOf(u"ID_A one\r\nID_B two"),
              ElementsAre(Pair(u"ID_A", u"one"), Pair(u"ID_B", u"two")));
}

TEST(LanguageTable, StartsNoTextInTheLastTwoCharacters) {
  EXPECT_THAT(EntriesOf(u"ID_A 12"), IsEmpty());
  EXPECT_THAT(EntriesOf(u"ID_A 123"), ElementsAre(Pair(u"ID_A", u"123")));
  EXPECT_THAT(EntriesOf(u"ID_A 1\r\n"), ElementsAre(Pair(u"ID_A", u"1")));
}

TEST(LanguageTable, CountsAHalfCharacterAtTheEndAmongTheBytesButNotInTheText) {
  std::vector<std::byte> file = FileOf(u"ID_A 12");
  file.push_back(std::byte{0x41});
  EXPECT_THAT(EntriesOf(file), ElementsAre(Pair(u"ID_A", u"12")));
  file = FileOf(u"ID_A 1\r");
  file.push_back(std::byte{0x0A});
  EXPECT_THAT(EntriesOf(file), ElementsAre(Pair(u"ID_A", u"1\r")));
}

TEST(LanguageTable, FindsNothingInFilesOfAFewBytes) {
  const std::vector<std::byte> whole = FileOf(u"A b\r\n");
  for (std::size_t size = 0; size + 1 < whole.size(); ++size) {
    const std::vector<std::byte> cut(whole.begin(),
                                     whole.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_THAT(EntriesOf(cut), IsEmpty()) << size << " bytes";
  }
  EXPECT_THAT(EntriesOf(whole), ElementsAre(Pair(u"A", u"b")));
}

TEST(LanguageTable, FindsNothingInOtherEncodings) {
  EXPECT_THAT(EntriesOf(Bytes("ID_A text\r\n")), IsEmpty());
  EXPECT_THAT(EntriesOf(Bytes("\xEF\xBB\xBFID_A text\r\n")), IsEmpty());
  EXPECT_THAT(EntriesOf(Bytes("\xFE\xFF\0A\0 \0b\0b\0b\0\r\0\n"sv)), IsEmpty());
  EXPECT_THAT(EntriesOf(Bytes("A\0 \0b\0b\0b\0\r\0\n\0"sv)), IsEmpty());
  EXPECT_THAT(EntriesOf(Bytes("\xFF\xFD\x41\0 \0b\0b\0b\0\r\0\n\0"sv)), IsEmpty());
}

TEST(LanguageTable, RefusesAFirstCharacterWhoseLowByteIsZero) {
  EXPECT_THAT(EntriesOf(u"\u0100D_A text\r\n"), IsEmpty());
  EXPECT_THAT(EntriesOf(u"\u0101D_A text\r\n"), ElementsAre(Pair(u"\u0101D_A", u"text")));
}

TEST(LanguageTable, KeepsDuplicatesInFileOrderAndFindsTheFirst) {
  LanguageTable table;
  table.LoadFrom(FileOf(u"ID_A one\r\nID_B two\r\nID_A three\r\n"));
  EXPECT_EQ(table.GetCount(), 3);
  EXPECT_EQ(table.GetEntries()[2].text, u"three");
  EXPECT_EQ(LookUp(table, u"ID_A"), u"one");
}

TEST(LanguageTable, ComparesKeysExactly) {
  LanguageTable table;
  table.LoadFrom(FileOf(u"ID_AB text\r\n"));
  EXPECT_EQ(LookUp(table, u"ID_AB"), u"text");
  EXPECT_EQ(LookUp(table, u"ID_Ab"), u"(default)");
  EXPECT_EQ(LookUp(table, u"ID_A"), u"(default)");
  EXPECT_EQ(LookUp(table, u"ID_ABC"), u"(default)");
  EXPECT_EQ(LookUp(table, u""), u"(default)");
}

TEST(LanguageTable, GivesTheDefaultForANullKeyAndFromAnEmptyTable) {
  LanguageTable table;
  EXPECT_EQ(LookUp(table, u"ID_A"), u"(default)");
  table.LoadFrom(FileOf(u"ID_A text\r\n"));
  EXPECT_EQ(LookUp(table, nullptr), u"(default)");
  EXPECT_EQ(table.LookUp(nullptr, nullptr), nullptr);
  EXPECT_EQ(table.LookUp(u"ID_B", nullptr), nullptr);
}

TEST(LanguageTable, HoldsLongKeysAndTexts) {
  const std::u16string key(5000, u'K');
  const std::u16string text(70000, u'T');
  EXPECT_THAT(EntriesOf(key + u' ' + text + u"\r\nID_B text\r\n"),
              ElementsAre(Pair(key, text), Pair(u"ID_B", u"text")));
}

TEST(LanguageTable, TakesNoEntryBehindThe65535th) {
  std::u16string text;
  for (std::size_t i = 0; i < LanguageTable::kMaxEntries; ++i) {
    text += u"ID_A text\r\n";
  }
  LanguageTable table;
  table.LoadFrom(FileOf(text + u"ID_B text\r\nID_C text\r\n"));
  EXPECT_EQ(table.GetCount(), 65535);
  EXPECT_EQ(LookUp(table, u"ID_A"), u"text");
  EXPECT_EQ(LookUp(table, u"ID_B"), u"(default)");
}

constexpr std::u16string_view kPath = u"\\Voxtrel.lng";

class LanguageTableFile : public testing::Test {
 protected:
  LanguageTableFile() {
    m_table.LoadFrom(FileOf(u"ID_OLD text\r\n"));
    EXPECT_TRUE(m_files.PutFile(kPath, FileOf(u"ID_A text\r\n")));
  }

  machine::MemoryFileSystem m_files;
  LanguageTable m_table;
};

TEST_F(LanguageTableFile, ReplacesTheContentsByThoseOfTheFile) {
  m_table.Load(m_files, kPath);
  EXPECT_EQ(m_table.GetCount(), 1);
  EXPECT_EQ(LookUp(m_table, u"ID_A"), u"text");
  EXPECT_EQ(LookUp(m_table, u"ID_OLD"), u"(default)");
}

TEST_F(LanguageTableFile, KeepsNothingOpen) {
  m_table.Load(m_files, kPath);
  EXPECT_EQ(m_files.CountOpenHandles(), 0U);
}

TEST_F(LanguageTableFile, IsEmptyAfterAFileThatIsMissing) {
  m_table.Load(m_files, u"\\Other.lng");
  EXPECT_EQ(m_table.GetCount(), 0);
}

TEST_F(LanguageTableFile, IsEmptyAfterAFileThatAnotherReaderHoldsSinceItSharesWithNobody) {
  const auto held = m_files.Open(kPath, {.share = platform::FileShare::kRead});
  ASSERT_TRUE(held);
  m_table.Load(m_files, kPath);
  EXPECT_EQ(m_table.GetCount(), 0);
}

/// A reader that holds a file, and is done with it at the `n`-th sleep of the clock.
class Reader {
 public:
  Reader(std::unique_ptr<platform::File> held, std::size_t n) : m_held(std::move(held)) {
    m_clock.SetListener([this, n](std::uint32_t) {
      if (m_clock.GetSleeps().size() == n) {
        m_held.reset();
      }
    });
  }
  [[nodiscard]] support::WatchedClock& GetClock() { return m_clock; }

 private:
  std::unique_ptr<platform::File> m_held;
  support::WatchedClock m_clock;
};

TEST_F(LanguageTableFile, WaitsForAProcessThatIsJustReadingTheFile) {
  Reader reader(m_files.Open(kPath, {}).value(), 3);
  m_table.Load(m_files, kPath, reader.GetClock());
  EXPECT_EQ(LookUp(m_table, u"ID_A"), u"text");
  EXPECT_EQ(m_files.CountOpenHandles(), 0U);
}

TEST_F(LanguageTableFile, IsWaitedForByWhoNeedsTheTexts) {
  Reader reader(m_files.Open(kPath, {}).value(), 3);
  EXPECT_TRUE(language::LoadTexts(m_files, kPath, reader.GetClock()).IsLanguageFileLoaded());
  EXPECT_EQ(LookUp(LanguageTable::GetInstance(), u"ID_A"), u"text");
  LanguageTable::Release();
}

/// Notes in which mode each file is opened.
class NotedModes final : public support::WatchedFileSystem {
 public:
  using WatchedFileSystem::WatchedFileSystem;

  platform::Result<std::unique_ptr<platform::File>, platform::FileError> Open(
      std::u16string_view path, const platform::OpenMode& mode) override {
    modes.push_back(mode);
    return WatchedFileSystem::Open(path, mode);
  }

  std::vector<platform::OpenMode> modes;
};

TEST_F(LanguageTableFile, IsOpenedForReadingAloneAndSharedWithNobodyByWhoNeedsTheTexts) {
  NotedModes files(m_files);
  support::WatchedClock clock;
  EXPECT_TRUE(language::LoadTexts(files, kPath, clock).IsLanguageFileLoaded());
  ASSERT_EQ(files.modes.size(), 1U);
  EXPECT_EQ(files.modes[0].access, platform::FileAccess::kRead);
  EXPECT_EQ(files.modes[0].share, platform::FileShare::kNone);
  EXPECT_EQ(files.modes[0].creation, platform::FileCreation::kOpenExisting);
  LanguageTable::Release();
}

TEST_F(LanguageTableFile, IsEmptyAfterASecondInWhichAnotherHeldTheFile) {
  Reader reader(m_files.Open(kPath, {}).value(), 1000);
  m_table.Load(m_files, kPath, reader.GetClock());
  EXPECT_EQ(m_table.GetCount(), 0);
  EXPECT_EQ(reader.GetClock().GetTickCount(), 1000U);
}

TEST_F(LanguageTableFile, DoesNotWaitForAFileThatIsMissing) {
  support::WatchedClock nobody;
  m_table.Load(m_files, u"\\Other.lng", nobody);
  EXPECT_EQ(nobody.GetTickCount(), 0U);
}

TEST_F(LanguageTableFile, IsEmptyAndKeepsNothingOpenWhicheverCallFails) {
  support::WatchedFileSystem failing(m_files);
  for (std::size_t call = 1;; ++call) {
    failing.FailCall(call, support::Failing::kOnce);
    m_table.Load(failing, kPath);
    EXPECT_EQ(m_files.CountOpenHandles(), 0U);
    if (!failing.HasFailed()) {
      EXPECT_EQ(call, 4U);
      break;
    }
    EXPECT_EQ(m_table.GetCount(), 0) << "call " << call;
  }
  EXPECT_EQ(LookUp(m_table, u"ID_A"), u"text");
}

TEST_F(LanguageTableFile, IsEmptyAfterAnEmptyFile) {
  ASSERT_TRUE(m_files.PutFile(kPath, {}));
  m_table.Load(m_files, kPath);
  EXPECT_EQ(m_table.GetCount(), 0);
}

TEST_F(LanguageTableFile, DoesNotReadMoreThanTheMemoryOfTheHandheld) {
  std::vector<std::byte> file = FileOf(u"ID_A text\r\n");
  file.resize(LanguageTable::kMaxFileLength + 1);
  ASSERT_TRUE(m_files.PutFile(kPath, file));
  m_table.Load(m_files, kPath);
  EXPECT_EQ(m_table.GetCount(), 0);
}

TEST(LanguageTableInstance, IsOneUntilItIsReleasedAndEmptyAfterwards) {
  LanguageTable& table = LanguageTable::GetInstance();
  EXPECT_EQ(table.GetCount(), 0);
  table.LoadFrom(FileOf(u"ID_A text\r\n"));
  EXPECT_EQ(&LanguageTable::GetInstance(), &table);
  EXPECT_EQ(LanguageTable::GetInstance().GetCount(), 1);
  LanguageTable::Release();
  EXPECT_EQ(LanguageTable::GetInstance().GetCount(), 0);
  LanguageTable::Release();
  LanguageTable::Release();
}

}  // namespace
