#include <new>

#include "platform/file_system.h"
#include "tests/support/watched_file_system.h"
#include "tests/support/watched_registry.h"
#include "tests/tags/page_fixture.h"

namespace {

using Texts = std::vector<std::u16string>;
using namespace resources;

class PageOneRecording : public PageFixture {
 protected:
  [[nodiscard]] platform::RegistryValue GetValue(std::u16string_view tag,
                                                 std::u16string_view name) {
    const std::u16string key = u"Software\\Zedra\\Zedra Voxtrel\\" + std::u16string(tag);
    return m_machine.registry.OpenKey(key).value()->Query(name).value();
  }
  static std::u16string TextOf(const platform::RegistryValue& value) {
    return storage::TextOfValue(value);
  }
};

TEST_F(PageOneRecording, MakesAWholeTag) {
  auto& dialog = Open();
  dialog.Choose(kNumberComboId, 1);
  dialog.Press(kRecordButtonId);
  EXPECT_TRUE(GetMessages().empty());
  EXPECT_EQ(m_machine.ui.CountBeeps(), 1);

  EXPECT_EQ(GetEntries(), Texts{u"1000"});
  EXPECT_TRUE(HasFile(storage::WavePath(u"1000")));
  EXPECT_TRUE(HasFile(storage::TemplatePath(u"1000")));
  EXPECT_LT(m_machine.files.GetFile(storage::WavePath(u"1000"))->size(), 66194U) << "Trimmed.";
  EXPECT_EQ(TextOf(GetValue(u"1000", u"contact")), u"17");
  EXPECT_EQ(GetValue(u"1000", u"contact").bytes.size(), 100U);
  EXPECT_EQ(TextOf(GetValue(u"1000", u"phone type")), u"Mobile");
  EXPECT_EQ(GetValue(u"1000", u"phone type").bytes.size(), 100U);

  EXPECT_EQ(m_page->GetTags().tagCount, 1);
  EXPECT_EQ(m_page->GetTags().GetRecord(0)->GetTagName(), u"1000");
  EXPECT_EQ(dialog.GetItems(kTagListId), Texts{u"Ann Lee 5551234 M"});
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"Learned commands: 1");
  EXPECT_TRUE(dialog.IsEnabled(kDeleteAllButtonId));
  EXPECT_FALSE(dialog.IsEnabled(kTestButtonId));
  EXPECT_FALSE(dialog.IsEnabled(kPlayButtonId));
}

TEST_F(PageOneRecording, PlaysWhatWasStored) {
  Open().Press(kRecordButtonId);
  const auto played = m_machine.waveOut.GetPlayed();
  ASSERT_EQ(played.size(), 1U);
  const auto wave = m_machine.files.GetFile(storage::WavePath(u"1000"));
  EXPECT_EQ(played[0].bytes, support::Bytes(wave->begin() + 44, wave->end()));
  EXPECT_EQ(m_page->GetPlayCode(), 0);
}

TEST_F(PageOneRecording, TakesTheTimeOfTheBeepTheRecordingAndThePlaying) {
  auto& dialog = Open();
  const std::uint64_t before = m_machine.simulation.GetElapsed();
  dialog.Press(kRecordButtonId);
  const auto wave = m_machine.files.GetFile(storage::WavePath(u"1000"));
  const std::uint64_t playing = wave->size() / 11025 * 1000 + 300;
  EXPECT_EQ(m_machine.simulation.GetElapsed() - before, 150 + 3000 + playing);
}

TEST_F(PageOneRecording, TheBarStandsBesideTheButtonAndGoesAtTheEnd) {
  auto& dialog = Open();
  std::optional<headless::HeadlessDialog::Progress> seen;
  m_machine.contacts.SetLookup(kAnn, platform::ContactsError::kFailed);
  m_machine.ui.SetAnswerer([&](const platform::MessageBox&) {
    seen = dialog.GetProgress(kProgressBarId);
    return platform::MessageAnswer::kOk;
  });
  dialog.Press(kRecordButtonId);
  ASSERT_TRUE(seen);
  EXPECT_EQ(seen->position, 100);
  EXPECT_EQ(seen->bar.rect.left, dialog.GetControlRect(kRecordButtonId).right + 10);
  EXPECT_EQ(seen->bar.rect.top, dialog.GetControlRect(kRecordButtonId).top);
  EXPECT_EQ(seen->bar.rect.right, dialog.GetControlRect(kNumberComboId).right);
  EXPECT_EQ(seen->bar.rect.bottom, dialog.GetControlRect(kRecordButtonId).bottom);
  EXPECT_FALSE(dialog.GetProgress(kProgressBarId));
}

TEST_F(PageOneRecording, TakesTheFirstNumberWhereNoneWasChosen) {
  auto& dialog = Open();
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(dialog.GetItems(kTagListId), Texts{u"Ann Lee 1110000 H"});
}

TEST_F(PageOneRecording, ASecondTagEnablesTest) {
  auto& dialog = Open();
  dialog.Press(kRecordButtonId);
  dialog.Choose(kContactComboId, 1);
  dialog.Press(kRecordButtonId);
  EXPECT_TRUE(dialog.IsEnabled(kTestButtonId));
  EXPECT_EQ(dialog.GetItems(kTagListId), (Texts{u"Ann Lee 1110000 H", u"Bob Ray 5550001 H"}));
  EXPECT_EQ(TextOf(GetValue(GetEntries()[1], u"contact")), u"-5");
}

TEST_F(PageOneRecording, AfterTwoToThe31MillisecondsTheNameIsNegative) {
  support::HeadlessPlatform late(0x80000000U);
  late.waveIn.SetScript({.sound = Speech()});
  machine::SimulatedContact ann{.oid = kAnn, .firstName = u"Ann"};
  ann.Number(platform::PhoneKind::kCar) = u"1";
  late.contacts.Add(ann);
  OpenOn(late.Get()).Press(kRecordButtonId);
  EXPECT_EQ(m_page->GetTags().GetRecord(0)->GetTagName(), u"-2147483648");
  m_dialog.reset();
  m_page.reset();
}

TEST_F(PageOneRecording, WithAHundredTagsBeepsAndRefuses) {
  for (int i = 0; i < 100; ++i) {
    PutTag(storage::TagNameOfTickCount(static_cast<std::uint32_t>(i)), kAnn, u"Mobile");
  }
  auto& dialog = Open();
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(m_machine.ui.CountBeeps(), 1);
  EXPECT_EQ(GetMessages(), Texts{u"Tags number exceeds limit: 100"});
  EXPECT_EQ(m_page->GetTags().tagCount, 100);
  EXPECT_FALSE(HasFile(storage::WavePath(u"1000")));
  EXPECT_FALSE(dialog.GetProgress(kProgressBarId));
}

TEST_F(PageOneRecording, WithoutALetterInTheWordNothingIsWritten) {
  auto& dialog = Open();
  dialog.ResetItems(kNumberComboId);
  dialog.AddItem(kNumberComboId, u"12345");
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(GetMessages(), Texts{u"Error: oid == 0"});
  EXPECT_EQ(m_machine.ui.CountBeeps(), 0);
  EXPECT_EQ(m_machine.ui.GetMessages()[0].box.captionKind, platform::MessageCaption::kApplication);
  EXPECT_TRUE(GetEntries().empty());
}

TEST_F(PageOneRecording, UnderTheIdentifierZeroNothingIsWritten) {
  m_machine.contacts.Remove(kAnn);
  m_machine.contacts.Remove(kBob);
  machine::SimulatedContact nobody{.oid = 0, .firstName = u"No"};
  nobody.Number(platform::PhoneKind::kMobile) = u"555";
  m_machine.contacts.Add(nobody);
  auto& dialog = Open();
  ASSERT_TRUE(dialog.IsEnabled(kRecordButtonId));
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(m_page->GetPicker().GetPhoneTypeWord(), u"Mobile");
  EXPECT_EQ(GetMessages(), Texts{u"Error: oid == 0"});
  EXPECT_EQ(m_machine.ui.CountBeeps(), 0);
  EXPECT_FALSE(HasFile(storage::WavePath(u"1000")));
  EXPECT_TRUE(GetEntries().empty());
}

TEST_F(PageOneRecording, WithoutAMicrophoneTheProcessEnds) {
  m_machine.waveIn.SetScript({.deviceCount = 0});
  auto& dialog = Open();
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(GetMessages(), Texts{u"There are no wave-record devices in you computer."});
  EXPECT_EQ(m_machine.process.GetExitCode(), 0);
  EXPECT_TRUE(GetEntries().empty());
  EXPECT_FALSE(dialog.GetProgress(kProgressBarId));
}

TEST_F(PageOneRecording, ACodeOfTheRecorderIsShownAndEndsTheProcess) {
  m_machine.waveIn.SetScript({.start = platform::WaveResult::kFailed});
  Open().Press(kRecordButtonId);
  const auto messages = m_machine.ui.GetMessages();
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(messages[0].box.text, u"5");
  EXPECT_EQ(messages[0].box.caption, u"Error Code");
  EXPECT_EQ(messages[0].box.style, platform::MessageStyle::kTopmost);
  EXPECT_EQ(m_machine.process.GetExitCode(), 0);
  EXPECT_TRUE(GetEntries().empty());
}

TEST_F(PageOneRecording, AMicrophoneThatIsLostIsShownAsItsCodeAndLeavesNoRecording) {
  m_machine.waveIn.SetScript({.sound = Speech(), .unprepare = platform::WaveResult::kNoDevice});
  Open().Press(kRecordButtonId);
  EXPECT_EQ(GetMessages(), Texts{u"6"});
  EXPECT_EQ(m_page->GetRecordCode(), audio::kDeviceLost);
  EXPECT_EQ(m_machine.process.GetExitCode(), 0);
  EXPECT_FALSE(HasFile(storage::WavePath(u"1000")));
  EXPECT_TRUE(GetEntries().empty());
}

TEST_F(PageOneRecording, ARecordingThreadWithoutMemoryForItsMessageEndsTheProcessAllTheSame) {
  m_machine.waveIn.SetScript({.start = platform::WaveResult::kFailed});
  m_machine.ui.SetListener([](const headless::ShownMessage&) { throw std::bad_alloc(); });
  Open().Press(kRecordButtonId);
  EXPECT_EQ(m_machine.process.GetExitCode(), 0);
  EXPECT_TRUE(GetEntries().empty());
}

TEST_F(PageOneRecording, AContactThatCannotBeReadAgainKeepsTheTagButNotItsLine) {
  auto& dialog = Open();
  m_machine.contacts.SetLookup(kAnn, platform::ContactsError::kFailed);
  dialog.Press(kRecordButtonId);
  EXPECT_EQ(GetMessages(), Texts{u"Failed to get IContact in OnRecord"});
  EXPECT_EQ(GetEntries(), Texts{u"1000"});
  EXPECT_EQ(m_page->GetTags().tagCount, 1);
  EXPECT_EQ(dialog.GetItemCount(kTagListId), 0);
  EXPECT_EQ(dialog.GetText(kCountLabelId), u"Learned commands: 0") << "Not refreshed.";
  EXPECT_TRUE(m_machine.waveOut.GetPlayed().empty());
}

TEST_F(PageOneRecording, ATemplateThatCannotBeMadeLeavesOnlyTheRecording) {
  Open();
  // The name of the template is taken by a folder.
  ASSERT_TRUE(m_machine.files.CreateFolder(storage::kTemplateFolder));
  ASSERT_TRUE(m_machine.files.CreateFolder(storage::TemplatePath(u"1000")));
  m_dialog->Press(kRecordButtonId);
  EXPECT_EQ(GetMessages(), Texts{u"Error in CreateFile"});
  EXPECT_TRUE(HasFile(storage::WavePath(u"1000")));
  EXPECT_TRUE(GetEntries().empty());
  EXPECT_EQ(m_page->GetTags().tagCount, 0);
}

TEST_F(PageOneRecording, AnEntryThatCannotBeWrittenIsNoTag) {
  support::WatchedRegistry failing(m_machine.registry);
  OpenOn(m_machine.GetWith(m_machine.files, failing));
  failing.FailCall(1, support::Failing::kFromThenOn);
  m_dialog->Press(kRecordButtonId);
  EXPECT_EQ(GetMessages(), Texts{u"Error in CreateFile"});
  EXPECT_EQ(m_page->GetTags().tagCount, 0);
  EXPECT_EQ(m_dialog->GetItemCount(kTagListId), 0);
}

TEST_F(PageOneRecording, ARecordingThatCannotBeLearnedNeverGetsAnotherTagsTemplate) {
  support::WatchedFileSystem failing(m_machine.files);
  OpenOn(m_machine.GetWith(failing, m_machine.registry));
  m_dialog->Press(kRecordButtonId);
  ASSERT_EQ(GetEntries().size(), 1U);
  bool sawRefusal = false;
  for (std::size_t call = 1; call < 60 && !sawRefusal; ++call) {
    failing.FailCall(call, support::Failing::kOnce);
    const std::size_t before = GetEntries().size();
    m_dialog->Press(kRecordButtonId);
    const auto messages = GetMessages();
    if (!messages.empty() && messages.back() == u"Can't process this file") {
      sawRefusal = true;
      EXPECT_EQ(GetEntries().size(), before);
    }
    if (m_machine.process.GetExitCode()) {
      OpenOn(m_machine.GetWith(failing, m_machine.registry));
    }
  }
  EXPECT_TRUE(sawRefusal);
}

TEST_F(PageOneRecording, AFolderThatCannotBeMadeEndsTheProcess) {
  Open();
  ASSERT_TRUE(m_machine.files.PutFile(u"/x", {}));
  m_machine.files.SetCapacity(0);
  support::WatchedFileSystem failing(m_machine.files);
  OpenOn(m_machine.GetWith(failing, m_machine.registry));
  failing.FailCall(1, support::Failing::kFromThenOn, platform::FileError::kAccessDenied);
  m_dialog->Press(kRecordButtonId);
  EXPECT_EQ(GetMessages(), Texts{u"Can't create \\Program Files"});
  EXPECT_EQ(m_machine.process.GetExitCode(), 0);
  EXPECT_EQ(m_machine.ui.CountBeeps(), 0);
}

TEST_F(PageOneRecording, ALongTextIsCutToItsField) {
  m_machine.contacts.Remove(kAnn);
  m_machine.contacts.Remove(kBob);
  machine::SimulatedContact someone{.oid = 5, .firstName = std::u16string(120, u'a')};
  someone.Number(platform::PhoneKind::kMobile) = std::u16string(90, u'5');
  m_machine.contacts.Add(someone);
  Open().Press(kRecordButtonId);
  const std::u16string expected = std::u16string(120, u'a') + u" " + std::u16string(6, u'5');
  EXPECT_EQ(m_page->GetTags().GetRecord(0)->GetDisplayText(), expected);
  EXPECT_EQ(m_dialog->GetItemText(kTagListId, 0), expected);
  Open();
  EXPECT_EQ(m_page->GetTags().GetRecord(0)->GetDisplayText(), expected);
  EXPECT_EQ(m_dialog->GetItemText(kTagListId, 0), expected) << "As when it was recorded.";
}

TEST_F(PageOneRecording, ALongNameWithoutANumberIsCutInTheListAsWell) {
  m_machine.contacts.Add(
      {.oid = 5, .firstName = std::u16string(100, u'a'), .lastName = std::u16string(27, u'b')});
  PutTag(u"1", 5, u"Pager");
  Open();
  EXPECT_EQ(m_dialog->GetItemText(kTagListId, 0),
            std::u16string(100, u'a') + u" " + std::u16string(26, u'b'));
  EXPECT_EQ(m_page->GetTags().GetRecord(0)->GetDisplayText(), u"");
}

}  // namespace
