#include "host/applet/library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "backends/text/utf.h"
#include "resources/dialogs.h"
#include "storage/device_paths.h"
#include "tests/machine/simulated_module.h"
#include "tests/support/headless_platform.h"
#include "tests/support/temp_folder.h"
#include "tests/support/watched_file_system.h"

namespace {

using applet::CplMessage;
using testing::ElementsAre;

/// Counts how often the language file is looked for, which start-up does.
class CountingFiles final : public support::WatchedFileSystem {
 public:
  using WatchedFileSystem::WatchedFileSystem;

  [[nodiscard]] platform::Result<std::unique_ptr<platform::FileSearch>, platform::FileError> Find(
      std::u16string_view pattern) override {
    m_searches += pattern == storage::kLanguageFile ? 1 : 0;
    return WatchedFileSystem::Find(pattern);
  }

  [[nodiscard]] int CountSearches() const { return m_searches; }

 private:
  int m_searches = 0;
};

/// The library with a machine without anything real, but with the contacts and the root folder of
/// this one.
class Library : public testing::Test {
 protected:
  Library() {
    m_options.root = (m_folder.Path() / "root").string();
    // Contacts of a file that is not there: no server of the desktop is asked.
    m_options.contacts = (m_folder.Path() / "none.vcf").string();
  }

  [[nodiscard]] applet::LibraryParts Parts() {
    platform::Platform platform = m_machine.GetWith(m_files, m_machine.registry);
    return {m_backends,
            {platform.files, platform.waveIn, platform.clock, platform.threads, platform.process,
             platform.ui, platform.registry, m_backends.GetContacts(m_machine.simulation),
             platform.waveOut, platform.shell},
            m_module,
            applet::WriteRecord<applet::NewCplInfo>,
            [this] { return m_hasScreen; },
            true,
            [this] { ++m_broughtForward; }};
  }

  [[nodiscard]] static std::int32_t Send(applet::Library& library, CplMessage message,
                                         std::intptr_t lParam1 = 0, std::intptr_t lParam2 = 0) {
    return library.Answer(static_cast<std::uint32_t>(message), lParam1, lParam2);
  }

  [[nodiscard]] std::string Path(const char* name) const { return m_folder.Path() / name; }

  support::TempFolder m_folder;
  machine::Options m_options;
  machine::Backends m_backends{m_options};
  support::HeadlessPlatform m_machine;
  CountingFiles m_files{m_machine.files};
  machine::SimulatedModule m_module;
  bool m_hasScreen = true;
  int m_broughtForward = 0;
};

TEST_F(Library, NeedsNoScreenToTellNameAndIcon) {
  applet::LibraryParts parts = Parts();
  parts.hasScreen = [] {
    ADD_FAILURE() << "The screen was asked for.";
    return false;
  };
  applet::Library library(parts);
  applet::NewCplInfo info;
  EXPECT_EQ(Send(library, CplMessage::kInit), 1);
  EXPECT_EQ(Send(library, CplMessage::kGetCount), 1);
  EXPECT_EQ(Send(library, CplMessage::kNewInquire, 0, reinterpret_cast<std::intptr_t>(&info)), 0);
  EXPECT_EQ(std::u16string(info.szName.data()), u"Zedra Voxtrel");
  EXPECT_NE(info.hIcon, platform::kNoIcon);
  EXPECT_EQ(Send(library, CplMessage::kStop), 0);
  EXPECT_EQ(Send(library, CplMessage::kExit), 0);
  EXPECT_FALSE(std::filesystem::exists(m_options.root));
}

TEST_F(Library, StartsTheAppletUpOnceAndNotWithEachMessage) {
  applet::Library library(Parts());
  EXPECT_EQ(m_files.CountSearches(), 0) << "Not while the library is loaded.";
  applet::NewCplInfo info;
  EXPECT_EQ(Send(library, CplMessage::kInit), 1);
  EXPECT_EQ(m_files.CountSearches(), 1);
  EXPECT_EQ(Send(library, CplMessage::kGetCount), 1);
  EXPECT_EQ(Send(library, CplMessage::kNewInquire, 0, reinterpret_cast<std::intptr_t>(&info)), 0);
  EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  EXPECT_EQ(Send(library, CplMessage::kStop), 0);
  EXPECT_EQ(Send(library, CplMessage::kExit), 0);
  EXPECT_EQ(m_files.CountSearches(), 1);
}

TEST_F(Library, ShowsTheSamePagesAtEachDoubleClick) {
  applet::Library library(Parts());
  std::vector<int> dialogs;
  m_machine.ui.SetSheetStory([&](headless::HeadlessSheet& sheet) {
    ASSERT_EQ(sheet.GetTabTexts().size(), 2U);
    dialogs.push_back(sheet.ShowPage(0)->GetTemplate().id);
    dialogs.push_back(sheet.ShowPage(1)->GetTemplate().id);
  });
  EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  EXPECT_THAT(dialogs, ElementsAre(134, 135, 134, 135));
  EXPECT_TRUE(std::filesystem::is_directory(m_options.root));
}

TEST_F(Library, ADoubleClickWhileTheSheetIsOpenBringsItForward) {
  applet::Library library(Parts());
  int shown = 0;
  m_machine.ui.SetSheetStory([&](headless::HeadlessSheet&) {
    ++shown;
    EXPECT_EQ(m_broughtForward, 0);
    EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
    EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  });
  EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  EXPECT_EQ(shown, 1);
  EXPECT_EQ(m_broughtForward, 2);
}

TEST_F(Library, SaysThatThereIsNoFolderInsteadOfOpening) {
  ASSERT_EQ(::unsetenv("HOME"), 0);
  ASSERT_EQ(::unsetenv("XDG_DATA_HOME"), 0);
  m_options.root.clear();
  applet::Library library(Parts());
  bool isShown = false;
  m_machine.ui.SetSheetStory([&](headless::HeadlessSheet&) { isShown = true; });
  applet::NewCplInfo info;
  EXPECT_EQ(Send(library, CplMessage::kNewInquire, 0, reinterpret_cast<std::intptr_t>(&info)), 0);
  EXPECT_EQ(Send(library, CplMessage::kDblClk, 1), 1);
  EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  EXPECT_TRUE(m_module.GetIcons().empty());
  const std::u16string said =
      u"There is no folder for the voice tags: HOME names none. Set HOME, or set "
      u"VOXTREL_ROOT to a folder.";
  ASSERT_EQ(m_machine.ui.GetMessages().size(), 2U);
  EXPECT_EQ(m_machine.ui.GetMessages().front().box.text, said);

  m_hasScreen = false;
  testing::internal::CaptureStderr();
  EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "voxtrel.cpl: " + text::ToUtf8(said) + "\n");
  EXPECT_EQ(m_machine.ui.GetMessages().size(), 2U);
  EXPECT_FALSE(isShown);
}

TEST_F(Library, TellsANewcomerWhereContactsAreLookedForAndOpensWithoutAny) {
  // No desktop answers here.
  ASSERT_EQ(::setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + Path("no-bus")).c_str(), 1), 0);
  m_options.contacts.clear();
  applet::Library library(Parts());
  m_machine.ui.SetSheetStory([&](headless::HeadlessSheet& sheet) {
    const headless::HeadlessDialog& page = *sheet.ShowPage(0);
    EXPECT_FALSE(page.IsEnabled(resources::kRecordButtonId));
    EXPECT_EQ(page.GetText(resources::kCountLabelId), u"Learned commands: 0");
  });
  EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  ASSERT_EQ(m_machine.ui.GetMessages().size(), 1U);
  EXPECT_EQ(text::ToUtf8(m_machine.ui.GetMessages().front().box.text),
            "No contacts were found. Add people with telephone numbers to the desktop's address "
            "book, or save them as vCards in " +
                Path("root/contacts.vcf") + ".");
}

TEST_F(Library, TellsANewcomerNothingIfThePanelThatOpensItSaysItAlready) {
  ASSERT_EQ(::setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + Path("no-bus")).c_str(), 1), 0);
  m_options.contacts.clear();
  applet::LibraryParts parts = Parts();
  parts.welcomesNewcomers = false;
  applet::Library library(parts);
  EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  EXPECT_TRUE(m_machine.ui.GetMessages().empty());
}

TEST_F(Library, WithoutAScreenSaysSoOnStandardErrorAndOpensNothing) {
  m_hasScreen = false;
  applet::Library library(Parts());
  bool isShown = false;
  m_machine.ui.SetSheetStory([&](headless::HeadlessSheet&) { isShown = true; });
  testing::internal::CaptureStderr();
  EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "voxtrel.cpl: There is no display to open a window on. Without one, the command line "
            "does the same work: voxtrel --help\n");
  EXPECT_FALSE(isShown);
}

TEST(ReportOnStandardError, IsOneLineWhateverTheTextHolds) {
  testing::internal::CaptureStderr();
  applet::ReportOnStandardError(u"Sure?\nReally?");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "voxtrel.cpl: Sure? Really?\n");
}

}  // namespace
