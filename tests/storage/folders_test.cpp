#include "storage/folders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "backends/headless/headless_system.h"
#include "backends/headless/headless_ui.h"
#include "language/language_table.h"
#include "storage/device_paths.h"
#include "tests/machine/memory_file_system.h"
#include "tests/support/results.h"
#include "tests/support/watched_file_system.h"

namespace storage {

using platform::FileError;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

/// Files of another moment: what is there is not found yet.
class NothingFound final : public support::WatchedFileSystem {
 public:
  explicit NothingFound(platform::FileSystem& inner) : WatchedFileSystem(inner) {}

  platform::Result<std::unique_ptr<platform::FileSearch>, platform::FileError> Find(
      std::u16string_view) override {
    return platform::Failure(FileError::kNotFound);
  }
};

class Folders : public testing::Test {
 protected:
  [[nodiscard]] bool Exists(std::u16string_view folder) {
    const auto search = m_files.Find(folder);
    return search && (*search)->Next().value().value().isFolder;
  }

  void Make(std::u16string_view folder) { ASSERT_TRUE(m_files.CreateFolder(folder)); }

  void MakeChain() {
    Make(kProgramFilesFolder);
    Make(kMakerFolder);
    Make(kInstallFolder);
  }

  /// The rule over files of which call `call` fails, 0 for none.
  [[nodiscard]] FolderRule Rule(std::size_t call = 0) {
    if (call != 0) {
      m_failing.FailCall(call, support::Failing::kOnce, FileError::kAccessDenied);
    }
    return {m_failing, m_ui, m_process, m_texts};
  }

  /// What ended the process: its one message, without a caption, and exit code 0.
  void ExpectEndedWith(std::u16string_view text) const {
    const auto messages = m_ui.GetMessages();
    ASSERT_THAT(messages, SizeIs(1));
    EXPECT_EQ(messages[0].box.text, text);
    EXPECT_EQ(messages[0].box.captionKind, platform::MessageCaption::kNone);
    EXPECT_EQ(messages[0].box.style, platform::MessageStyle::kOk);
    EXPECT_EQ(m_process.GetExitCode(), 0);
  }

  void ExpectNothingShown() const {
    EXPECT_THAT(m_ui.GetMessages(), IsEmpty());
    EXPECT_FALSE(m_process.GetExitCode().has_value());
  }

  machine::MemoryFileSystem m_files;
  support::WatchedFileSystem m_failing{m_files};
  headless::HeadlessUi m_ui;
  headless::HeadlessProcess m_process;
  language::Texts m_texts;
};

}  // namespace

TEST_F(Folders, TheInstallFoldersAreMadeWhereTheyAreMissing) {
  Make(kProgramFilesFolder);
  CreateInstallFolders(m_files);
  EXPECT_TRUE(Exists(kMakerFolder));
  EXPECT_TRUE(Exists(kInstallFolder));
  EXPECT_FALSE(Exists(kWaveFolder));
  CreateInstallFolders(m_files);
  EXPECT_TRUE(Exists(kInstallFolder));
}

TEST_F(Folders, TheInstallFoldersAreNotMadeBelowAFolderThatIsMissing) {
  CreateInstallFolders(m_files);
  EXPECT_FALSE(Exists(kProgramFilesFolder));
}

TEST_F(Folders, TheDataFoldersAreMadeBothEvenWhenOneFails) {
  MakeChain();
  m_failing.FailCall(1, support::Failing::kOnce);
  CreateDataFolders(m_failing);
  EXPECT_FALSE(Exists(kWaveFolder));
  EXPECT_TRUE(Exists(kTemplateFolder));
}

TEST_F(Folders, WhereTheDataFolderExistsTheRuleOnlyLooks) {
  MakeChain();
  Make(kWaveFolder);
  EXPECT_TRUE(Rule().EnsureWaveFolder());
  EXPECT_EQ(m_failing.CountCalls(), 1U);
  ExpectNothingShown();
}

TEST_F(Folders, TheRuleMakesTheWholeChain) {
  EXPECT_TRUE(Rule().EnsureWaveFolder());
  EXPECT_TRUE(Exists(kWaveFolder));
  EXPECT_FALSE(Exists(kTemplateFolder));
  EXPECT_TRUE(Rule().EnsureTemplateFolder());
  EXPECT_TRUE(Exists(kTemplateFolder));
  ExpectNothingShown();
}

TEST_F(Folders, TheRuleMakesWhatIsMissingOfTheChain) {
  Make(kProgramFilesFolder);
  EXPECT_TRUE(Rule().EnsureTemplateFolder());
  EXPECT_TRUE(Exists(kTemplateFolder));
  ExpectNothingShown();
}

TEST_F(Folders, AFileInThePlaceOfTheDataFolderCountsAsThere) {
  MakeChain();
  ASSERT_TRUE(m_files.PutFile(kWaveFolder, {}));
  EXPECT_TRUE(Rule().EnsureWaveFolder());
  ExpectNothingShown();
}

// With nothing there, the rule looks for the data folder, then looks for and makes each folder.
TEST_F(Folders, EachFolderThatCannotBeMadeEndsTheProcessWithItsMessage) {
  const struct {
    std::size_t failingCall;
    std::u16string_view text;
  } cases[] = {
      {3, u"Can't create \\Program Files"},
      {5, u"Can't create \\Program Files\\Zedra Tech."},
      {7, u"Can't create \\Program Files\\Zedra Tech.\\Zedra Voxtrel"},
      {9, u"Can't create \\Program Files\\Zedra Tech.\\Zedra Voxtrel\\Voxtrel_wav"},
  };
  for (const auto& one : cases) {
    machine::MemoryFileSystem files;
    support::WatchedFileSystem failing(files);
    failing.FailCall(one.failingCall, support::Failing::kOnce, FileError::kAccessDenied);
    headless::HeadlessUi ui;
    headless::HeadlessProcess process;
    EXPECT_EQ(support::ErrorOf(FolderRule(failing, ui, process, {}).EnsureWaveFolder()),
              FileError::kAccessDenied);
    ASSERT_THAT(ui.GetMessages(), SizeIs(1));
    EXPECT_EQ(ui.GetMessages()[0].box.text, one.text);
    EXPECT_EQ(process.GetExitCode(), 0);
    EXPECT_EQ(failing.CountCalls(), one.failingCall) << "nothing is done after the end";
  }
}

TEST_F(Folders, TheTemplateFolderHasItsOwnMessage) {
  MakeChain();
  // One look at the folder, three at the chain, one more at the folder.
  EXPECT_FALSE(Rule(6).EnsureTemplateFolder());
  ExpectEndedWith(u"Can't create \\Program Files\\Zedra Tech.\\Zedra Voxtrel\\Voxtrel_stor");
}

TEST_F(Folders, AFolderThatAnotherProgramMadeMeanwhileIsNoFailure) {
  MakeChain();
  Make(kWaveFolder);
  NothingFound blind(m_files);
  EXPECT_TRUE(FolderRule(blind, m_ui, m_process, m_texts).EnsureWaveFolder());
  ExpectNothingShown();
}

TEST_F(Folders, WithALanguageFileTheMessageIsItsText) {
  language::LanguageTable table;
  const std::u16string file = u"\uFEFFID_S_MESSAGE_14 Kein Programmordner\r\nEND x\r\n";
  const auto bytes = std::as_bytes(std::span(file));
  ASSERT_TRUE(m_files.PutFile(u"\\Voxtrel.lng", bytes));
  table.Load(m_files, u"\\Voxtrel.lng");
  m_texts = language::Texts(&table);
  EXPECT_FALSE(Rule(3).EnsureWaveFolder());
  ExpectEndedWith(u"Kein Programmordner");
}

TEST_F(Folders, AKeyThatTheLanguageFileLacksIsAnEmptyMessage) {
  const language::LanguageTable table;
  m_texts = language::Texts(&table);
  EXPECT_FALSE(Rule(3).EnsureWaveFolder());
  ExpectEndedWith(u"");
}

}  // namespace storage
