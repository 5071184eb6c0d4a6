#include "storage/registry_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "storage/stored_text.h"
#include "tests/machine/memory_registry.h"
#include "tests/support/briefly.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/watched_registry.h"

namespace storage {

using platform::RegistryError;
using platform::RegistryType;
using platform::RegistryValue;
using support::BytesOf;
using support::KeyExists;
using support::Put;
using support::SubkeyNames;
using support::Utf16Bytes;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

const std::u16string kHeader = u"Windows Registry Editor Version 5.00\r\n";

std::vector<std::byte> File(std::u16string_view text) {
  return ToUtf16Bytes(std::u16string(1, u'\xFEFF').append(text));
}

std::vector<std::byte> Raw(std::string_view text) {
  const auto bytes = std::as_bytes(std::span(text));
  return {bytes.begin(), bytes.end()};
}

std::vector<std::byte> SomeBytes(std::initializer_list<int> values) {
  std::vector<std::byte> bytes;
  for (const int value : values) {
    bytes.push_back(static_cast<std::byte>(value));
  }
  return bytes;
}

class RegistryFile : public testing::Test {
 protected:
  /// Imports the header and `body`.
  void Import(std::u16string_view body) { ImportFile(File(kHeader + std::u16string(body))); }

  void ImportFile(const std::vector<std::byte>& file) {
    const auto parsed = ParseRegistryFile(file);
    if (!parsed) {
      FAIL() << parsed.error().line << ": " << parsed.error().message;
    }
    const auto applied = ApplyRegistryChanges(m_registry, parsed->changes);
    ASSERT_TRUE(applied) << applied.error().message;
    m_passedOver = parsed->passedOver;
  }

  /// What is wrong with the header and `body`.
  [[nodiscard]] static RegistryFileError Refused(std::u16string_view body) {
    return RefusedFile(File(kHeader + std::u16string(body)));
  }

  [[nodiscard]] static RegistryFileError RefusedFile(const std::vector<std::byte>& file) {
    const auto parsed = ParseRegistryFile(file);
    return parsed ? RegistryFileError{999, "nothing"} : parsed.error();
  }

  [[nodiscard]] RegistryValue Value(std::u16string_view key, std::u16string_view name) {
    return m_registry.OpenKey(key).value()->Query(name).value();
  }

  [[nodiscard]] std::u16string Export() {
    const std::u16string text = FromUtf16Bytes(WriteRegistryFile(m_registry).value());
    EXPECT_TRUE(text.starts_with(u'\xFEFF' + kHeader));
    return text.substr(1 + kHeader.size());
  }

  machine::MemoryRegistry m_registry;
  std::size_t m_passedOver = 0;  ///< In the latest import.
};

}  // namespace

using RegistryFileReading = RegistryFile;

TEST_F(RegistryFileReading, TakesEachKindOfValue) {
  Import(
      u"\r\n[HKEY_LOCAL_MACHINE\\Software\\Zedra]\r\n"
      u"\"text\"=\"Größe \\\"\\\\ end\"\r\n"
      u"@=\"default\"\r\n"
      u"\"number\"=dword:0000c0de\r\n"
      u"\"bytes\"=hex:01,ff,00\r\n"
      u"\"typed\"=hex(7):41,00\r\n"
      u"\"none\"=hex(0):\r\n");
  const std::u16string key = u"Software\\Zedra";
  EXPECT_EQ(Value(key, u"text").type, RegistryType::kString);
  EXPECT_EQ(Value(key, u"text").bytes, Utf16Bytes(std::u16string_view(u"Größe \"\\ end\0", 13)));
  EXPECT_EQ(Value(key, u"").bytes, Utf16Bytes(std::u16string_view(u"default\0", 8)));
  EXPECT_EQ(Value(key, u"number").type, RegistryType::kDword);
  EXPECT_EQ(Value(key, u"number").bytes, SomeBytes({0xDE, 0xC0, 0, 0}));
  EXPECT_EQ(Value(key, u"bytes").type, RegistryType::kBinary);
  EXPECT_EQ(Value(key, u"bytes").bytes, SomeBytes({1, 0xFF, 0}));
  EXPECT_EQ(Value(key, u"typed").type, static_cast<RegistryType>(7));
  EXPECT_EQ(Value(key, u"none").type, RegistryType::kNone);
  EXPECT_THAT(Value(key, u"none").bytes, IsEmpty());
}

TEST_F(RegistryFileReading, JoinsContinuedLinesOfBytes) {
  Import(
      u"[HKEY_LOCAL_MACHINE\\a]\r\n"
      u"\"v\"=hex(1):01,02,\\\r\n  03,\\ \n\t04\r\n"
      u"\"w\"=hex:\\\r\n  05\r\n"
      u"\"x\"=hex:06,\\\r\n  \\\r\n  07\r\n");
  EXPECT_EQ(Value(u"a", u"v").bytes, SomeBytes({1, 2, 3, 4}));
  EXPECT_EQ(Value(u"a", u"w").bytes, SomeBytes({5}));
  EXPECT_EQ(Value(u"a", u"x").bytes, SomeBytes({6, 7}));
}

TEST_F(RegistryFileReading, PassesOverCommentsBlanksAndEmptyLines) {
  Import(
      u"\r\n ; a comment\r\n\t[HKEY_LOCAL_MACHINE\\a] \r\n;\r\n"
      u" \"v\" = dword:1 ; one\r\n\"w\"=hex:02 ; two\r\n\"x\"=\"3\";three\r\n"
      u"\"y\"=hex: ; nothing\r\n[HKEY_LOCAL_MACHINE\\b]\t \r\n  ");
  EXPECT_EQ(Value(u"a", u"v").bytes, SomeBytes({1, 0, 0, 0}));
  EXPECT_EQ(Value(u"a", u"w").bytes, SomeBytes({2}));
  EXPECT_EQ(Value(u"a", u"x").bytes, SomeBytes({'3', 0, 0, 0}));
  EXPECT_THAT(Value(u"a", u"y").bytes, IsEmpty());
  EXPECT_TRUE(KeyExists(m_registry, u"b"));
}

TEST_F(RegistryFileReading, WordsOfTypesAreTakenInAnyLetterCase) {
  Import(u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=DWORD:1A\r\n\"w\"=Hex(B):0C\r\n");
  EXPECT_EQ(Value(u"a", u"v").type, RegistryType::kDword);
  EXPECT_EQ(Value(u"a", u"v").bytes, SomeBytes({0x1A, 0, 0, 0}));
  EXPECT_EQ(Value(u"a", u"w").type, static_cast<RegistryType>(0xB));
  EXPECT_EQ(Value(u"a", u"w").bytes, SomeBytes({0x0C}));
}

TEST_F(RegistryFileReading, TakesLinesThatEndWithALineFeedAlone) {
  ImportFile(
      File(u"Windows Registry Editor Version 5.00\n\n[HKEY_LOCAL_MACHINE\\a]\n\"v\"=\"1\"\n"));
  EXPECT_EQ(Value(u"a", u"v").bytes, SomeBytes({'1', 0, 0, 0}));
}

TEST_F(RegistryFileReading, ATextGoesOnOverLineEnds) {
  Import(u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=\"one\r\ntwo\"\r\n\"w\"=\"3\"\r\n");
  EXPECT_EQ(Value(u"a", u"v").bytes, Utf16Bytes(std::u16string_view(u"one\r\ntwo\0", 9)));
  EXPECT_EQ(Value(u"a", u"w").bytes, SomeBytes({'3', 0, 0, 0}));
}

TEST_F(RegistryFileReading, TheLastLineNeedsNoEnd) {
  Import(u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex:07");
  EXPECT_EQ(Value(u"a", u"v").bytes, SomeBytes({7}));
}

TEST_F(RegistryFileReading, NamesOfKeysMayHoldBrackets) {
  Import(u"[HKEY_LOCAL_MACHINE\\a]b [c]\\d]]\r\n");
  EXPECT_TRUE(KeyExists(m_registry, u"a]b [c]\\d]"));
}

TEST_F(RegistryFileReading, TheRootIsNamedWithoutRegardToCase) {
  Import(u"[hkey_local_machine]\r\n\"v\"=hex:07\r\n[HKEY_Local_Machine\\a]\r\n");
  EXPECT_EQ(BytesOf(m_registry, u"", u"v"), SomeBytes({7}));
  EXPECT_TRUE(KeyExists(m_registry, u"a"));
}

TEST_F(RegistryFileReading, DeletesKeysAndValues) {
  Import(
      u"[HKEY_LOCAL_MACHINE\\a\\b]\r\n\"v\"=hex:01\r\n\"w\"=hex:02\r\n@=\"x\"\r\n"
      u"[HKEY_LOCAL_MACHINE\\c\\d]\r\n");
  Import(u"[HKEY_LOCAL_MACHINE\\a\\b]\r\n\"V\"=-\r\n@=-\r\n[-HKEY_LOCAL_MACHINE\\c]\r\n");
  EXPECT_THAT(support::ValueNames(*m_registry.OpenKey(u"a\\b").value()), ElementsAre(u"w"));
  EXPECT_FALSE(KeyExists(m_registry, u"c"));
}

TEST_F(RegistryFileReading, WhatIsToBeDeletedNeedNotBeThere) {
  Import(u"[-HKEY_LOCAL_MACHINE\\a]\r\n[HKEY_LOCAL_MACHINE\\b]\r\n\"v\"=-\r\n");
  EXPECT_THAT(SubkeyNames(m_registry, u""), ElementsAre(u"b"));
}

TEST_F(RegistryFileReading, AKeyCanBeDeletedAndMadeAgain) {
  Import(u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex:01\r\n");
  Import(
      u"[HKEY_LOCAL_MACHINE\\a]\r\n\"w\"=hex:01\r\n[-HKEY_LOCAL_MACHINE\\a]\r\n"
      u"[HKEY_LOCAL_MACHINE\\a]\r\n\"x\"=hex:01\r\n");
  EXPECT_THAT(support::ValueNames(*m_registry.OpenKey(u"a").value()), ElementsAre(u"x"));
}

TEST_F(RegistryFileReading, TheLongestValueIsTakenAndALongerOneIsNot) {
  SKIP_IF_BRIEF();
  std::u16string bytes = u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex:00";
  for (std::size_t i = 1; i < platform::kMaxValueBytes; ++i) {
    bytes += u",00";
  }
  Import(bytes);
  EXPECT_EQ(Value(u"a", u"v").bytes.size(), platform::kMaxValueBytes);
  EXPECT_THAT(Refused(bytes + u",00").message, HasSubstr("too long"));
}

TEST_F(RegistryFileReading, PassesOverKeysOfOtherHivesAndCountsThem) {
  const std::u16string longName(platform::kMaxValueNameLength + 1, u'n');
  Import(u"[HKEY_CURRENT_USER\\a\\\\b]\r\n\"v\"=\"two\r\nlines\"\r\n\"" + longName +
         u"\"=dword:1\r\n"
         u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex:01\r\n"
         u"[-hkey_users\\a]\r\n[HKEY_CLASSES_ROOT]\r\n\"w\"=hex:02,\\\r\n  03\r\n@=-\r\n"
         u"[HKEY_CURRENT_CONFIG\\a]\r\n");
  EXPECT_EQ(m_passedOver, 4U);
  EXPECT_THAT(SubkeyNames(m_registry, u""), ElementsAre(u"a"));
  EXPECT_EQ(Value(u"a", u"v").bytes, SomeBytes({1}));
  const auto opened = m_registry.OpenKey(u"a");
  ASSERT_TRUE(opened);
  EXPECT_THAT(support::ValueNames(**opened), ElementsAre(u"v"));
}

TEST_F(RegistryFileReading, AMistakeBelowAnotherHiveIsStillAMistake) {
  const RegistryFileError error = Refused(u"[HKEY_CURRENT_USER\\a]\r\n\"v\"=nonsense\r\n");
  EXPECT_EQ(error.line, 3U);
  EXPECT_THAT(error.message, HasSubstr("must be a string"));
}

TEST_F(RegistryFileReading, TakesTheKeysOf32BitProgramsForThoseOfTheDevice) {
  Import(
      u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node]\r\n\"r\"=hex:01\r\n"
      u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Zedra\\Zedra Voxtrel\\7]\r\n\"v\"=hex:02\r\n"
      u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Nodes\\x]\r\n"
      u"[HKEY_LOCAL_MACHINE\\WOW6432Node\\y]\r\n");
  EXPECT_EQ(Value(u"Software", u"r").bytes, SomeBytes({1}));
  EXPECT_EQ(Value(u"Software\\Zedra\\Zedra Voxtrel\\7", u"v").bytes, SomeBytes({2}));
  EXPECT_THAT(SubkeyNames(m_registry, u"Software"), ElementsAre(u"Zedra", u"WOW6432Nodes"));
  EXPECT_TRUE(KeyExists(m_registry, u"WOW6432Node\\y"));
  Import(u"[HKEY_LOCAL_MACHINE\\Software\\WOW6432Node\\WOW6432Node\\z]\r\n");
  EXPECT_TRUE(KeyExists(m_registry, u"Software\\z")) << "However often.";
}

TEST_F(RegistryFileReading, DeletesKeysOf32BitProgramsButNotAllOfThem) {
  ASSERT_EQ(support::ErrorOf(m_registry.CreateKey(u"Software\\a")), std::nullopt);
  Import(u"[-HKEY_LOCAL_MACHINE\\Software\\WOW6432Node\\a]\r\n");
  EXPECT_FALSE(KeyExists(m_registry, u"Software\\a"));
  EXPECT_THAT(Refused(u"[-HKEY_LOCAL_MACHINE\\Software\\WOW6432Node]\r\n").message,
              HasSubstr("cannot be deleted"));
}

using AnsiRegistryFile = RegistryFile;

TEST_F(AnsiRegistryFile, IsReadInItsCodePage) {
  ImportFile(
      Raw("REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\Software\\Gr\xFC\x80]\r\n"
          "\"M\xFCller\"=\"\x84Jos\xE9\x93 \x8A\x9F\xFF\"\r\n"
          "\"n\"=dword:0000c0de\r\n; \x81\r\n"));
  const std::u16string key = u"Software\\Grü€";
  EXPECT_EQ(Value(key, u"Müller").type, RegistryType::kString);
  EXPECT_EQ(Value(key, u"Müller").bytes, Utf16Bytes(std::u16string(u"„José“ ŠŸÿ") + u'\0'));
  EXPECT_EQ(Value(key, u"n").bytes, SomeBytes({0xDE, 0xC0, 0, 0}));
}

TEST_F(AnsiRegistryFile, HasTheBytesOfTextsInItsCodePageToo) {
  ImportFile(
      Raw("REGEDIT4\n[HKEY_LOCAL_MACHINE\\a]\n\"one\"=hex(1):e9,00\n\"two\"=hex(2):80,\\\n  00\n"
          "\"list\"=hex(7):41,00,42,00,00\n\"bytes\"=hex:e9,00\n\"none\"=hex(0):e9\n"
          "\"number\"=hex(4):e9,00,00,00\n"));
  EXPECT_EQ(Value(u"a", u"one").bytes, SomeBytes({0xE9, 0, 0, 0}));
  EXPECT_EQ(Value(u"a", u"two").bytes, SomeBytes({0xAC, 0x20, 0, 0}));
  EXPECT_EQ(Value(u"a", u"list").bytes, Utf16Bytes(std::u16string_view(u"A\0B\0\0", 5)));
  EXPECT_EQ(Value(u"a", u"bytes").bytes, SomeBytes({0xE9, 0}));
  EXPECT_EQ(Value(u"a", u"none").bytes, SomeBytes({0xE9}));
  EXPECT_EQ(Value(u"a", u"number").bytes, SomeBytes({0xE9, 0, 0, 0}));
}

TEST_F(AnsiRegistryFile, BeginsWithItsNameAlone) {
  const RegistryFileError error = RefusedFile(Raw("REGEDIT4x\r\n"));
  EXPECT_EQ(error.line, 1U);
  EXPECT_THAT(error.message, HasSubstr("\"REGEDIT4\""));
}

using RegistryFileRefusal = RegistryFile;

TEST_F(RegistryFileRefusal, TellsTheLineOfEachMistake) {
  const struct {
    std::u16string_view body;
    std::size_t line;
    const char* message;
  } cases[] = {
      {u"\r\nnonsense\r\n", 3, "neither a key"},
      {u"[HKEY_LOCAL_MACHINE\\a\r\n", 2, "must end with \"]\""},
      {u"[HKEY_LOCAL_MACHINE\\a] x\r\n", 2, "must end with \"]\""},
      {u"[HKEY_CURRENT_USERX\\a]\r\n", 2, "only keys below"},
      {u"[HKEY_LOCAL_MACHINEX\\a]\r\n", 2, "only keys below"},
      {u"[]\r\n", 2, "only keys below"},
      {u"[-]\r\n", 2, "only keys below"},
      {u"[HKEY_LOCAL_MACHINE\\]\r\n", 2, "not the name of a key"},
      {u"[HKEY_LOCAL_MACHINE\\a\\\\b]\r\n", 2, "not the name of a key"},
      {u"[-HKEY_LOCAL_MACHINE]\r\n", 2, "cannot be deleted"},
      {u"\"v\"=hex:01\r\n", 2, "before the first key"},
      {u"[-HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex:01\r\n", 3, "key to be deleted"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\r\n\r\n", 3, "not closed"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"\r\n", 3, "\"=\" is missing"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=\r\n", 3, "must be a string"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=7\r\n", 3, "must be a string"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=\"a\\n\"\r\n", 3, "\"\\\" in a text"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=\"a\\", 3, "\"\\\" in a text"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=\"a\r\nb\r\n", 3, "not closed"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=\"a\" b\r\n", 3, "after the value"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=\"a\r\nb\nc\"\r\nnonsense\r\n", 6, "neither a key"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=-1\r\n", 3, "after the value"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=dword:\r\n", 3, "one to eight"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=dword:123456789\r\n", 3, "one to eight"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=dword:12x\r\n", 3, "after the value"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex01\r\n", 3, "\"hex\" must be"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex(x):01\r\n", 3, "\"hex\" must be"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex(2:01\r\n", 3, "\"hex\" must be"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex:123\r\n", 3, "a byte"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex:01,\r\n", 3, "a byte"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex:01,,02\r\n", 3, "a byte"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex:01,\\\r\n\r\n", 4, "a byte"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex:01,\\", 3, "a byte"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex:01,\\ x\r\n", 3, "last of its line"},
      {u"[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex:01 02\r\n", 3, "after the value"},
  };
  for (const auto& one : cases) {
    const RegistryFileError error = Refused(one.body);
    EXPECT_EQ(error.line, one.line) << one.message;
    EXPECT_THAT(error.message, HasSubstr(one.message));
  }
}

TEST_F(RegistryFileRefusal, NamesThatNoRegistryTakesAreMistakes) {
  const std::u16string longName(platform::kMaxValueNameLength + 1, u'n');
  EXPECT_EQ(Refused(u"[HKEY_LOCAL_MACHINE\\a]\r\n\"" + longName + u"\"=\"x\"").line, 3U);
  const std::u16string zero(1, u'\0');
  EXPECT_EQ(Refused(u"[HKEY_LOCAL_MACHINE\\a]\r\n\"" + zero + u"\"=\"x\"").line, 3U);
  EXPECT_EQ(Refused(u"[HKEY_LOCAL_MACHINE\\a" + zero + u"]").line, 2U);
  EXPECT_EQ(Refused(u"[HKEY_LOCAL_MACHINE\\" + longName.substr(0, 256) + u"]").line, 2U);
}

TEST_F(RegistryFileRefusal, TheHeaderMustBeThatOfVersionFive) {
  for (const auto* const text :
       {u"", u"\r\n", u"REGEDIT4\r\n", u"Windows Registry Editor Version 5.001\r\n",
        u"windows registry editor version 5.00\r\n"}) {
    EXPECT_EQ(RefusedFile(File(text)).line, 1U);
  }
}

TEST_F(RegistryFileRefusal, AnotherEncodingIsNamed) {
  const std::string header = "Windows Registry Editor Version 5.00\r\n";
  EXPECT_THAT(RefusedFile(Raw("\xEF\xBB\xBF" + header)).message, HasSubstr("UTF-8"));
  EXPECT_THAT(RefusedFile(Raw(header)).message, HasSubstr("UTF-16LE"));
  EXPECT_THAT(RefusedFile(Raw("\xFE\xFF")).message, HasSubstr("big-endian"));
  EXPECT_THAT(RefusedFile(Raw("\xFF\xFEW")).message, HasSubstr("middle of a character"));
  EXPECT_THAT(RefusedFile(Raw("")).message, HasSubstr("empty"));
  EXPECT_THAT(RefusedFile(ToUtf16Bytes(kHeader)).message, HasSubstr("byte-order mark"));
  EXPECT_EQ(RefusedFile(Raw(header)).line, 0U);
}

using RegistryFileImport = RegistryFile;

TEST_F(RegistryFileImport, IsMadeWholeOrNotAtAll) {
  const auto parsed = ParseRegistryFile(
      File(kHeader + u"[-HKEY_LOCAL_MACHINE\\old]\r\n[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex:01\r\n"
                     u"\"w\"=-\r\n[HKEY_LOCAL_MACHINE\\b]\r\n\"v\"=hex:02\r\n"));
  ASSERT_TRUE(parsed);
  const auto& changes = parsed->changes;
  std::size_t call = 1;
  for (;; ++call) {
    SCOPED_TRACE(call);
    machine::MemoryRegistry registry({u"old"});
    support::WatchedRegistry failing(registry);
    failing.FailCall(call, support::Failing::kOnce, RegistryError::kFull);
    const auto applied = ApplyRegistryChanges(failing, changes);
    if (!failing.HasFailed()) {
      EXPECT_TRUE(applied);
      EXPECT_THAT(SubkeyNames(registry, u""), ElementsAre(u"a", u"b"));
      break;
    }
    ASSERT_FALSE(applied);
    EXPECT_THAT(applied.error().message, HasSubstr("full"));
    EXPECT_THAT(SubkeyNames(registry, u""), ElementsAre(u"old"));
    ASSERT_EQ(support::ErrorOf(registry.BeginGroup()), std::nullopt) << "no group may stay open";
    registry.CancelGroup();
  }
  EXPECT_GT(call, 6U);
}

TEST_F(RegistryFileImport, TellsTheLineThatCouldNotBeMade) {
  const auto parsed =
      ParseRegistryFile(File(kHeader + u"\r\n[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex:01\r\n"));
  support::WatchedRegistry failing(m_registry);
  // The group, the key, the value.
  failing.FailCall(3, support::Failing::kOnce, RegistryError::kReadOnly);
  const auto applied = ApplyRegistryChanges(failing, parsed->changes);
  ASSERT_FALSE(applied);
  EXPECT_EQ(applied.error().line, 4U);
  EXPECT_THAT(applied.error().message, HasSubstr("written"));
}

using RegistryFileWriting = RegistryFile;

TEST_F(RegistryFileWriting, AnEmptyRegistryIsTheHeaderAlone) { EXPECT_EQ(Export(), u""); }

TEST_F(RegistryFileWriting, WritesEachKeyWithItsValuesInTheirOrder) {
  ASSERT_EQ(support::ErrorOf(m_registry.CreateKey(u"b\\c")), std::nullopt);
  ASSERT_EQ(support::ErrorOf(support::PutText(m_registry, u"b", u"two", u"2")), std::nullopt);
  ASSERT_EQ(support::ErrorOf(support::PutText(m_registry, u"b", u"", u"default")), std::nullopt);
  ASSERT_EQ(support::ErrorOf(m_registry.CreateKey(u"a")), std::nullopt);
  EXPECT_EQ(Export(),
            u"\r\n[HKEY_LOCAL_MACHINE\\b]\r\n\"two\"=\"2\"\r\n@=\"default\"\r\n"
            u"\r\n[HKEY_LOCAL_MACHINE\\b\\c]\r\n"
            u"\r\n[HKEY_LOCAL_MACHINE\\a]\r\n");
}

TEST_F(RegistryFileWriting, TheRootIsWrittenForItsValuesOnly) {
  ASSERT_EQ(support::ErrorOf(Put(m_registry, u"", u"v", RegistryType::kBinary, SomeBytes({1}))),
            std::nullopt);
  EXPECT_EQ(Export(), u"\r\n[HKEY_LOCAL_MACHINE]\r\n\"v\"=hex:01\r\n");
}

TEST_F(RegistryFileWriting, ATextThatIsNotExactlyTextAndTerminatorIsWrittenAsBytes) {
  const struct {
    std::vector<std::byte> bytes;
    std::u16string_view written;
  } cases[] = {
      {SomeBytes({'a', 0, 0, 0}), u"\"a\""},
      {SomeBytes({0, 0}), u"\"\""},
      {{}, u"hex(1):"},
      {SomeBytes({'a', 0}), u"hex(1):61,00"},
      {SomeBytes({'a', 0, 0, 0, 0, 0}), u"hex(1):61,00,00,00,00,00"},
      {SomeBytes({'a', 0, 0}), u"hex(1):61,00,00"},
      {SomeBytes({'a', 0, 0, 0, 5}), u"hex(1):61,00,00,00,05"},
      {SomeBytes({'\n', 0, 0, 0}), u"hex(1):0a,00,00,00"},
      {SomeBytes({0x7F, 0, 0, 0}), u"hex(1):7f,00,00,00"},
      {SomeBytes({0xFF, 0xFE, 0, 0}), u"hex(1):ff,fe,00,00"},
      {SomeBytes({0, 0xD8, 0, 0}), u"hex(1):00,d8,00,00"},
      {SomeBytes({0, 0xDC, 0, 0}), u"hex(1):00,dc,00,00"},
      {SomeBytes({0, 0xD8, 0, 0xDC, 0, 0}), u"\"\xD800\xDC00\""},
  };
  for (const auto& one : cases) {
    ASSERT_EQ(support::ErrorOf(Put(m_registry, u"a", u"v", RegistryType::kString, one.bytes)),
              std::nullopt);
    EXPECT_EQ(Export(),
              u"\r\n[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=" + std::u16string(one.written) + u"\r\n");
  }
}

TEST_F(RegistryFileWriting, ANumberIsOneOnlyWithItsFourBytes) {
  ASSERT_EQ(support::ErrorOf(Put(m_registry, u"a", u"v", RegistryType::kDword,
                                 SomeBytes({0xDE, 0xC0, 0, 0x10}))),
            std::nullopt);
  ASSERT_EQ(support::ErrorOf(Put(m_registry, u"a", u"w", RegistryType::kDword, SomeBytes({1}))),
            std::nullopt);
  EXPECT_EQ(Export(),
            u"\r\n[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=dword:1000c0de\r\n\"w\"=hex(4):01\r\n");
}

TEST_F(RegistryFileWriting, TypesAreWrittenInHexadecimal) {
  ASSERT_EQ(support::ErrorOf(
                Put(m_registry, u"a", u"v", static_cast<RegistryType>(0xFFFF0012), SomeBytes({1}))),
            std::nullopt);
  ASSERT_EQ(support::ErrorOf(Put(m_registry, u"a", u"w", RegistryType::kNone, {})), std::nullopt);
  EXPECT_EQ(Export(),
            u"\r\n[HKEY_LOCAL_MACHINE\\a]\r\n\"v\"=hex(ffff0012):01\r\n\"w\"=hex(0):\r\n");
}

TEST_F(RegistryFileWriting, LongValuesAreContinuedBeforeTheEightiethColumn) {
  ASSERT_EQ(support::ErrorOf(Put(m_registry, u"a", u"contact", RegistryType::kString,
                                 std::vector<std::byte>(100))),
            std::nullopt);
  const std::u16string text = Export();
  std::size_t lines = 0;
  for (std::size_t start = 0; start < text.size(); ++lines) {
    const std::size_t end = text.find(u"\r\n", start);
    EXPECT_LT(end - start, 80U);
    start = end + 2;
  }
  EXPECT_EQ(lines, 2U + 5U);
}

TEST_F(RegistryFileWriting, AFailureGivesNoFile) {
  ASSERT_EQ(support::ErrorOf(support::PutText(m_registry, u"a\\b", u"v", u"1")), std::nullopt);
  support::WatchedRegistry failing(m_registry);
  for (std::size_t call = 1;; ++call) {
    failing.FailCall(call, support::Failing::kOnce, RegistryError::kBusy);
    const auto error = support::ErrorOf(WriteRegistryFile(failing));
    if (!failing.HasFailed()) {
      EXPECT_EQ(error, std::nullopt);
      EXPECT_GT(call, 5U);
      break;
    }
    EXPECT_EQ(error, RegistryError::kBusy);
  }
}

TEST_F(RegistryFileWriting, WhatIsReadAgainIsTheSameRegistry) {
  const std::u16string oddKey = u"] [x\\a;b\\\"q\" = @";
  const std::vector<std::u16string> oddNames{
      u"", u"@", u"\"quoted\\\"", u"line\r\nend\tx\n", u"=hex:01", u"\xD800", u"Größe"};
  for (const std::u16string& name : oddNames) {
    for (const std::u16string_view suffix : {u"s", u"b", u"n"}) {
      const auto type = static_cast<RegistryType>(suffix[0]);
      ASSERT_EQ(support::ErrorOf(Put(m_registry, oddKey + u"\\" + std::u16string(suffix), name,
                                     type, Utf16Bytes(name))),
                std::nullopt);
      ASSERT_EQ(support::ErrorOf(Put(m_registry, oddKey, name + std::u16string(suffix),
                                     RegistryType::kString, Utf16Bytes(name + u'\0'))),
                std::nullopt);
    }
  }
  const std::vector<std::byte> file = WriteRegistryFile(m_registry).value();
  machine::MemoryRegistry copy;
  const auto parsed = ParseRegistryFile(file);
  ASSERT_TRUE(parsed) << parsed.error().message;
  ASSERT_TRUE(ApplyRegistryChanges(copy, parsed->changes));
  EXPECT_EQ(WriteRegistryFile(copy).value(), file);
  for (const std::u16string& name : oddNames) {
    EXPECT_EQ(BytesOf(copy, oddKey + u"\\b", name), Utf16Bytes(name));
  }
}

}  // namespace storage
