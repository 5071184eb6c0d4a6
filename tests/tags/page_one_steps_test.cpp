// What can be seen of the Learning page between the steps of its work.

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "audio/wave_header.h"
#include "platform/file_system.h"
#include "tags/utterance_recording.h"
#include "tests/support/watched_threads.h"
#include "tests/tags/watched_page.h"

namespace {

using Texts = std::vector<std::u16string>;
using namespace resources;
using testing::ElementsAre;

class PageOneSteps : public WatchedPage {
 protected:
  void PutTags(std::uint32_t count) {
    for (std::uint32_t i = 0; i < count; ++i) {
      PutTag(storage::TagNameOfTickCount(i), kAnn, u"Mobile");
    }
  }
};

TEST_F(PageOneSteps, ThePageOpensStepByStep) {
  PutTag(u"100", kAnn, u"Mobile");
  std::vector<std::string> log;
  support::WatchedThreads threads(m_machine.simulation);
  threads.SetListener([&](support::WatchedThreads::Made made) {
    if (made != support::WatchedThreads::Made::kThread) {
      log.emplace_back(made == support::WatchedThreads::Made::kMutex ? "mutex" : "event");
    }
  });
  m_contacts.SetListener([&](std::string_view call) { log.emplace_back(call); });
  m_ui.SetListener([&](platform::Cursor cursor) {
    log.emplace_back(cursor == platform::Cursor::kWait ? "wait cursor" : "normal cursor");
  });
  OpenOn({m_files, m_machine.waveIn, m_clock, threads, m_machine.process, m_ui, m_machine.registry,
          m_contacts, m_waveOut, m_machine.shell});
  EXPECT_THAT(log,
              ElementsAre("mutex", "wait cursor", "event", "Initialize", "Connect", "Logon",
                          "GetCount", "GetItem", "GetItem", "GetItemFromOid", "normal cursor"));
  Close();
}

TEST_F(PageOneSteps, TheBarIsThereBeforeAFolderIsMade) {
  auto& dialog = OpenWatched();
  m_files.Refuse({storage::kWaveFolder});
  std::optional<headless::HeadlessDialog::Progress> seen;
  m_machine.ui.SetAnswerer([&](const platform::MessageBox&) {
    seen = dialog.GetProgress(kProgressBarId);
    return platform::MessageAnswer::kOk;
  });
  dialog.Press(kRecordButtonId);
  ASSERT_TRUE(seen);
  EXPECT_EQ(seen->position, 0);
  EXPECT_FALSE(dialog.GetProgress(kProgressBarId));
}

TEST_F(PageOneSteps, TheFoldersAreMadeBeforeItIsAskedWhatWasChosen) {
  Open().ResetItems(kNumberComboId);
  m_dialog->Press(kRecordButtonId);
  EXPECT_EQ(GetMessages(), Texts{u"Error: oid == 0"});
  for (const std::u16string_view folder : {storage::kWaveFolder, storage::kTemplateFolder}) {
    EXPECT_TRUE(m_machine.files.Find(folder));
  }
}

TEST_F(PageOneSteps, TheBarRunsFromZeroToItsEndInTenPauses) {
  auto& dialog = OpenWatched();
  std::vector<int> positions;
  m_clock.SetListener([&](std::uint32_t milliseconds) {
    const auto progress = dialog.GetProgress(kProgressBarId);
    if (milliseconds == 300 && progress) {
      EXPECT_EQ(progress->bar.minimum, 0);
      EXPECT_EQ(progress->bar.maximum, 100);
      positions.push_back(progress->position);
    }
  });
  dialog.Press(kRecordButtonId);
  EXPECT_THAT(positions, ElementsAre(0, 10, 20, 30, 40, 50, 60, 70, 80, 90));
}

TEST_F(PageOneSteps, TheHundredthTagIsTheLastThatIsMade) {
  PutTags(99);
  auto& dialog = Open();
  dialog.Press(kRecordButtonId);
  EXPECT_TRUE(GetMessages().empty());
  EXPECT_EQ(m_page->GetTags().tagCount, 100);
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 100);
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(GetMessages(), Texts{u"Tags number exceeds limit: 100"});
  EXPECT_EQ(GetEntries().size(), 100U);
}

TEST_F(PageOneSteps, TheLimitIsShownWhenTheCueHasBeenHeard) {
  PutTags(100);
  auto& dialog = Open();
  const std::uint64_t pressed = m_machine.simulation.GetElapsed();
  m_machine.ui.SetAnswerer([&](const platform::MessageBox&) {
    EXPECT_EQ(m_machine.simulation.GetElapsed() - pressed, 150U);
    return platform::MessageAnswer::kOk;
  });
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(GetMessages().size(), 1U);
}

TEST_F(PageOneSteps, WhatWasRecordedIsPlayedBeforeItIsCountedAndEnablesAnything) {
  auto& dialog = OpenWatched();
  Texts labels;
  std::vector<bool> canDeleteAll;
  std::vector<bool> canTest;
  m_waveOut.SetListener([&] {
    labels.push_back(dialog.GetText(kCountLabelId));
    canDeleteAll.push_back(dialog.IsEnabled(kDeleteAllButtonId));
    canTest.push_back(dialog.IsEnabled(kTestButtonId));
  });
  dialog.Press(kRecordButtonId);
  dialog.Press(kRecordButtonId);
  EXPECT_THAT(labels, ElementsAre(u"Learned commands: 0", u"Learned commands: 1"));
  EXPECT_THAT(canDeleteAll, ElementsAre(false, true));
  EXPECT_THAT(canTest, ElementsAre(false, false));
  EXPECT_TRUE(dialog.IsEnabled(kTestButtonId));
}

TEST_F(PageOneSteps, TheCodeOfTheRecorderIsReadBeforeTheProcessEnds) {
  m_machine.waveIn.SetScript({.start = platform::WaveResult::kFailed});
  bool wasAlive = false;
  m_machine.ui.SetAnswerer([&](const platform::MessageBox&) {
    wasAlive = !m_machine.process.GetExitCode();
    return platform::MessageAnswer::kOk;
  });
  Open().Press(kRecordButtonId);
  EXPECT_EQ(m_machine.process.GetExitCode(), 0);
  EXPECT_TRUE(wasAlive);
}

TEST_F(PageOneSteps, ARecordingHasItsFormatWhateverTheDeviceWasSetTo) {
  const platform::Platform platform = m_machine.Get();
  const auto device = std::make_shared<audio::WaveDevice>(platform);
  device->SetFormat(8, 8000);
  const std::u16string path = u"\\Program Files\\one.wav";
  tags::UtteranceRecording(platform, device, path).Run();
  const auto wave = m_machine.files.GetFile(path);
  ASSERT_TRUE(wave);
  ASSERT_EQ(wave->size(), 66194U) << "Three seconds.";
  const auto bytes = std::span<const std::byte>(*wave);
  EXPECT_EQ(platform::LoadLittleEndian32(bytes.subspan(24).first<4>()), 11025U);
  EXPECT_EQ(platform::LoadLittleEndian16(bytes.subspan(34).first<2>()), 16U);
}

/// Tags whose contact has gone stay in the count until the page opens again, and not in the list.
class PageOneStaleCount : public PageFixture {
 protected:
  static constexpr std::int32_t kNobody = 999;
};

TEST_F(PageOneStaleCount, EnablesTestWithASingleLine) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kNobody, u"Mobile");
  auto& dialog = Open();
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 1);
  EXPECT_TRUE(dialog.IsEnabled(kTestButtonId));
  EXPECT_FALSE(Open().IsEnabled(kTestButtonId)) << "Gone once the page was opened again.";
}

TEST_F(PageOneStaleCount, LeavesNothingToDelete) {
  PutTag(u"100", kNobody, u"Mobile");
  auto& dialog = Open();
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"Learned commands: 1");
  EXPECT_FALSE(dialog.IsEnabled(kDeleteAllButtonId)) << "The list is empty.";
}

TEST_F(PageOneStaleCount, EnablesTestWithTheFirstRecording) {
  PutTag(u"100", kNobody, u"Mobile");
  auto& dialog = Open();
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 1);
  EXPECT_TRUE(dialog.IsEnabled(kTestButtonId));
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"Learned commands: 2");
}

TEST_F(PageOneStaleCount, KeepsTestEnabledAfterADeletion) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kBob, u"Home");
  PutTag(u"300", kNobody, u"Mobile");
  auto& dialog = Open();
  dialog.Choose(kTagListId, 0);
  dialog.Press(kDeleteButtonId);
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 1);
  EXPECT_TRUE(dialog.IsEnabled(kTestButtonId));
}

TEST_F(PageOneStaleCount, DoesNotKeepDeleteAllOfAListThatIsEmpty) {
  PutTag(u"100", kAnn, u"Mobile");
  PutTag(u"200", kNobody, u"Mobile");
  auto& dialog = Open();
  dialog.Choose(kTagListId, 0);
  dialog.Press(kDeleteButtonId);
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"Learned commands: 1");
  EXPECT_FALSE(dialog.IsEnabled(kDeleteAllButtonId));
  EXPECT_FALSE(dialog.IsEnabled(kTestButtonId));
}

TEST_F(PageOneSteps, TheLimitCountsTheTagsThatAreSaidToBeThereAndNotTheLines) {
  PutTags(99);
  auto& dialog = Open();
  dialog.Choose(kContactComboId, 1);
  m_machine.contacts.SetLookup(kBob, platform::ContactsError::kFailed);
  dialog.Press(kRecordButtonId);
  ASSERT_EQ(m_page->GetTags().tagCount, 100);
  ASSERT_EQ(dialog.GetItemCount(kTagListId), 99) << "The new tag cannot be named.";
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(GetMessages().back(), u"Tags number exceeds limit: 100");
  EXPECT_EQ(GetEntries().size(), 100U);
}

}  // namespace
