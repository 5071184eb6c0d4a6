#include "storage/backup_archive.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

#include "storage/registry_keys.h"
#include "storage/tag_store.h"
#include "tests/machine/memory_file_system.h"
#include "tests/machine/memory_registry.h"
#include "tests/support/file_bytes.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"

namespace storage {
namespace {

using support::ErrorOf;
using Bytes = std::vector<std::byte>;

/// As another program would compute it.
std::string ChecksumLine(const std::string& member, const std::string& bytes) {
  std::uint32_t crc = ~0U;
  for (const char byte : bytes) {
    crc ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit) {
      crc = (crc & 1U) != 0 ? 0xEDB88320U ^ crc >> 1U : crc >> 1U;
    }
  }
  char digits[9];
  std::snprintf(digits, sizeof digits, "%08X", ~crc);
  return member + ' ' + digits + '\n';
}

/// Makes the header at `header` a right one after it was changed.
void PutChecksum(std::string& content, std::size_t header) {
  content.replace(header + 148, 8, 8, ' ');
  unsigned sum = 0;
  for (const char byte : content.substr(header, 512)) {
    sum += static_cast<unsigned char>(byte);
  }
  std::snprintf(&content[header + 148], 8, "%06o", sum);
}

class BackupArchiveTest : public testing::Test {
 protected:
  static constexpr const char16_t* kPath = u"\\b.tar";
  struct Member {
    std::string name;
    std::string bytes;
  };

  [[nodiscard]] std::unique_ptr<platform::File> Open(const char16_t* path = kPath) {
    return m_files
        .Open(path, {platform::FileAccess::kReadWrite, platform::FileShare::kNone,
                     platform::FileCreation::kOpenAlways})
        .value();
  }

  /// The registry file of a key with one value.
  static std::string KeyFile(std::u16string_view key) {
    machine::MemoryRegistry registry;
    EXPECT_TRUE(support::PutText(registry, key, u"contact", u"-17"));
    return support::ToText(WriteRegistryFile(registry, key).value());
  }
  static std::string EntryOf(const std::u16string& tag) { return KeyFile(EntryPath(tag)); }

  /// Writes an archive as another program may, with right checksums.
  void Write(std::vector<Member> members) {
    static_cast<void>(m_files.Delete(kPath));
    const auto file = Open();
    TarWriter tar(*file);
    std::string checksums;
    for (const Member& member : members) {
      ASSERT_TRUE(tar.Add(member.name, support::ToBytes(member.bytes)));
      checksums += ChecksumLine(member.name, member.bytes);
    }
    ASSERT_TRUE(tar.Add("checksums.sfv", support::ToBytes(checksums)));
    ASSERT_TRUE(tar.End());
  }
  void WriteTag(const std::string& member, const std::string& bytes) {
    Write({kAbout, {member, bytes}});
  }

  [[nodiscard]] platform::Result<BackupContents, BackupFault> Read() {
    const auto file = Open();
    return ReadBackup(*file);
  }
  [[nodiscard]] std::optional<BackupFault> Fault() { return ErrorOf(Read()); }

  [[nodiscard]] std::string Content() { return support::ReadWhole(m_files, kPath).value_or(""); }

  const Member kAbout{"about.txt", "Voxtrel backup 1\nmade 20261122T100000Z\n"};
  machine::MemoryFileSystem m_files;
};

TEST_F(BackupArchiveTest, HoldsWhatWasWritten) {
  ASSERT_TRUE(support::WriteWhole(m_files, u"\\a.wav", "wave"));
  {
    const auto target = Open();
    const auto wave = Open(u"\\a.wav");
    BackupWriter writer(*target);
    ASSERT_TRUE(writer.Begin(1'795'341'600));
    ASSERT_TRUE(
        writer.AddSettings(BackupSettings::kConnection, support::ToBytes(KeyFile(kDialerKey))));
    ASSERT_TRUE(writer.AddLanguageFile(*wave));
    ASSERT_TRUE(writer.AddEntry(u"-4711", support::ToBytes(EntryOf(u"-4711"))));
    ASSERT_TRUE(writer.AddRecording(u"-4711", *wave));
    ASSERT_TRUE(writer.AddEntry(u"12", support::ToBytes(EntryOf(u"12"))));
    ASSERT_TRUE(writer.End());
  }
  const auto backup = Read();
  ASSERT_TRUE(backup);
  ASSERT_EQ(backup->tags.size(), 2U);
  EXPECT_EQ(backup->tags[0].name, u"-4711");
  EXPECT_TRUE(backup->tags[0].recording);
  EXPECT_FALSE(backup->tags[0].voiceTemplate);
  EXPECT_FALSE(backup->tags[1].recording);
  ASSERT_EQ(backup->tags[0].entry.size(), 2U);
  EXPECT_EQ(backup->tags[0].entry[1].valueName, u"contact");
  EXPECT_EQ(backup->settings.size(), 1U);
  ASSERT_TRUE(backup->languageFile);
  const auto archive = Open();
  EXPECT_EQ(IsSameAsMember(*archive, *backup->languageFile, *Open(u"\\a.wav")), true);
  const auto copy = Open(u"\\copy");
  EXPECT_TRUE(CopyMember(*archive, *backup->tags[0].recording, *copy));
  EXPECT_EQ(support::ReadWhole(m_files, u"\\copy"), std::nullopt) << "It is open.";
}

TEST_F(BackupArchiveTest, TakesWhatAnotherProgramMadeWithRightChecksums) {
  Write({kAbout, {"tags/12/entry.reg", EntryOf(u"12")}, {"tags/12/template.st", "t"}});
  const auto backup = Read();
  ASSERT_TRUE(backup);
  EXPECT_TRUE(backup->tags.at(0).voiceTemplate);
}

TEST_F(BackupArchiveTest, IsRefusedIfItIsCutAnywhere) {
  Write({kAbout, {"tags/12/entry.reg", EntryOf(u"12")}, {"tags/12/recording.wav", "wave"}});
  const std::string whole = Content();
  for (std::size_t length = 0; length <= whole.find_last_not_of('\0'); length += 37) {
    ASSERT_TRUE(support::WriteWhole(m_files, kPath, whole.substr(0, length)));
    ASSERT_FALSE(Read()) << length;
    ASSERT_TRUE(support::WriteWhole(
        m_files, kPath, whole.substr(0, length) + std::string(whole.size() - length, '\0')));
    ASSERT_FALSE(Read()) << length << " and zeros, as a loss of power leaves them";
  }
}

TEST_F(BackupArchiveTest, IsRefusedIfOneByteOfAMemberHasChanged) {
  Write({kAbout, {"tags/12/entry.reg", EntryOf(u"12")}, {"tags/12/recording.wav", "wave"}});
  std::string changed = Content();
  const std::size_t wave = changed.find("wave", 512 * 4);
  ASSERT_NE(wave, std::string::npos);
  changed[wave] = 'W';
  ASSERT_TRUE(support::WriteWhole(m_files, kPath, changed));
  EXPECT_EQ(Fault(), BackupFault::kDamaged);
}

TEST_F(BackupArchiveTest, AnotherFileIsForeign) {
  for (const std::string& content :
       {std::string(), std::string("hello"), std::string(5000, '\0'), std::string(5000, 'x')}) {
    ASSERT_TRUE(support::WriteWhole(m_files, kPath, content));
    EXPECT_EQ(Fault(), BackupFault::kForeign);
    EXPECT_EQ(LooksLikeBackup(*Open()), false);
  }
  Write({{"about.txt", "deleted 12\nby delete\n"}});
  EXPECT_EQ(Fault(), BackupFault::kForeign) << "A tag of the trash is no backup.";
  EXPECT_EQ(LooksLikeBackup(*Open()), false);
  Write({{"readme", "Voxtrel backup 1\n"}});
  EXPECT_EQ(Fault(), BackupFault::kForeign);
}

TEST_F(BackupArchiveTest, OneOfALaterVersionIsNamedSo) {
  Write({{"about.txt", "Voxtrel backup 2\n"}, {"tunes/1", "x"}});
  EXPECT_EQ(Fault(), BackupFault::kNewer);
  EXPECT_EQ(LooksLikeBackup(*Open()), true);
}

TEST_F(BackupArchiveTest, NoNameLeadsOutOfItsFolder) {
  const std::string entry = EntryOf(u"12");
  for (const char* name :
       {"tags/../entry.reg", "tags/./entry.reg", "tags//entry.reg", "tags/a/b/entry.reg",
        "../tags/12/entry.reg", "/tags/12/entry.reg", "tags/a\\b/entry.reg", "tags/12/other.txt",
        "tags/12", "settings/other.reg", "registry.db", "tags/../../etc/passwd"}) {
    WriteTag(name, entry);
    EXPECT_EQ(Fault(), BackupFault::kDamaged) << name;
  }
}

TEST_F(BackupArchiveTest, AnEntryChangesItsOwnKeyOnly) {
  WriteTag("tags/12/entry.reg", EntryOf(u"12"));
  EXPECT_EQ(Fault(), std::nullopt);
  WriteTag("tags/12/entry.reg", EntryOf(u"13"));
  EXPECT_EQ(Fault(), BackupFault::kDamaged);
  WriteTag("tags/12/entry.reg", KeyFile(u"Software\\Zedra\\Zedra Dialer"));
  EXPECT_EQ(Fault(), BackupFault::kDamaged);
  const std::string head = "REGEDIT4\n[HKEY_LOCAL_MACHINE\\Software\\Zedra\\Zedra Voxtrel\\12]\n";
  WriteTag("tags/12/entry.reg", head + "\"a\"=\"b\"\n");
  EXPECT_EQ(Fault(), std::nullopt);
  for (const char* more :
       {"\"a\"=-\n", "[-HKEY_LOCAL_MACHINE\\Software\\Zedra\\Zedra Voxtrel\\12]\n",
        "[HKEY_LOCAL_MACHINE\\Software]\n\"a\"=\"b\"\n",
        "[HKEY_CURRENT_USER\\Software]\n\"a\"=\"b\"\n", "nonsense\n"}) {
    WriteTag("tags/12/entry.reg", head + more);
    EXPECT_EQ(Fault(), BackupFault::kDamaged) << more;
  }
}

TEST_F(BackupArchiveTest, SettingsChangeTheirOwnKeyOnly) {
  WriteTag("settings/connection.reg", KeyFile(kDialerKey));
  EXPECT_EQ(Fault(), std::nullopt);
  WriteTag("settings/connection.reg", KeyFile(kSetupKey));
  EXPECT_EQ(Fault(), BackupFault::kDamaged);
}

TEST_F(BackupArchiveTest, NoNameOccursTwice) {
  Write({kAbout, {"tags/Ab/entry.reg", EntryOf(u"Ab")}, {"tags/aB/entry.reg", EntryOf(u"aB")}});
  EXPECT_EQ(Fault(), BackupFault::kDamaged) << "Letter case counts for nothing on the device.";
  Write({kAbout, {"language.lng", "a"}, {"language.lng", "b"}});
  EXPECT_EQ(Fault(), BackupFault::kDamaged);
}

TEST_F(BackupArchiveTest, AFileWithoutAnEntryBelongsToNoTag) {
  WriteTag("tags/12/recording.wav", "wave");
  EXPECT_EQ(Fault(), BackupFault::kDamaged);
}

TEST_F(BackupArchiveTest, ALinkIsRefused) {
  Write({kAbout, {"language.lng", ""}});
  std::string content = Content();
  const std::size_t header = 2 * 512;
  content[header + 156] = '2';
  PutChecksum(content, header);
  ASSERT_TRUE(support::WriteWhole(m_files, kPath, content));
  EXPECT_EQ(Fault(), BackupFault::kDamaged);
}

TEST_F(BackupArchiveTest, AMemberThatIsLongerThanTheFileIsRefused) {
  Write({kAbout, {"language.lng", "a"}});
  std::string content = Content();
  const std::size_t header = 2 * 512;
  content.replace(header + 124, 11, 11, '7');
  PutChecksum(content, header);
  ASSERT_TRUE(support::WriteWhole(m_files, kPath, content));
  EXPECT_EQ(Fault(), BackupFault::kDamaged);
}

TEST_F(BackupArchiveTest, WithoutItsListOfChecksumsItIsTorn) {
  const auto file = Open();
  {
    TarWriter tar(*file);
    ASSERT_TRUE(tar.Add(kAbout.name, support::ToBytes(kAbout.bytes)));
    ASSERT_TRUE(tar.End());
  }
  EXPECT_EQ(ErrorOf(ReadBackup(*file)), BackupFault::kDamaged);
}

TEST_F(BackupArchiveTest, ANameThatWouldNotComeBackDoesNotFit) {
  EXPECT_TRUE(BackupWriter::Fits(u"-2147483648"));
  EXPECT_TRUE(BackupWriter::Fits(u"Anna Bérg"));
  for (const std::u16string& name :
       {std::u16string(u"a/b"), std::u16string(u".."), std::u16string(u"."), std::u16string(u""),
        std::u16string(u"a\\b"), std::u16string(90, u'x')}) {
    EXPECT_FALSE(BackupWriter::Fits(name));
  }
}

}  // namespace
}  // namespace storage
