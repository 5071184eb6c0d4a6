// The Learning page makes a tag: from the press of Record to the line in the list.

#include <string>
#include <utility>

#include "audio/wave_header.h"
#include "language/texts.h"
#include "resources/dialogs.h"
#include "resources/strings.h"
#include "storage/device_paths.h"
#include "storage/folders.h"
#include "tags/page_one.h"
#include "tags/utterance_recording.h"
#include "voicemath/template_file.h"

namespace tags {
namespace {

constexpr std::uint32_t kBeepMilliseconds = 150;  ///< The user hears the cue to speak.
constexpr int kProgressSteps = 10;
constexpr std::uint32_t kProgressStepMilliseconds = 300;
constexpr std::uint32_t kLongestWait = 10'000;
constexpr int kProgressGap = 10;  ///< Between the Record button and the bar.

/// A progress bar that goes when the recording is over, whichever way it ended.
class RecordingProgress {
 public:
  explicit RecordingProgress(platform::DialogWindow& window) : m_window(window) {
    // Next to the button, as far as the box above reaches. Of the button's place on the screen the
    // device takes 26 for its title bar, and the page begins right under that.
    const platform::Rect button = m_window.GetControlRect(resources::kRecordButtonId);
    const platform::Rect combo = m_window.GetControlRect(resources::kNumberComboId);
    m_window.CreateProgressBar(
        resources::kProgressBarId,
        {.rect = {button.right + kProgressGap, button.top, combo.right, button.bottom}});
  }
  RecordingProgress(const RecordingProgress&) = delete;
  RecordingProgress& operator=(const RecordingProgress&) = delete;
  ~RecordingProgress() { m_window.DestroyProgressBar(resources::kProgressBarId); }

  void Step() { m_window.StepProgress(resources::kProgressBarId); }

 private:
  platform::DialogWindow& m_window;
};

}  // namespace

void Page_one::OnRecord() {
  RecordingProgress progress(GetWindow());
  if (!EnsureDataFolders() || !HasNumberChosen()) {
    return;
  }
  // The name is taken before the beep and the pause, so it is the time of the press.
  const std::u16string tagName = storage::FreeTagName(m_platform.files, m_platform.registry,
                                                      m_trash, m_platform.clock.GetTickCount());
  m_platform.ui.Beep(platform::Sound::kExclamation);
  m_platform.clock.Sleep(kBeepMilliseconds);
  // Asked after the beep, as ever.
  if (m_tags.tagCount >= storage::kMaxTags) {
    m_platform.ui.ShowMessage(
        platform::ApplicationBox(language::TagLimitMessage(m_texts, storage::kMaxTags)));
    return;
  }
  // Each later step asks for the success of the one before. So a failure leaves fewer parts, and
  // never a line without its tag.
  m_recordingPath = storage::WavePath(tagName);
  if (RecordUtterance([&progress] { progress.Step(); }) && StoreTag(tagName)) {
    ListNewTag(tagName);
  }
}

bool Page_one::EnsureDataFolders() {
  storage::CreateDataFolders(m_platform.files);
  const storage::FolderRule rule(m_platform.files, m_platform.ui, m_platform.process, m_texts);
  return rule.EnsureWaveFolder() && rule.EnsureTemplateFolder();
}

bool Page_one::HasNumberChosen() {
  if (m_picker.GetPhoneTypeWord().empty()) {
    m_picker.ChooseNumber(GetWindow().GetItemText(resources::kNumberComboId, 0));
  }
  const std::u16string& word = m_picker.GetPhoneTypeWord();
  if (m_picker.GetOid() == 0 || word.empty() || !IsWordLetter(word.front())) {
    ShowBox(resources::kNothingChosen);
    return false;
  }
  return true;
}

void Page_one::OpenAudio() {
  m_audio = std::make_shared<audio::WaveDevice>(m_platform);
  m_audio->SetFormat(audio::kRecordingBits, audio::kRecordingRate);
}

// The page does not ask how the recording goes. It steps its bar ten times in three seconds, as
// long as a recording takes, and then waits for the worker. A worker that is late keeps the device
// and all it uses, and the page goes on.
bool Page_one::RecordUtterance(const std::function<void()>& step) {
  // Page and worker share the recording, so it lives until the later of the two is done with it.
  const auto recording = std::make_shared<UtteranceRecording>(m_platform, m_audio, m_recordingPath);
  auto worker =
      m_platform.threads.Start([recording] { recording->Run(); }, platform::ThreadStart::kRunning);
  // If there is no thread, the bar runs all the same. The mathematics then finds no recording and
  // says so.
  for (int i = 0; i < kProgressSteps; ++i) {
    m_platform.clock.Sleep(kProgressStepMilliseconds);
    step();
  }
  // A recording that takes longer is no error: what the file holds by now is taken.
  if (worker && (*worker)->Wait(kLongestWait) == platform::WaitResult::kTimedOut) {
    LeaveBehind(std::move(*worker));
  }
  m_recordCode = recording->GetCode();
  m_learnError = recording->GetFileError();
  return !recording->HasEndedProcess();
}

void Page_one::LeaveBehind(std::unique_ptr<platform::Thread> worker) {
  std::erase_if(m_lateWorkers, [](const std::unique_ptr<platform::Thread>& late) {
    return late->Wait(0) == platform::WaitResult::kSignalled;
  });
  m_lateWorkers.push_back(std::move(worker));
  OpenAudio();
}

void Page_one::EndLateWorkers() {
  for (const auto& worker : m_lateWorkers) {
    if (worker->Wait(kLongestWait) == platform::WaitResult::kTimedOut) {
      // Its sound device hangs. It cannot be left running in a library that goes, nor waited for
      // without limit after the window has closed; so all of it ends here.
      m_platform.process.End(0);
      break;
    }
  }
  // A host that outlives the applet waits for the rest: they use what the host gave the page.
  m_lateWorkers.clear();
}

// The parts of a tag in their order: the recording is there already and is cut to the name, then
// the template, then the entry. Only the entry makes them a tag.
bool Page_one::StoreTag(std::u16string_view tagName) {
  if (m_onRecorded) {
    m_onRecorded(m_recordingPath);
  }
  m_mathematics.m_wavePath = m_recordingPath;
  if (m_mathematics.LearnFile(0) != voicemath::kLearned) {
    m_learnError = m_mathematics.m_trimError;
    // Its message has been shown. Slot 0 still holds the tag before, whose template must not be
    // stored for this one.
    return false;
  }
  const auto written =
      voicemath::WriteTemplateFile(m_platform.files, storage::TemplatePath(tagName), *this);
  if (!written) {
    if (written.error() == voicemath::TemplateFileError::kDiskFull) {
      m_learnError = platform::FileError::kDiskFull;
    }
    ShowBox(resources::kTemplateNotCreated);
    return false;
  }
  const auto entered = m_store.WriteEntry(tagName, static_cast<std::int32_t>(m_picker.GetOid()),
                                          m_picker.GetPhoneTypeWord());
  if (!entered) {
    // Without its entry the tag does not exist; what is wrong is the same disk or folder.
    ShowBox(resources::kTemplateNotCreated);
    return false;
  }
  return true;
}

void Page_one::ListNewTag(std::u16string_view tagName) {
  // There is a record for this row, since OnRecord has asked for the limit.
  const std::int32_t row = m_tags.tagCount;
  storage::TagRecord* record = m_tags.GetRecord(row);
  record->SetTagName(tagName);
  ++m_tags.tagCount;
  const ReadTagText tag = m_picker.ReadForTag();
  if (!tag) {
    // The tag is stored and counted; it is listed when the page opens next.
    Report(tag.error());
    return;
  }
  record->SetDisplayText(tag->text);
  AppendToList(record->GetDisplayText(), tagName, row);
  m_playCode = m_audio->Play(m_recordingPath);
  platform::DialogWindow& window = GetWindow();
  if (window.GetItemCount(resources::kTagListId) > 0) {
    window.Enable(resources::kDeleteAllButtonId, true);
  }
  if (m_tags.tagCount > 1) {
    window.Enable(resources::kTestButtonId, true);
  }
  ShowCount();
}

}  // namespace tags
