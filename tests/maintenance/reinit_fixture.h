#pragma once

#include <functional>
#include <map>
#include <optional>

#include "backends/headless/headless_dialog.h"
#include "maintenance/reinit_progress_dialog.h"
#include "maintenance/reinit_threads.h"
#include "resources/dialogs.h"
#include "tests/maintenance/session_fixture.h"
#include "voicemath/template_file.h"

/// A base reinitialization as the page starts it, on the clock that does not wait.
class ReinitFixture : public SessionFixture {
 protected:
  using Story = std::function<void(headless::HeadlessDialog&)>;

  /// Returns the result of the dialog. Without a story the user waits for its end, and closes it
  /// if nothing else can end it. As with the page, it is the same dialog each time.
  int Reinitialize(const Story& story = {}) { return ReinitializeOn(m_machine.Get(), story); }
  /// The first time decides about the machine of the dialog.
  int ReinitializeOn(const platform::Platform& platform, const Story& story = {}) {
    if (!m_dialog) {
      m_dialog = std::make_unique<maintenance::ReinitProgressDialog>(platform, m_texts);
      m_dialog->set_Pageone_point(&m_session);
    }
    m_session.worker =
        m_machine.simulation
            .Start(
                [this, platform] {
                  maintenance::ReinitWorker(platform, m_texts, m_session, m_dialog->GetProgress())
                      .Run();
                  m_workerEnd = m_machine.simulation.GetElapsed();
                },
                platform::ThreadStart::kSuspended)
            .value();
    m_machine.ui.SetDialogStory(138, [&](headless::HeadlessDialog& window) {
      if (story) {
        story(window);
      }
      m_wasEndedByItself = window.WaitForEnd();
      m_bar = window.GetProgress(resources::kProgressBarId);
    });
    const int result = m_dialog->DoModal();
    m_session.worker.reset();
    return result;
  }

  /// `count` tags "1", "2"... with a recording each, and an old template.
  void PutTags(int count) {
    for (int i = 1; i <= count; ++i) {
      const std::u16string name = language::Decimal(i);
      PutTag(name, u"Tag " + name, {1, 2, 3, 4, 5});
      PutRecording(name, static_cast<std::uint32_t>(i));
    }
  }

  /// The template that the mathematics makes of a recording: trimmed first, then taken whole.
  support::Bytes Expected(std::uint32_t seed) {
    machine::MemoryFileSystem files;
    EXPECT_TRUE(files.PutFile(u"/a.wav", Recording(seed)));
    headless::HeadlessUi ui;
    voicemath::CVoiceMathematics mathematics(files, ui);
    mathematics.m_wavePath = u"/a.wav";
    EXPECT_EQ(mathematics.LearnFile(0), voicemath::kLearned);
    EXPECT_EQ(mathematics.ProcessFile(0), voicemath::kLearned);
    EXPECT_TRUE(voicemath::WriteTemplateFile(files, u"/a.st", mathematics));
    m_expectedWave = files.GetFile(u"/a.wav").value_or(support::Bytes());
    return files.GetFile(u"/a.st").value_or(support::Bytes());
  }
  [[nodiscard]] support::Bytes GetTemplate(std::u16string_view name) const {
    return GetFile(storage::TemplatePath(name));
  }

  std::unique_ptr<maintenance::ReinitProgressDialog> m_dialog;
  std::optional<headless::HeadlessDialog::Progress> m_bar;
  bool m_wasEndedByItself = false;
  std::uint64_t m_workerEnd = 0;
  support::Bytes m_expectedWave;  ///< Set by Expected.
};
