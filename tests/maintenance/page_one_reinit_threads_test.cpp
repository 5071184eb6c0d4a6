// The reinitialization with real threads and a clock that takes no time, for the thread sanitizer.

#include <thread>

#include "backends/posix/posix_threads.h"
#include "tests/maintenance/reinit_page_fixture.h"
#include "tests/support/results.h"
#include "tests/support/temp_folder.h"
#include "tests/support/watched_clock.h"
#include "tests/support/watched_threads.h"

namespace {

class PageOneReinitThreads : public ReinitPageFixture {
 protected:
  static constexpr int kRepetitions = 60;

  PageOneReinitThreads() {
    m_noWait.ShortenWaits(1);
    m_clock.SetListener([](std::uint32_t) { std::this_thread::yield(); });
  }

  /// Opens a page on real threads, and lets `story` be the user of the dialog.
  void OpenOnThreads(const std::function<void(headless::HeadlessDialog&)>& story) {
    headless::HeadlessUi ui(u"Zedra Voxtrel", &m_noWait);
    ui.SetDialogStory(138, [&](headless::HeadlessDialog& window) {
      ++m_shown;
      story(window);
    });
    const platform::Platform simulated = m_machine.Get();
    const platform::Platform platform{simulated.files,    simulated.waveIn,   m_clock,
                                      m_noWait,           simulated.process,  ui,
                                      simulated.registry, simulated.contacts, simulated.waveOut,
                                      simulated.shell};
    tags::Page_one page(platform, m_texts);
    headless::HeadlessDialog dialog(resources::kLearningDialog, page, &m_noWait);
    page.OnInitDialog();
    dialog.DeliverPosted();
    for (const auto& shown : ui.GetMessages()) {
      m_told.push_back(shown.box.text);
    }
  }

  /// So that the next opening has to make them.
  void DeleteTemplates(std::initializer_list<std::u16string_view> names) {
    for (const std::u16string_view name : names) {
      static_cast<void>(m_machine.files.Delete(storage::TemplatePath(name)));
    }
  }

  support::TempFolder m_folder;
  posix::PosixThreads m_threads{m_folder.Path()};
  support::WatchedThreads m_noWait{m_threads};
  support::WatchedClock m_clock;
  int m_shown = 0;  ///< Dialogs that had not ended by themselves before the user could see them.
  Texts m_told;
};

TEST_F(PageOneReinitThreads, EndsByItselfEveryTime) {
  PutSpokenTag(u"100", 1);
  PutSpokenTag(u"200", 2);
  for (int i = 0; i < kRepetitions; ++i) {
    PutVersion(u"2");
    DeleteTemplates({u"100", u"200"});
    OpenOnThreads([](headless::HeadlessDialog& window) { EXPECT_TRUE(window.WaitForEnd()); });
    for (const auto* const name : {u"100", u"200"}) {
      ASSERT_TRUE(GetTemplate(name) && IsWholeTemplate(*GetTemplate(name)));
      ASSERT_GT(GetTemplate(name)->size(), 6U);
    }
  }
  EXPECT_GT(m_shown, 0);
  EXPECT_TRUE(m_told.empty());
}

TEST_F(PageOneReinitThreads, EndsWithMoreAndWithFewerRecordingsThanTags) {
  PutSpokenTag(u"100", 1);
  ASSERT_TRUE(m_machine.files.PutFile(storage::WavePath(u"500"), Recording(5)));
  for (int i = 0; i < kRepetitions; ++i) {
    if (i == kRepetitions / 2) {
      const storage::TagStore store(m_machine.files, m_machine.registry);
      for (const std::u16string_view name : {u"600", u"700", u"800"}) {
        ASSERT_EQ(support::ErrorOf(store.WriteEntry(name, kAnn, u"Mobile")), std::nullopt);
      }
    }
    PutVersion(u"2");
    DeleteTemplates({u"100", u"500"});
    OpenOnThreads([](headless::HeadlessDialog& window) { EXPECT_TRUE(window.WaitForEnd()); });
    ASSERT_TRUE(GetTemplate(u"100") && IsWholeTemplate(*GetTemplate(u"100")));
    ASSERT_TRUE(GetTemplate(u"500") && IsWholeTemplate(*GetTemplate(u"500")));
  }
  EXPECT_GT(m_shown, 0);
  EXPECT_TRUE(m_told.empty());
}

TEST_F(PageOneReinitThreads, TheUserClosesItAfterAFailureEveryTime) {
  PutSpokenTag(u"100", 1);
  PutSpokenTag(u"200", 2);
  const auto held = m_machine.files.Open(storage::TemplatePath(u"200"), {});
  for (int i = 0; i < kRepetitions; ++i) {
    PutVersion(u"2");
    OpenOnThreads([](headless::HeadlessDialog& window) {
      while (!window.GetResult()) {
        window.Close();
        std::this_thread::yield();
      }
      EXPECT_EQ(window.GetResult(), 2);
    });
  }
  EXPECT_EQ(m_told.size(), static_cast<std::size_t>(kRepetitions));
}

TEST_F(PageOneReinitThreads, AWindowMayGoAtAnyMoment) {
  PutSpokenTag(u"100", 1);
  PutSpokenTag(u"200", 2);
  for (int i = 0; i < kRepetitions; ++i) {
    PutVersion(u"2");
    OpenOnThreads([i](headless::HeadlessDialog& window) {
      for (int spin = 0; spin < i * 40; ++spin) {
        std::this_thread::yield();
      }
      window.EndDialog(0);
    });
  }
  EXPECT_GT(m_shown, 0);
}

TEST_F(PageOneReinitThreads, TheEndOfTheAppletAloneIsSafeEveryTime) {
  const storage::TagStore store(m_machine.files, m_machine.registry);
  ASSERT_EQ(support::ErrorOf(store.WriteEntry(u"100", kAnn, u"Mobile")), std::nullopt);
  for (int i = 0; i < kRepetitions; ++i) {
    PutVersion(u"2");
    OpenOnThreads([](headless::HeadlessDialog& window) { EXPECT_TRUE(window.WaitForEnd()); });
  }
  EXPECT_EQ(m_told.size(), static_cast<std::size_t>(kRepetitions));
  EXPECT_EQ(m_machine.process.GetExitCode(), 0);
}

}  // namespace
