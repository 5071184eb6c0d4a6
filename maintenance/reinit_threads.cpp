#include "maintenance/reinit_threads.h"

#include <algorithm>
#include <string>

#include "resources/fault_strings.h"
#include "resources/strings.h"
#include "resources/translations.h"
#include "storage/device_paths.h"
#include "voicemath/template_file.h"

namespace maintenance {
namespace {

/// The dialog has appeared by then.
constexpr std::uint32_t kMillisecondsBeforeWork = 1000;

constexpr std::uint32_t kMillisecondsBeforeFile = 300;

/// The longest time that the dialog stays after the last recording while the bar has steps left.
constexpr std::uint32_t kLongestWaitForBar = 10'000;

/// Returns what the list shows for the tag of a recording. Returns the bare name if no tag has it.
std::u16string_view FindDisplayText(const storage::TagTable& tags, std::u16string_view tagName) {
  // The count may exceed the records that the table has.
  const std::int32_t count = std::min(tags.tagCount, storage::kMaxTags);
  for (std::int32_t i = 0; i < count; ++i) {
    const storage::TagRecord& record = *tags.GetRecord(i);
    if (record.GetTagName() == tagName && !record.GetDisplayText().empty()) {
      return record.GetDisplayText();
    }
  }
  return tagName;
}

}  // namespace

ReinitWorker::ReinitWorker(const platform::Platform& platform, language::Texts texts,
                           TagSession& page, ReinitProgress& progress)
    : m_platform(platform),
      m_texts(texts),
      m_page(page),
      m_progress(progress),
      m_store(platform.files, platform.registry) {}

void ReinitWorker::Run() {
  if (m_page.GetTags().tagCount == 0) {
    m_progress.End();
    return;
  }
  // Made on this thread, which alone uses it, and given back before the thread ends.
  m_mathematics = std::make_unique<voicemath::CVoiceMathematics>(m_platform.files, m_platform.ui);
  if (ProcessAll()) {
    // Two sets before one reset are one step of the bar, so the bar may still wait for a set.
    m_page.GetWorkerEvent()->Set();
    static_cast<void>(m_progress.GetDoneEvent().Wait(kLongestWaitForBar));
    m_progress.End();
  }
  m_mathematics.reset();
}

// Returns false in two cases: there is nothing to do and the process has been ended, or a template
// could not be written. After the second the rest would fail too, so the user closes the dialog.
bool ReinitWorker::ProcessAll() {
  const auto search = m_store.FindRecordings();
  if (!search) {
    ReportNoRecordings();
    return false;
  }
  for (auto found = (*search)->Next(); (!found || *found) && !m_progress.IsGone();
       found = (*search)->Next()) {
    // A step that fails costs one file at most, so it is reported and the walk goes on.
    if (!found) {
      ReportSearchFailure();
    } else if (!Recompute((*found)->name)) {
      ReportNotWritten((*found)->name);
      m_progress.LetUserClose();
      return false;
    } else {
      m_page.GetWorkerEvent()->Set();
    }
  }
  return true;
}

bool ReinitWorker::Recompute(std::u16string_view waveFile) {
  const std::u16string templatePath = storage::TemplatePathOfWaveFile(waveFile);
  m_platform.clock.Sleep(kMillisecondsBeforeFile);
  static_cast<void>(m_platform.files.Delete(templatePath));
  m_mathematics->m_wavePath = storage::PathIn(storage::kWaveFolder, waveFile);
  // The first trims the recording once more; the template of the second, over all of what is left,
  // is the one that is stored. Both are made for every recording.
  static_cast<void>(m_mathematics->LearnFile(0));
  if (m_mathematics->ProcessFile(0) != voicemath::kLearned) {
    // Its message has been shown. The slot still holds the template of the recording before, which
    // must not be stored for this one.
    return true;
  }
  if (!voicemath::WriteTemplateFile(m_platform.files, templatePath, *m_mathematics)) {
    // Half a template is worse than none.
    static_cast<void>(m_platform.files.Delete(templatePath));
    return false;
  }
  return true;
}

void ReinitWorker::ReportNoRecordings() {
  m_platform.ui.ShowMessage(
      {std::u16string(resources::kNoRecordings), platform::MessageCaption::kText,
       std::u16string(resources::kAppletName), platform::MessageStyle::kTopmost});
  m_platform.process.End(0);
  // Reached only if the process goes on without the applet.
  m_progress.End();
}

void ReinitWorker::ReportSearchFailure() {
  std::u16string text(m_texts(resources::kReinitSearchFailed));
  if (m_texts.IsLanguageFileLoaded()) {
    m_platform.ui.ShowMessage(platform::ApplicationBox(std::move(text)));
  } else {
    m_platform.ui.ShowMessage(
        {std::move(text), platform::MessageCaption::kNone, {}, platform::MessageStyle::kOk});
  }
}

void ReinitWorker::ReportNotWritten(std::u16string_view waveFile) {
  std::u16string text(m_texts(resources::kReinitTemplateNotCreated));
  text.append(u"\n\n")
      .append(FindDisplayText(m_page.GetTags(), storage::TagNameOfWaveFile(waveFile)))
      .append(u"\n\n")
      .append(resources::Say(resources::kReinitStopped));
  m_platform.ui.ShowMessage(platform::ApplicationBox(std::move(text)));
}

void ReinitMonitor::Run(std::int32_t tagCount) {
  if (tagCount == 0) {
    return;
  }
  m_platform.clock.Sleep(kMillisecondsBeforeWork);
  StartWorker();
  // The question comes after each reset and before each wait. A dialog that goes says so before it
  // sets the event a last time, so either the question or the wait sees it.
  for (std::int32_t i = 0; i < tagCount && !m_progress.IsGone(); ++i) {
    m_progress.Step();
    if (!WaitForRecording()) {
      break;
    }
  }
  m_progress.GetDoneEvent().Set();
}

void ReinitMonitor::StartWorker() {
  if (m_page == nullptr) {
    m_platform.ui.ShowMessage(
        {std::u16string(resources::kReinitWithoutPage), platform::MessageCaption::kText,
         std::u16string(resources::kAppletName), platform::MessageStyle::kTopmost});
    return;
  }
  if (platform::Thread* worker = m_page->GetReinitWorker()) {
    worker->Resume();
  }
}

bool ReinitMonitor::WaitForRecording() {
  if (m_page == nullptr || m_page->GetWorkerEvent() == nullptr) {
    return true;
  }
  platform::Event& event = *m_page->GetWorkerEvent();
  // No limit is needed: the worker sets the event after each recording and at its end, and a dialog
  // that goes sets it too.
  if (event.Wait(platform::kNoLimit) != platform::WaitResult::kSignalled) {
    return false;
  }
  event.Reset();
  return true;
}

}  // namespace maintenance
