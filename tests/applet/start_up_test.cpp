#include <set>

#include "tests/applet/applet_fixture.h"
#include "tests/support/results.h"
#include "tests/support/watched_file_system.h"

namespace {

using Steps = std::vector<std::u16string>;

/// Remembers what was asked of the files, in its order.
class NotingFiles final : public support::WatchedFileSystem {
 public:
  NotingFiles(platform::FileSystem& files, Steps& steps)
      : WatchedFileSystem(files), m_steps(steps) {}

  platform::Result<std::unique_ptr<platform::File>, platform::FileError> Open(
      std::u16string_view path, const platform::OpenMode& mode) override {
    Note(u"open ", path);
    return WatchedFileSystem::Open(path, mode);
  }
  platform::Result<void, platform::FileError> Delete(std::u16string_view path) override {
    Note(u"delete ", path);
    return WatchedFileSystem::Delete(path);
  }
  platform::Result<std::unique_ptr<platform::Replacement>, platform::FileError> OpenReplacement(
      std::u16string_view path) override {
    Note(u"replace ", path);
    return WatchedFileSystem::OpenReplacement(path);
  }
  platform::Result<void, platform::FileError> CreateFolder(std::u16string_view path) override {
    Note(u"create ", path);
    return WatchedFileSystem::CreateFolder(path);
  }
  platform::Result<std::unique_ptr<platform::FileSearch>, platform::FileError> Find(
      std::u16string_view pattern) override {
    Note(u"find ", pattern);
    return WatchedFileSystem::Find(pattern);
  }

 private:
  void Note(std::u16string_view what, std::u16string_view path) {
    m_steps.push_back(std::u16string(what).append(path));
  }

  Steps& m_steps;
};

class StartUp : public AppletFixture {
 protected:
  [[nodiscard]] Steps StartAndNote() {
    Steps steps;
    NotingFiles files(m_machine.files, steps);
    applet::VoxtrelApp app(m_machine.GetWith(files, m_machine.registry), m_module,
                           applet::WriteRecord<applet::NewCplInfo>);
    EXPECT_TRUE(app.InitInstance());
    return steps;
  }

  const std::u16string m_language{storage::kLanguageFile};
  const std::u16string m_maker{storage::kMakerFolder};
  const std::u16string m_install{storage::kInstallFolder};
};

TEST_F(StartUp, LooksForTheLanguageFileThenMakesTheFolders) {
  EXPECT_EQ(StartAndNote(),
            (Steps{u"find " + m_language, u"create " + m_maker, u"create " + m_install}));
}

TEST_F(StartUp, LoadsTheLanguageFileBeforeThePagesAreMade) {
  PutLanguageFile(u"ID_TAB_2 Lernen\r\n    \r\n");
  EXPECT_EQ(StartAndNote(), (Steps{u"find " + m_language, u"open " + m_language,
                                   u"create " + m_maker, u"create " + m_install}));
}

TEST_F(StartUp, MakesNoLanguageTableWithoutALanguageFile) {
  const auto app = Start();
  EXPECT_FALSE(language::LanguageTable::IsMade());
  PutLanguageFile(u"ID_TAB_2 Lernen\r\n    \r\n");
  const auto next = Start();
  ASSERT_TRUE(language::LanguageTable::IsMade());
  EXPECT_EQ(language::LanguageTable::GetInstance().GetCount(), 1U);
}

TEST_F(StartUp, NeitherLoadsTheIconNorShowsAnything) {
  const auto app = Start();
  EXPECT_TRUE(m_module.GetIcons().empty());
  EXPECT_TRUE(m_machine.ui.GetMessages().empty());
  EXPECT_TRUE(m_machine.shell.GetRequests().empty());
}

TEST_F(StartUp, AFolderThatCannotBeMadeIsNoReasonToSpeak) {
  ASSERT_EQ(support::ErrorOf(m_machine.files.Delete(m_install)),
            platform::FileError::kAccessDenied);
  support::HeadlessPlatform bare;  // Even the folder above them is missing.
  applet::VoxtrelApp app(bare.Get(), m_module, applet::WriteRecord<applet::NewCplInfo>);
  EXPECT_TRUE(app.InitInstance());
  EXPECT_TRUE(bare.ui.GetMessages().empty());
  EXPECT_EQ(support::ErrorOf(bare.files.Find(m_install)), platform::FileError::kNotFound);
}

}  // namespace
