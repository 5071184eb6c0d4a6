#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "audio/wave_device.h"
#include "framework/dialog.h"
#include "language/texts.h"
#include "maintenance/maintenance_dialog.h"
#include "maintenance/reinit_progress_dialog.h"
#include "maintenance/test_dialog.h"
#include "platform/platform.h"
#include "storage/deletion.h"
#include "storage/tag_record.h"
#include "storage/tag_store.h"
#include "storage/tag_trash.h"
#include "tags/contact_picker.h"
#include "voicemath/voice_mathematics.h"

namespace tags {

/// The holder of the mutex of this name is the one open Learning page of this device.
inline constexpr std::u16string_view kInstanceMutex = u"ZedraD";

/// The Learning page: the user picks a contact and one of its numbers, presses Record and says the
/// name, and has a voice tag; listens to tags, and deletes them.
///
/// Owns what all pages share for the life of the sheet. Lives on the user-interface thread. While a
/// recording runs its worker has the audio device, and this thread does not touch it; a worker that
/// takes too long keeps it, and the page goes on with a new one.
class Page_one : public framework::CPropertyPage, private maintenance::TagSession {
 public:
  /// Makes the install folders. `platform` is kept as a copy; what it refers to outlives the page.
  Page_one(const platform::Platform& platform, const language::Texts& texts);
  ~Page_one() override;

  [[nodiscard]] const framework::RuntimeClass& GetRuntimeClass() const override;
  /// Forwards to the speech mathematics, which writes or reads a template.
  void Serialize(framework::CArchive& archive) override;

  bool OnInitDialog() override;
  void OnCommand(int id, platform::CommandEvent event) override;

  [[nodiscard]] const storage::TagTable& GetTags() const override { return m_tags; }
  /// Returns the name of the tag that a line of the list stands for, which is the tag that Play and
  /// Delete act on. Returns an empty text if there is no such line.
  [[nodiscard]] std::u16string_view GetTagOfLine(std::int32_t line) const;

  [[nodiscard]] const ContactPicker& GetPicker() const { return m_picker; }
  [[nodiscard]] const maintenance::TestDialog& GetTestDialog() const { return m_testDialog; }

  /// Returns whether this page has the tags, and no other page of the device.
  [[nodiscard]] bool IsOnlyInstance() const { return m_onlyInstance != nullptr; }
  /// Returns whether the page opened to its end, with its contacts and its tags.
  [[nodiscard]] bool IsSetUp() const { return m_isSetUp; }

  /// Returns what the player answered last. The user is not shown it.
  [[nodiscard]] int GetPlayCode() const { return m_playCode; }

  /// Returns the recorder's last answer. A message has shown it as a number.
  [[nodiscard]] int GetRecordCode() const { return m_recordCode; }
  /// Returns why a file of the last recording was not written. Returns nothing if that was not the
  /// reason.
  [[nodiscard]] std::optional<platform::FileError> GetLearnError() const { return m_learnError; }

  /// From now on `listener` is called with the path of each recording, whole as it was made, before
  /// the speech is cut out of it.
  void OnRecorded(std::function<void(const std::u16string& path)> listener) {
    m_onRecorded = std::move(listener);
  }

 private:
  /// One line of the list. Its index is not that of its row in the tag table: the rows are counted
  /// from the registry, and a tag whose contact has gone keeps its row and has no line.
  struct ListedTag {
    std::u16string tagName;
    std::int32_t row = 0;   ///< Of the tag table.
    bool isCounted = true;  ///< Whether the count still holds it, which it leaves before its entry.
  };

  // Opening.
  [[nodiscard]] bool BecomeOnlyInstance();
  /// Fills the page with contacts, tags and texts under the wait cursor. Returns false if the
  /// contacts cannot be read: their message has been shown.
  [[nodiscard]] bool Fill();
  [[nodiscard]] bool OpenContacts();
  void EnableButtons();
  void TranslateControls();
  void ShowCount();

  // Contacts.
  void Report(const ContactMessage& message);
  void OnSelchangeComboName();
  void OnSelchangeComboNumber();

  // Recording.
  void OnRecord();
  [[nodiscard]] bool EnsureDataFolders();
  [[nodiscard]] bool HasNumberChosen();
  [[nodiscard]] bool RecordUtterance(const std::function<void()>& step);
  void OpenAudio();
  void LeaveBehind(std::unique_ptr<platform::Thread> worker);
  void EndLateWorkers();
  [[nodiscard]] bool StoreTag(std::u16string_view tagName);
  void ListNewTag(std::u16string_view tagName);

  // What looks after the tags.
  void OnTest();
  void OnCheckVersion();
  [[nodiscard]] voicemath::CVoiceMathematics& GetMathematics() override { return m_mathematics; }
  [[nodiscard]] platform::Event* GetWorkerEvent() override { return m_workerEvent.get(); }
  [[nodiscard]] platform::Thread* GetReinitWorker() override { return m_reinitWorker.get(); }

  // List and deletion.
  void LoadTagList();
  /// What became of an entry of the registry.
  enum class LoadedTag : std::uint8_t {
    kListed,
    kDeleted,  ///< Its contact has gone. The next entry has its index now.
    kPassedOver,
    kFailed,  ///< Its message ended the load.
  };
  [[nodiscard]] LoadedTag LoadTag(std::u16string_view tagName, std::int32_t& slot);
  [[nodiscard]] LoadedTag DeleteStaleTag(std::u16string_view tagName);
  void AppendToList(std::u16string_view text, std::u16string_view tagName, std::int32_t row);
  void OnPlay();
  void OnDelete();
  /// Returns false after the message that says what failed.
  [[nodiscard]] bool DeleteTagOfLine(std::size_t line);
  void DropRecord(std::size_t line);
  void OnDeleteAll();
  [[nodiscard]] std::u16string GetDeleteAllQuestion();
  void ReportDeletion(storage::DeletionProblem problem);
  [[nodiscard]] bool Confirm(std::u16string_view question);
  void ShowBox(const resources::Text& text);
  void ShowBox(std::u16string_view text);

  platform::Platform m_platform;
  language::Texts m_texts;
  storage::TagStore m_store;
  storage::TagTrash m_trash;
  std::unique_ptr<platform::NamedMutex> m_onlyInstance;
  std::unique_ptr<platform::Event> m_workerEvent;
  ContactPicker m_picker;
  storage::TagTable m_tags;
  voicemath::CVoiceMathematics m_mathematics;
  maintenance::ReinitProgressDialog m_reinitDialog;
  maintenance::TestDialog m_testDialog;
  std::unique_ptr<platform::Thread> m_reinitWorker;  ///< While its dialog runs.
  std::shared_ptr<audio::WaveDevice> m_audio;        ///< Shared with the worker of a recording.
  std::u16string m_recordingPath;
  std::function<void(const std::u16string& path)> m_onRecorded;  ///< Can be null.
  std::u16string m_listText;                                     ///< Of the tag listed last.
  std::vector<ListedTag> m_lines;
  std::unique_ptr<storage::Deletion> m_cleanUp;  ///< While the list is loaded.
  /// Recordings that were not waited for any longer. They use nothing of the page's.
  std::vector<std::unique_ptr<platform::Thread>> m_lateWorkers;
  int m_playCode = 0;
  int m_recordCode = 0;
  std::optional<platform::FileError> m_learnError;
  bool m_isSetUp = false;
};

}  // namespace tags
