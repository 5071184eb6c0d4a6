#include "tests/tags/faulty_page.h"

#include <cstddef>
#include <ostream>
#include <span>

#include "platform/file_system.h"
#include "tests/support/results.h"
#include "voicemath/template_file.h"

using support::Failing;

std::ostream& operator<<(std::ostream& stream, FaultyPart part) {
  constexpr const char* kNames[] = {"Files",   "Registry", "WaveIn",
                                    "WaveOut", "Contacts", "Threads"};
  return stream << kNames[static_cast<std::size_t>(part)];
}

FaultyPage::FaultyPage() {
  // Less than half a second arrives, which the recorder keeps after asking twice: short, so that
  // every position can be tried.
  m_machine.waveIn.SetScript(
      {.sound = support::BytesOf(
           support::Mixed(support::Noise(5000, 20, 1), 1200, support::SpeechLike(2600, 9000, 2))),
       .arrivals = {10000}});
  Open();
  for (const int contact : {0, 1}) {
    m_dialog->Choose(resources::kContactComboId, contact);
    m_dialog->Press(resources::kRecordButtonId);
  }
  EXPECT_EQ(GetEntries().size(), 2U);
  Reopen();
}

// What the page refers to goes before the page's own fixture does.
FaultyPage::~FaultyPage() {
  m_dialog.reset();
  m_page.reset();
}

platform::Platform FaultyPage::GetFaultyPlatform() {
  return {m_files,      m_waveIn,   m_machine.simulation, m_threads, m_machine.process,
          m_machine.ui, m_registry, m_contacts,           m_waveOut, m_machine.shell};
}

void FaultyPage::FailCall(FaultyPart part, std::size_t call, Failing failing) {
  m_messagesBefore = GetMessages().size();
  if (part == FaultyPart::kFiles) {
    m_files.FailCall(call, failing);
  } else if (part == FaultyPart::kRegistry) {
    m_registry.FailCall(call, failing);
  } else {
    m_plans[part].FailCall(call, failing);
  }
}

bool FaultyPage::HasFailed(FaultyPart part) const {
  if (part == FaultyPart::kFiles) {
    return m_files.HasFailed();
  }
  return part == FaultyPart::kRegistry ? m_registry.HasFailed() : m_plans.at(part).HasFailed();
}

void FaultyPage::Mend() {
  for (const FaultyPart part :
       {FaultyPart::kFiles, FaultyPart::kRegistry, FaultyPart::kWaveIn, FaultyPart::kWaveOut,
        FaultyPart::kContacts, FaultyPart::kThreads}) {
    FailCall(part, 0, Failing::kOnce);
  }
}

void FaultyPage::Reopen() { OpenOn(GetFaultyPlatform()); }

std::vector<std::u16string> FaultyPage::Messages() const {
  std::vector<std::u16string> messages = GetMessages();
  messages.erase(messages.begin(),
                 messages.begin() + static_cast<std::ptrdiff_t>(m_messagesBefore));
  return messages;
}

void FaultyPage::ExpectWholeTag(const std::u16string& tag, std::u16string_view contact,
                                std::u16string_view phoneType) {
  const auto wave = m_machine.files.GetFile(storage::WavePath(tag));
  ASSERT_TRUE(wave);
  ASSERT_GT(wave->size(), 44U);
  EXPECT_EQ(platform::LoadLittleEndian32(std::span(*wave).subspan(4).first<4>()), wave->size());
  voicemath::CVoiceMathematics mathematics(m_machine.files, m_machine.ui);
  EXPECT_TRUE(
      voicemath::ReadTemplateFile(m_machine.files, storage::TemplatePath(tag), mathematics));
  const storage::TagStore store(m_machine.files, m_machine.registry);
  const auto entry = store.ReadEntry(tag);
  ASSERT_EQ(support::ErrorOf(entry), std::nullopt);
  EXPECT_EQ(entry->oid, storage::ParseOid(contact));
  EXPECT_EQ(entry->phoneType, phoneType);
}

void FaultyPage::ExpectNothingHeld() {
  EXPECT_EQ(m_machine.files.CountOpenHandles(), 0U);
  EXPECT_EQ(m_machine.waveIn.OpenDevices(), 0U);
  EXPECT_EQ(m_machine.waveOut.CountOpenDevices(), 0);
  EXPECT_FALSE(m_dialog->GetProgress(resources::kProgressBarId));
  EXPECT_EQ(m_machine.ui.GetCursor(), platform::Cursor::kNormal);
}
