#include "maintenance/template_loading.h"

#include "resources/strings.h"
#include "tests/maintenance/session_fixture.h"
#include "tests/support/watched_file_system.h"

namespace {

using maintenance::LoadedTemplates;

const std::vector<float> kOne{1, 0, 0, 0, 0};
const std::vector<float> kTwo{0, 1, 0, 0, 0, 1, 0, 0, 0, 0};

class TemplateLoading : public SessionFixture {
 protected:
  LoadedTemplates Load() {
    const auto loaded = TryLoad();
    EXPECT_TRUE(loaded);
    return loaded.value_or(LoadedTemplates());
  }
  [[nodiscard]] platform::Result<LoadedTemplates, maintenance::ProcessEnded> TryLoad() {
    return maintenance::TemplateLoader(m_machine.Get(), m_texts, m_session.mathematics)
        .Load(m_session.tags);
  }
  [[nodiscard]] std::vector<float> GetSlot(std::size_t slot) const {
    const auto values = m_session.mathematics.GetTemplate(slot);
    return {values.begin(), values.end()};
  }
};

TEST_F(TemplateLoading, PutsEachTagIntoTheSlotOfItsPlace) {
  PutTag(u"100", u"Ann", kOne);
  PutTag(u"200", u"Bob", kTwo);
  const auto loaded = Load();
  EXPECT_EQ(loaded.tags, (std::vector<std::int32_t>{0, 1}));
  EXPECT_EQ(loaded.wavePaths, (Texts{storage::WavePath(u"100"), storage::WavePath(u"200")}));
  EXPECT_EQ(GetSlot(0), kOne);
  EXPECT_EQ(GetSlot(1), kTwo);
  EXPECT_EQ(m_session.mathematics.m_wavePaths[1], storage::WavePath(u"200"));
  EXPECT_EQ(m_session.mathematics.m_loadSlot, 1);
  EXPECT_TRUE(loaded.unread.empty());
}

TEST_F(TemplateLoading, NeedsNoRecordings) {
  PutTag(u"100", u"Ann", kOne);
  EXPECT_EQ(m_machine.files.GetFile(storage::WavePath(u"100")), std::nullopt);
  EXPECT_EQ(Load().tags.size(), 1U);
}

TEST_F(TemplateLoading, AMissingTemplateTakesNoSlot) {
  PutTag(u"100", u"Ann", kOne);
  m_session.AddTag(u"200", u"Bob");
  PutTag(u"300", u"Cid", kTwo);
  const auto loaded = Load();
  EXPECT_EQ(loaded.tags, (std::vector<std::int32_t>{0, 2}));
  EXPECT_EQ(loaded.unread, std::vector<std::int32_t>{1});
  EXPECT_EQ(loaded.wavePaths[1], u"");
  EXPECT_EQ(loaded.wavePaths[2], storage::WavePath(u"300"));
  EXPECT_EQ(GetSlot(1), kTwo);
  EXPECT_FALSE(loaded.hasNamelessTags);
}

TEST_F(TemplateLoading, ATornTemplateIsNotRead) {
  PutTag(u"100", u"Ann", kOne);
  for (const std::size_t length : {0U, 3U, 6U, 25U}) {
    support::Bytes bytes = TemplateBytes(kOne);
    bytes.resize(length);
    ASSERT_TRUE(m_machine.files.PutFile(storage::TemplatePath(u"100"), bytes));
    EXPECT_EQ(Load().unread, std::vector<std::int32_t>{0}) << length;
  }
}

TEST_F(TemplateLoading, ATemplateWhoseCountsDoNotAgreeIsNotRead) {
  PutTag(u"100", u"Ann", kTwo);
  support::Bytes bytes = TemplateBytes(kTwo);
  bytes[4] = std::byte{1};
  ASSERT_TRUE(m_machine.files.PutFile(storage::TemplatePath(u"100"), bytes));
  EXPECT_EQ(Load().unread, std::vector<std::int32_t>{0});
}

TEST_F(TemplateLoading, ATemplateWithoutFramesIsOne) {
  PutTag(u"100", u"Ann", {});
  EXPECT_EQ(Load().tags.size(), 1U);
}

TEST_F(TemplateLoading, AFileHeldByAnotherProgramIsNotRead) {
  PutTag(u"100", u"Ann", kOne);
  const auto held = m_machine.files.Open(
      storage::TemplatePath(u"100"), {platform::FileAccess::kReadWrite, platform::FileShare::kNone,
                                      platform::FileCreation::kOpenExisting});
  ASSERT_TRUE(held);
  EXPECT_EQ(Load().unread, std::vector<std::int32_t>{0});
}

TEST_F(TemplateLoading, AnEmptyRecordIsNeverLookedFor) {
  PutTag(u"100", u"Ann", kOne);
  PutTemplate(u"", kTwo);  // A file ".st".
  m_session.AddTag(u"", u"");
  const auto loaded = Load();
  EXPECT_EQ(loaded.tags, std::vector<std::int32_t>{0});
  EXPECT_TRUE(loaded.unread.empty());
  EXPECT_TRUE(loaded.hasNamelessTags);
}

TEST_F(TemplateLoading, TakesNoMoreTagsThanThereIsRoomFor) {
  for (int i = 0; i < 100; ++i) {
    const std::u16string name = language::Decimal(1000 + i);
    PutTag(name, u"Tag", kOne);
  }
  m_session.tags.tagCount = 130;
  const auto loaded = Load();
  EXPECT_EQ(loaded.tags.size(), 100U);
  EXPECT_EQ(loaded.wavePaths.size(), 100U);
}

TEST_F(TemplateLoading, WithoutTagsTakesTheRecordingsOfTheFolder) {
  for (const std::u16string_view name : {u"10", u"20", u"30"}) {
    PutRecording(name, 1);
  }
  PutTemplate(u"10", kOne);
  PutTemplate(u"30", kTwo);
  const auto loaded = Load();
  EXPECT_EQ(loaded.tags, (std::vector<std::int32_t>{0, 2}));
  EXPECT_EQ(loaded.unread, std::vector<std::int32_t>{1});
  EXPECT_EQ(loaded.wavePaths[2], storage::WavePath(u"30"));
  EXPECT_EQ(GetSlot(0), kOne);
  EXPECT_EQ(GetSlot(1), kTwo);
  EXPECT_TRUE(GetMessages().empty());
}

TEST_F(TemplateLoading, WithoutTagsTakesNoMoreRecordingsThanThereIsRoomFor) {
  for (int i = 0; i < 105; ++i) {
    const std::u16string name = language::Decimal(1000 + i);
    ASSERT_TRUE(m_machine.files.PutFile(storage::WavePath(name), support::Bytes(44)));
    PutTemplate(name, kOne);
  }
  EXPECT_EQ(Load().tags.size(), 100U);
}

TEST_F(TemplateLoading, WithoutTagsAndRecordingsTellsHowToRecordAndEnds) {
  EXPECT_FALSE(TryLoad());
  EXPECT_EQ(m_machine.process.GetExitCode(), 0);
  EXPECT_EQ(GetMessages(),
            Texts{u"There are no voice tags.\n\nTo record voice tags select Start -> Settings -> "
                  u"System tab -> Zedra Voxtrel."});
}

TEST_F(TemplateLoading, TheAdviceIsTwoTextsOfTheLanguageFile) {
  LoadLanguage(u"ID_S_MESSAGE_NOCOM1 Keine.\r\nID_S_MESSAGE_NOCOM2 Aufnehmen!\r\n");
  EXPECT_FALSE(TryLoad());
  EXPECT_EQ(GetMessages(), Texts{u"Keine.\n\nAufnehmen!"});
}

TEST_F(TemplateLoading, ASearchThatFailsOnItsWayIsToldAndGoesOn) {
  for (const std::u16string_view name : {u"10", u"20"}) {
    PutRecording(name, 1);
    PutTemplate(name, kOne);
  }
  support::WatchedFileSystem failing(m_machine.files);
  maintenance::TemplateLoader loader(m_machine.GetWith(failing, m_machine.registry), m_texts,
                                     m_session.mathematics);
  // The mathematics reads by other files, so of the walk itself: start, first, next.
  bool wasTold = false;
  for (std::size_t call = 3; call < 12 && !wasTold; ++call) {
    failing.FailCall(call, support::Failing::kOnce);
    const auto loaded = loader.Load(m_session.tags);
    wasTold = !GetMessages().empty();
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->wavePaths.size(), 2U) << "The walk goes on.";
  }
  ASSERT_TRUE(wasTold);
  const auto shown = m_machine.ui.GetMessages();
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown[0].box.text, u"Error in FindNextFile");
  EXPECT_EQ(shown[0].box.captionKind, platform::MessageCaption::kNone);
  EXPECT_EQ(shown[0].box.style, platform::MessageStyle::kOk);
}

}  // namespace
