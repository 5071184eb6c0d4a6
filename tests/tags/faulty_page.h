#pragma once

#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "tests/support/failing_contacts.h"
#include "tests/support/failing_wave.h"
#include "tests/support/watched_file_system.h"
#include "tests/support/watched_registry.h"
#include "tests/support/watched_threads.h"
#include "tests/tags/page_fixture.h"

/// A back end whose calls fail.
enum class FaultyPart : std::uint8_t { kFiles, kRegistry, kWaveIn, kWaveOut, kContacts, kThreads };

std::ostream& operator<<(std::ostream& stream, FaultyPart part);

/// The open Learning page with a tag of Ann's and one of Bob's, both learned, on a machine of its
/// own each of whose parts can fail.
class FaultyPage : public PageFixture {
 public:
  FaultyPage();
  ~FaultyPage() override;

  void FailCall(FaultyPart part, std::size_t call, support::Failing failing);
  /// Whether a failure was injected since the latest FailCall.
  [[nodiscard]] bool HasFailed(FaultyPart part) const;
  /// No call fails any more.
  void Mend();
  /// Puts a whole tag of a contact that is gone into the store.
  void AddStaleTag(std::u16string_view tag) { PutTag(tag, 999, u"Home"); }
  /// Opens the page again, as after its process ended.
  void Reopen();

  [[nodiscard]] headless::HeadlessDialog& Dialog() { return *m_dialog; }
  [[nodiscard]] const storage::TagTable& Table() const { return m_page->GetTags(); }
  [[nodiscard]] std::vector<std::u16string> Entries() { return GetEntries(); }
  [[nodiscard]] std::vector<std::u16string> Items() const {
    return m_dialog->GetItems(resources::kTagListId);
  }
  [[nodiscard]] bool HasWave(std::u16string_view tag) { return HasFile(storage::WavePath(tag)); }
  [[nodiscard]] bool HasTemplate(std::u16string_view tag) {
    return HasFile(storage::TemplatePath(tag));
  }
  [[nodiscard]] bool HasEnded() const { return m_machine.process.GetExitCode().has_value(); }
  [[nodiscard]] int PlayCode() const { return m_page->GetPlayCode(); }
  /// Of the messages since the latest FailCall.
  [[nodiscard]] std::vector<std::u16string> Messages() const;

  /// What the tag's files and values must be for the companion dialer to use it.
  void ExpectWholeTag(const std::u16string& tag, std::u16string_view contact,
                      std::u16string_view phoneType);
  /// That nothing is held open and nothing is left on the screen.
  void ExpectNothingHeld();

 private:
  void TestBody() override {}
  [[nodiscard]] platform::Platform GetFaultyPlatform();

  support::WatchedFileSystem m_files{m_machine.files};
  support::WatchedRegistry m_registry{m_machine.registry};
  std::map<FaultyPart, support::FaultPlan> m_plans;  ///< Of the other parts.
  support::FailingWaveIn m_waveIn{m_machine.waveIn, m_plans[FaultyPart::kWaveIn]};
  support::FailingWaveOut m_waveOut{m_machine.waveOut, m_plans[FaultyPart::kWaveOut]};
  support::FailingContacts m_contacts{m_machine.contacts, m_plans[FaultyPart::kContacts]};
  support::WatchedThreads m_threads{m_machine.simulation, m_plans[FaultyPart::kThreads]};
  std::size_t m_messagesBefore = 0;
};
