#include "maintenance/store_check.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "storage/registry_keys.h"
#include "storage/tag_store.h"
#include "tests/maintenance/session_fixture.h"
#include "tests/support/half_written.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"
#include "tests/support/watched_file_system.h"
#include "tests/support/watched_registry.h"
#include "voicemath/template_file.h"

namespace {

using maintenance::ContactsState;
using maintenance::RepairError;
using maintenance::RepairTemplate;
using maintenance::StoreProblem;
using support::ErrorOf;

class StoreCheck : public SessionFixture {
 protected:
  StoreCheck() {
    m_machine.contacts.Add({.oid = 17, .firstName = u"Ann"});
    EXPECT_TRUE(m_machine.contacts.Initialize() && m_machine.contacts.Connect() &&
                m_machine.contacts.Logon());
    EXPECT_EQ(support::ErrorOf(support::PutText(m_machine.registry, storage::kSetupKey,
                                                storage::kMathVersionValue, u"3")),
              std::nullopt);
  }

  /// A tag as the applet makes it.
  void Learn(std::u16string_view name, std::uint32_t seed) {
    PutRecording(name, seed);
    m_session.mathematics.m_wavePath = storage::WavePath(name);
    ASSERT_EQ(m_session.mathematics.LearnFile(0), voicemath::kLearned);
    ASSERT_TRUE(voicemath::WriteTemplateFile(m_machine.files, storage::TemplatePath(name),
                                             m_session.mathematics));
    ASSERT_EQ(
        support::ErrorOf(
            storage::TagStore(m_machine.files, m_machine.registry).WriteEntry(name, 17, u"Home")),
        std::nullopt);
  }

  /// The findings as "word tag".
  [[nodiscard]] Texts Check(ContactsState contacts = ContactsState::kOpen) {
    return CheckOn(m_machine.Get(), contacts);
  }
  [[nodiscard]] static Texts CheckOn(const platform::Platform& platform,
                                     ContactsState contacts = ContactsState::kOpen) {
    Texts findings;
    for (const auto& finding : CheckStore(platform, contacts)) {
      const std::string_view word = ToWord(finding.problem);
      findings.push_back(std::u16string(word.begin(), word.end()) +
                         (finding.tag.empty() ? u"" : u" ") + finding.tag);
    }
    return findings;
  }
  void PutTemplateBytes(std::u16string_view name, const support::Bytes& bytes) {
    ASSERT_TRUE(m_machine.files.PutFile(storage::TemplatePath(name), bytes));
  }
  [[nodiscard]] support::Bytes GetTemplate(std::u16string_view name) const {
    return GetFile(storage::TemplatePath(name));
  }
  void Delete(const std::u16string& path) { ASSERT_TRUE(m_machine.files.Delete(path)); }
  void PutValue(std::u16string_view tag, std::u16string_view value, std::u16string_view text) {
    const auto key = std::u16string(storage::kTagKey).append(u"\\").append(tag);
    ASSERT_EQ(support::ErrorOf(support::PutText(m_machine.registry, key, value, text)),
              std::nullopt);
  }
};

TEST_F(StoreCheck, FindsNothingInAStoreThatTheAppletMade) {
  EXPECT_EQ(Check(), Texts());
  Learn(u"100", 1);
  Learn(u"200", 2);
  EXPECT_EQ(Check(), Texts());
}

TEST_F(StoreCheck, ChangesNothing) {
  Learn(u"100", 1);
  Learn(u"200", 2);
  PutTemplateBytes(u"100", support::Bytes(3));
  PutRecording(u"900", 3);
  const auto names = m_machine.files.ListFiles();
  std::vector<support::Bytes> before;
  for (const auto& name : names) {
    before.push_back(GetFile(name));
  }
  EXPECT_FALSE(Check().empty());
  EXPECT_EQ(m_machine.files.ListFiles(), names);
  for (std::size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(GetFile(names[i]), before[i]);
  }
  EXPECT_EQ(m_machine.files.CountOpenHandles(), 0U);
}

TEST_F(StoreCheck, FindsTagsWithoutFiles) {
  Learn(u"100", 1);
  Learn(u"200", 2);
  Delete(storage::WavePath(u"100"));
  Delete(storage::TemplatePath(u"200"));
  EXPECT_EQ(Check(), (Texts{u"no-recording 100", u"no-template 200"}));
}

TEST_F(StoreCheck, SaysWhatAHalfWrittenEntryLacks) {
  Learn(u"100", 1);
  Learn(u"200", 2);
  for (const support::HalfWritten& entry : support::HalfWrittenEntries()) {
    ASSERT_TRUE(m_machine.registry.DeleteKey(storage::EntryPath(u"200")));
    entry.write(m_machine.registry, u"200");
    Texts lacks;
    if (!entry.isThere) {
      lacks = {u"recording-without-tag 200", u"template-without-tag 200"};
    } else {
      if (!entry.namesContact) {
        lacks.push_back(u"contact 200");
      }
      if (!entry.namesKind) {
        lacks.push_back(u"phone-type 200");
      }
    }
    EXPECT_EQ(Check(), lacks) << entry.what;
    static_cast<void>(m_machine.registry.CreateKey(storage::EntryPath(u"200")));
  }
}

TEST_F(StoreCheck, FindsFilesWithoutATag) {
  Learn(u"100", 1);
  PutRecording(u"300", 1);
  PutTemplate(u"400", {});
  const std::u16string unfinished = u".voxtrel-1";
  ASSERT_TRUE(
      m_machine.files.PutFile(std::u16string(storage::kWaveFolder) + u"\\" + unfinished, {}));
  EXPECT_EQ(Check(), (Texts{u"recording-without-tag 300", u"template-without-tag 400",
                            u"unfinished-file .voxtrel-1"}));
}

TEST_F(StoreCheck, FilesBelongToATagWhateverTheirLettersAndFoldersAreNoFiles) {
  Learn(u"Ann", 1);
  const auto whole = GetTemplate(u"Ann");
  Delete(storage::TemplatePath(u"Ann"));
  PutTemplateBytes(u"aNN", whole);
  ASSERT_TRUE(m_machine.files.CreateFolder(storage::WavePath(u"400")));
  ASSERT_TRUE(m_machine.files.CreateFolder(storage::TemplatePath(u"400")));
  EXPECT_EQ(Check(), Texts{u"tag-name Ann"});
}

TEST_F(StoreCheck, ProtectedRecordingsAreReadAndRepairedFrom) {
  Learn(u"100", 1);
  const auto whole = GetTemplate(u"100");
  ASSERT_TRUE(m_machine.files.SetReadOnly(storage::WavePath(u"100"), true));
  EXPECT_EQ(Check(), Texts());
  PutTemplateBytes(u"100", support::Bytes(3));
  EXPECT_EQ(ErrorOf(RepairTemplate(m_machine.Get(), u"100")), std::nullopt);
  EXPECT_EQ(GetTemplate(u"100"), whole);
}

TEST_F(StoreCheck, FindsTornAndContradictingTemplates) {
  Learn(u"100", 1);
  Learn(u"200", 2);
  auto torn = GetTemplate(u"100");
  torn.pop_back();
  PutTemplateBytes(u"100", torn);
  auto contradicting = GetTemplate(u"200");
  contradicting[4] = std::byte{1};
  contradicting[5] = std::byte{0};
  PutTemplateBytes(u"200", contradicting);
  EXPECT_EQ(Check(), (Texts{u"template-torn 100", u"template-contradicting 200"}));
}

TEST_F(StoreCheck, FindsTemplatesThatAreNotWhatTheRecordingGives) {
  Learn(u"100", 1);
  Learn(u"200", 2);
  PutTemplateBytes(u"100", GetTemplate(u"200"));
  EXPECT_EQ(Check(), Texts{u"template-stale 100"});
}

TEST_F(StoreCheck, TheOldEndOfATemplateThatWasWrittenOverDoesNotCount) {
  Learn(u"100", 1);
  auto longer = GetTemplate(u"100");
  longer.resize(longer.size() + 100);
  PutTemplateBytes(u"100", longer);
  EXPECT_EQ(Check(), Texts());
}

TEST_F(StoreCheck, FindsRecordingsThatCannotBeProcessed) {
  Learn(u"100", 1);
  ASSERT_TRUE(m_machine.files.PutFile(storage::WavePath(u"100"), support::Bytes(200)));
  EXPECT_EQ(Check(), Texts{u"recording-unreadable 100"});
}

TEST_F(StoreCheck, FindsValuesThatDoNotParse) {
  Learn(u"100", 1);
  Learn(u"200", 2);
  PutValue(u"100", storage::kContactValue, u"Ann");
  PutValue(u"200", storage::kPhoneTypeValue, u"home");
  EXPECT_EQ(Check(), (Texts{u"contact 100", u"phone-type 200"}));
  const auto key = m_machine.registry.OpenKey(u"Software\\Zedra\\Zedra Voxtrel\\100");
  ASSERT_EQ(support::ErrorOf((*key)->DeleteValue(storage::kPhoneTypeValue)), std::nullopt);
  EXPECT_EQ(Check(), (Texts{u"contact 100", u"phone-type 100", u"phone-type 200"}));
}

TEST_F(StoreCheck, FindsContactsThatAreGone) {
  Learn(u"100", 1);
  m_machine.contacts.Remove(17);
  EXPECT_EQ(Check(), Texts{u"contact-gone 100"});
  EXPECT_EQ(Check(ContactsState::kAway), Texts()) << "Nobody is gone because they are away.";
}

TEST_F(StoreCheck, FindsNamesThatTheAppletDoesNotGive) {
  Learn(u"-100", 1);
  EXPECT_EQ(Check(), Texts());
  Learn(u"Ann", 2);
  Learn(u"12345678901234567890", 3);
  Learn(u"-", 4);
  Learn(u"1234567890123456789", 5);
  EXPECT_EQ(Check(), (Texts{u"tag-name Ann", u"tag-name 12345678901234567890", u"tag-name -"}));
}

TEST_F(StoreCheck, FindsAnotherVersionOnceThereAreTags) {
  const auto key = m_machine.registry.OpenKey(storage::kSetupKey);
  ASSERT_EQ(support::ErrorOf((*key)->DeleteValue(storage::kMathVersionValue)), std::nullopt);
  EXPECT_EQ(Check(), Texts()) << "A new store.";
  Learn(u"100", 1);
  EXPECT_EQ(Check(), Texts{u"other-version"});
  ASSERT_EQ(support::ErrorOf(support::PutText(m_machine.registry, storage::kSetupKey,
                                              storage::kMathVersionValue, u"2")),
            std::nullopt);
  EXPECT_EQ(Check(), Texts{u"other-version"});
}

TEST_F(StoreCheck, FindsMoreTagsThanThereIsRoomFor) {
  for (int i = 0; i < 101; ++i) {
    if (i == 100) {
      EXPECT_EQ(Check().size(), 2U * 100U) << "There is room for a hundred.";
    }
    const std::u16string name = language::Decimal(1000 + i);
    ASSERT_EQ(
        support::ErrorOf(
            storage::TagStore(m_machine.files, m_machine.registry).WriteEntry(name, 17, u"Home")),
        std::nullopt);
  }
  const auto findings = Check();
  EXPECT_EQ(findings[0], u"too-many-tags");
  EXPECT_EQ(findings.size(), 1U + 2U * 101U) << "No recording and no template each.";
}

TEST_F(StoreCheck, ARegistryThatFailsIsToldAndNoFileIsCalledAnOrphan) {
  Learn(u"100", 1);
  support::WatchedRegistry failing(m_machine.registry);
  const auto platform = m_machine.GetWith(m_machine.files, failing);
  for (std::size_t call = 1; call < 100; ++call) {
    failing.FailCall(call, support::Failing::kOnce);
    const auto findings = CheckOn(platform);
    if (!failing.HasFailed()) {
      return;
    }
    for (const auto& finding : findings) {
      EXPECT_TRUE(finding.starts_with(u"registry-unreadable")) << call;
    }
  }
  FAIL() << "Every run had a failure.";
}

TEST_F(StoreCheck, FilesThatFailAreToldAndNothingElseIsMadeUp) {
  Learn(u"100", 1);
  support::WatchedFileSystem failing(m_machine.files);
  const auto platform = m_machine.GetWith(failing, m_machine.registry);
  for (const auto kind : {support::Failing::kOnce, support::Failing::kFromThenOn}) {
    bool hasFailed = true;
    for (std::size_t call = 1; hasFailed; ++call) {
      failing.FailCall(call, kind);
      const auto findings = CheckOn(platform);
      hasFailed = failing.HasFailed();
      EXPECT_THAT(findings,
                  testing::Each(testing::AnyOf(u"recording-unreadable 100",
                                               u"template-unreadable 100", u"folder-unreadable")))
          << call;
      ASSERT_LT(call, 10000U);
    }
  }
}

TEST_F(StoreCheck, NamesAFolderThatCannotBeReadOnce) {
  support::WatchedFileSystem failing(m_machine.files);
  failing.FailCall(1, support::Failing::kFromThenOn);
  std::vector<std::u16string> folders;
  for (const auto& finding :
       CheckStore(m_machine.GetWith(failing, m_machine.registry), ContactsState::kAway)) {
    EXPECT_EQ(finding.problem, StoreProblem::kFolderUnreadable);
    folders.push_back(finding.folder);
  }
  EXPECT_THAT(folders, testing::ElementsAre(storage::kWaveFolder, storage::kTemplateFolder));
}

TEST_F(StoreCheck, HasAWordAndASentenceForEachProblem) {
  std::vector<std::string_view> words;
  for (int i = 0; i <= static_cast<int>(StoreProblem::kUnfinishedFile); ++i) {
    const auto problem = static_cast<StoreProblem>(i);
    EXPECT_FALSE(Describe(problem).empty());
    EXPECT_EQ(std::ranges::find(words, ToWord(problem)), words.end());
    words.push_back(ToWord(problem));
  }
  EXPECT_EQ(std::ranges::find(words, ""), words.end());
}

TEST_F(StoreCheck, MissingAndTornTemplatesAreRepairedToTheSameBytes) {
  Learn(u"100", 1);
  const auto whole = GetTemplate(u"100");
  const auto recording = GetFile(storage::WavePath(u"100"));
  Delete(storage::TemplatePath(u"100"));
  EXPECT_EQ(ErrorOf(RepairTemplate(m_machine.Get(), u"100")), std::nullopt);
  EXPECT_EQ(GetTemplate(u"100"), whole);
  auto longer = whole;
  longer[4] = std::byte{1};
  longer.resize(whole.size() + 50);
  PutTemplateBytes(u"100", longer);
  EXPECT_EQ(ErrorOf(RepairTemplate(m_machine.Get(), u"100")), std::nullopt);
  EXPECT_EQ(GetTemplate(u"100"), whole);
  EXPECT_EQ(GetFile(storage::WavePath(u"100")), recording);
  EXPECT_EQ(Check(), Texts());
}

TEST_F(StoreCheck, ARepairLeavesTheRecordingAloneEvenWhereItCouldBeTrimmed) {
  Learn(u"100", 1);
  PutRecording(u"100", 4);
  const auto recording = GetFile(storage::WavePath(u"100"));
  EXPECT_EQ(ErrorOf(RepairTemplate(m_machine.Get(), u"100")), std::nullopt);
  EXPECT_EQ(GetFile(storage::WavePath(u"100")), recording);
}

TEST_F(StoreCheck, ARepairNeedsARecording) {
  Learn(u"100", 1);
  PutTemplateBytes(u"100", support::Bytes(3));
  Delete(storage::WavePath(u"100"));
  EXPECT_EQ(ErrorOf(RepairTemplate(m_machine.Get(), u"100")), RepairError::kNoRecording);
  EXPECT_EQ(GetTemplate(u"100"), support::Bytes(3)) << "Nothing was put in its place.";
}

TEST_F(StoreCheck, ARepairThatFailsSaysWhy) {
  Learn(u"100", 1);
  support::WatchedFileSystem failing(m_machine.files);
  const auto broken = m_machine.GetWith(failing, m_machine.registry);
  std::size_t count = 0;
  for (bool hasFailed = true; hasFailed; ++count) {
    PutTemplateBytes(u"100", support::Bytes(3));
    failing.FailCall(count + 1, support::Failing::kOnce, platform::FileError::kDiskFull);
    const auto result = RepairTemplate(broken, u"100");
    hasFailed = failing.HasFailed();
    EXPECT_NE(ErrorOf(result), RepairError::kNoFolder) << "It is there.";
    EXPECT_TRUE(result || !Describe(result.error()).empty());
  }
  EXPECT_GT(count, 3U);
  machine::MemoryFileSystem withoutFolder;
  for (const auto folder : {storage::kProgramFilesFolder, storage::kMakerFolder,
                            storage::kInstallFolder, storage::kWaveFolder}) {
    ASSERT_TRUE(withoutFolder.CreateFolder(folder));
  }
  const std::u16string wave = storage::WavePath(u"100");
  ASSERT_TRUE(withoutFolder.PutFile(wave, GetFile(wave)));
  EXPECT_EQ(ErrorOf(RepairTemplate(m_machine.GetWith(withoutFolder, m_machine.registry), u"100")),
            RepairError::kNoFolder);
}

TEST_F(StoreCheck, ARepairThatFailsLeavesAWholeTemplateOrNone) {
  Learn(u"100", 1);
  const auto whole = GetTemplate(u"100");
  support::WatchedFileSystem failing(m_machine.files);
  for (const auto kind : {support::Failing::kOnce, support::Failing::kFromThenOn}) {
    bool hasFailed = true;
    for (std::size_t call = 1; hasFailed; ++call) {
      PutTemplateBytes(u"100", support::Bytes(3));
      failing.FailCall(call, kind, platform::FileError::kDiskFull);
      const bool isDone =
          RepairTemplate(m_machine.GetWith(failing, m_machine.registry), u"100").has_value();
      hasFailed = failing.HasFailed();
      if (isDone) {
        EXPECT_EQ(GetTemplate(u"100"), whole) << call;
      } else if (kind == support::Failing::kOnce) {
        const auto left = m_machine.files.GetFile(storage::TemplatePath(u"100"));
        EXPECT_TRUE(!left || *left == support::Bytes(3)) << call << ": half a template";
      }
      EXPECT_EQ(m_machine.files.CountOpenHandles(), 0U);
      ASSERT_LT(call, 10000U);
    }
  }
}

TEST_F(StoreCheck, ATemplateOfZerosIsTornAndMadeAgain) {
  Learn(u"100", 1);
  const support::Bytes whole = GetTemplate(u"100");
  PutTemplateBytes(u"100", support::Bytes(whole.size()));
  EXPECT_EQ(Check(), Texts{u"template-torn 100"});
  EXPECT_EQ(ErrorOf(RepairTemplate(m_machine.Get(), u"100")), std::nullopt);
  EXPECT_EQ(Check(), Texts());
}

TEST_F(StoreCheck, OnlyTemplatesAreRepairable) {
  EXPECT_TRUE(IsRepairable(StoreProblem::kNoTemplate));
  EXPECT_TRUE(IsRepairable(StoreProblem::kTemplateTorn));
  EXPECT_TRUE(IsRepairable(StoreProblem::kTemplateContradicting));
  EXPECT_FALSE(IsRepairable(StoreProblem::kTemplateStale)) << "Nobody knows which of both is old.";
  EXPECT_FALSE(IsRepairable(StoreProblem::kRecordingWithoutTag));
  EXPECT_FALSE(IsRepairable(StoreProblem::kContactGone));
  EXPECT_TRUE(IsOrphan(StoreProblem::kRecordingWithoutTag));
  EXPECT_FALSE(IsOrphan(StoreProblem::kNoTemplate));
}

}  // namespace
