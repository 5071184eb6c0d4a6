#include "host/applet/library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/applet/no_window.h"
#include "backends/headless/headless_ui.h"
#include "backends/posix/posix_clock.h"
#include "backends/posix/posix_threads.h"
#include "backends/text/utf.h"
#include "resources/dialogs.h"
#include "tests/support/temp_folder.h"

namespace {

using applet::CplMessage;
using testing::ElementsAre;

/// What a test sees of the presentations of one library.
struct Stage {
  int made = 0;
  headless::HeadlessUi ui{u"Zedra Voxtrel"};
  std::function<void()> onBell;
  std::vector<std::string> tokens;
};

class StagePresentation final : public applet::Presentation {
 public:
  StagePresentation(Stage& stage, platform::Clock& clock, platform::Threads& threads)
      : m_stage(stage), m_clock(clock), m_threads(threads) {
    ++m_stage.made;
  }
  platform::Ui& GetUi() override { return m_stage.ui; }
  platform::Clock& GetClock() override { return m_clock; }
  platform::Threads& GetThreads() override { return m_threads; }
  void Watch(int /*descriptor*/, std::function<void()> onReadable) override {
    m_stage.onBell = std::move(onReadable);
  }
  void BringForward(std::string_view token) override { m_stage.tokens.emplace_back(token); }

 private:
  Stage& m_stage;
  platform::Clock& m_clock;
  platform::Threads& m_threads;
};

class Library : public testing::Test {
 protected:
  Library() {
    // Contacts of a file that is not there: no server of the desktop is asked.
    m_options.backends.root = (m_folder.Path() / "root").string();
    m_options.backends.contacts = (m_folder.Path() / "none.vcf").string();
    m_options.runtimeFolder = m_folder.Path().string();
    m_options.getPicture = [](int) { return std::as_bytes(std::span("<svg/>")); };
    m_options.makePresentation = [this](platform::Clock& clock, platform::Threads& threads) {
      return std::make_unique<StagePresentation>(m_stage, clock, threads);
    };
  }

  [[nodiscard]] static std::int32_t Send(applet::Library& library, CplMessage message,
                                         std::intptr_t lParam1 = 0, std::intptr_t lParam2 = 0) {
    return library.Answer(static_cast<std::uint32_t>(message), lParam1, lParam2);
  }

  [[nodiscard]] std::string Path(const char* name) const { return m_folder.Path() / name; }

  support::TempFolder m_folder;
  Stage m_stage;
  applet::LibraryOptions m_options;
};

TEST_F(Library, NeedsNoWindowSystemToTellNameAndIcon) {
  applet::Library library(m_options);
  applet::NewCplInfo info;
  EXPECT_EQ(Send(library, CplMessage::kInit), 1);
  EXPECT_EQ(Send(library, CplMessage::kGetCount), 1);
  EXPECT_EQ(Send(library, CplMessage::kNewInquire, 0, reinterpret_cast<std::intptr_t>(&info)), 0);
  EXPECT_EQ(std::u16string(info.szName.data()), u"Zedra Voxtrel");
  EXPECT_GT(info.hIcon, 2U);
  EXPECT_EQ(Send(library, CplMessage::kStop), 0);
  EXPECT_EQ(Send(library, CplMessage::kExit), 0);
  EXPECT_EQ(m_stage.made, 0);
  EXPECT_FALSE(std::filesystem::exists(m_options.backends.root));
}

TEST_F(Library, MakesThePresentationOnceWhenTheSheetIsShown) {
  applet::Library library(m_options);
  std::vector<std::size_t> tabs;
  m_stage.ui.SetSheetStory(
      [&](headless::HeadlessSheet& sheet) { tabs.push_back(sheet.GetTabTexts().size()); });
  EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  EXPECT_THAT(tabs, ElementsAre(2U, 2U));
  EXPECT_EQ(m_stage.made, 1);
  EXPECT_TRUE(std::filesystem::is_directory(m_options.backends.root));
}

TEST_F(Library, ADoubleClickWhileTheSheetIsOpenBringsItForward) {
  applet::Library library(m_options);
  int shown = 0;
  m_stage.ui.SetSheetStory([&](headless::HeadlessSheet&) {
    ++shown;
    EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
    EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  });
  EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  EXPECT_EQ(shown, 1);
  EXPECT_THAT(m_stage.tokens, ElementsAre("", ""));
}

TEST_F(Library, SaysThatThereIsNoFolderInsteadOfOpening) {
  ASSERT_EQ(::unsetenv("HOME"), 0);
  ASSERT_EQ(::unsetenv("XDG_DATA_HOME"), 0);
  m_options.backends.root.clear();
  applet::Library library(m_options);
  bool isShown = false;
  m_stage.ui.SetSheetStory([&](headless::HeadlessSheet&) { isShown = true; });
  applet::NewCplInfo info;
  EXPECT_EQ(Send(library, CplMessage::kNewInquire, 0, reinterpret_cast<std::intptr_t>(&info)), 0);
  EXPECT_EQ(Send(library, CplMessage::kDblClk, 1), 1);
  EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  EXPECT_FALSE(isShown);
  ASSERT_EQ(m_stage.ui.GetMessages().size(), 2U);
  EXPECT_EQ(m_stage.ui.GetMessages().front().box.text,
            u"There is no folder for the voice tags: HOME names none. Set it, or name a folder by "
            u"VOXTREL_ROOT.");
}

TEST_F(Library, TellsANewcomerWhereContactsAreLookedForAndOpensWithoutAny) {
  // No desktop answers here.
  ASSERT_EQ(::setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + Path("no-bus")).c_str(), 1), 0);
  m_options.backends.contacts.clear();
  applet::Library library(m_options);
  m_stage.ui.SetSheetStory([&](headless::HeadlessSheet& sheet) {
    const headless::HeadlessDialog& page = *sheet.ShowPage(0);
    EXPECT_FALSE(page.IsEnabled(resources::kRecordButtonId));
    EXPECT_EQ(page.GetText(resources::kCountLabelId), u"Learned commands: 0");
  });
  EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  ASSERT_EQ(m_stage.ui.GetMessages().size(), 1U);
  EXPECT_EQ(text::ToUtf8(m_stage.ui.GetMessages().front().box.text),
            "No contacts were found. Add people with telephone numbers to the desktop's address "
            "book, or save them as vCards in " +
                Path("root/contacts.vcf") + ".");
}

TEST_F(Library, ASecondProcessEndsAndCallsTheFirstOne) {
  applet::Library first(m_options);
  m_options.activationToken = "token";
  m_stage.ui.SetSheetStory([&](headless::HeadlessSheet&) {
    // What exits is a copy of this process, which first makes a library of its own.
    EXPECT_EXIT(
        static_cast<void>(Send(*std::make_unique<applet::Library>(m_options), CplMessage::kDblClk)),
        testing::ExitedWithCode(0),
        "^voxtrel.cpl: Zedra Voxtrel is open already; its window was brought forward.\n$");
    ASSERT_TRUE(m_stage.onBell);
    m_stage.onBell();
  });
  EXPECT_EQ(Send(first, CplMessage::kDblClk), 0);
  EXPECT_THAT(m_stage.tokens, ElementsAre("token"));
}

TEST_F(Library, ASecondProcessSaysWhenTheFirstOneHasNoWindow) {
  posix::PosixThreads commandLine(m_options.backends.root);
  const platform::CreatedMutex held = commandLine.CreateNamedMutex(u"ZedraD");
  ASSERT_TRUE(held.mutex);
  EXPECT_EXIT(
      static_cast<void>(Send(*std::make_unique<applet::Library>(m_options), CplMessage::kDblClk)),
      testing::ExitedWithCode(0), "^voxtrel.cpl: The voice tags are in use by another");
}

TEST_F(Library, WithoutADisplaySaysSoAndGoesOn) {
  m_options.makePresentation = [](platform::Clock& clock, platform::Threads& threads) {
    return std::make_unique<applet::NoWindow>(clock, threads);
  };
  applet::Library library(m_options);
  testing::internal::CaptureStderr();
  EXPECT_EQ(Send(library, CplMessage::kDblClk), 0);
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              testing::StartsWith("voxtrel.cpl: There is no display to open a window on."));
}

TEST(NoWindow, AgreesToNothing) {
  posix::PosixClock clock;
  posix::PosixThreads threads;
  applet::NoWindow window(clock, threads);
  testing::internal::CaptureStderr();
  EXPECT_EQ(window.GetUi().ShowMessage({u"Sure?\nReally?", platform::MessageCaption::kNone, u"",
                                        platform::MessageStyle::kOkCancel}),
            platform::MessageAnswer::kCancel);
  EXPECT_EQ(window.GetUi().ShowMessage(platform::ApplicationBox(u"Done")),
            platform::MessageAnswer::kOk);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "voxtrel.cpl: Sure? Really?\nvoxtrel.cpl: Done\n");
}

}  // namespace
