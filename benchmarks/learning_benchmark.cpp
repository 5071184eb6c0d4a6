// Processor time from the end of the recording to the line in the list, with real files, settings
// and contacts, next to the mathematics of the same recording alone. The recordings take their
// three seconds each.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

#include "backends/text/utf.h"
#include "benchmarks/full_device.h"
#include "benchmarks/moments.h"
#include "framework/dialog.h"
#include "host/cli/session.h"
#include "host/session/page_run.h"
#include "resources/dialogs.h"
#include "resources/strings.h"
#include "tags/page_one.h"
#include "tests/support/temp_folder.h"
#include "voicemath/voice_mathematics.h"

namespace {

constexpr int kRounds = 7;

double ProcessorTime() { return benchmarks::Milliseconds(CLOCK_PROCESS_CPUTIME_ID); }

/// An input that remembers when it was closed.
class MarkedDevice final : public platform::WaveInDevice {
 public:
  MarkedDevice(std::unique_ptr<platform::WaveInDevice> device, double& closed)
      : m_device(std::move(device)), m_closed(closed) {}

  platform::WaveResult Prepare(platform::WaveHeader& header) override {
    return m_device->Prepare(header);
  }
  platform::WaveResult AddBuffer(platform::WaveHeader& header) override {
    return m_device->AddBuffer(header);
  }
  platform::WaveResult Start() override { return m_device->Start(); }
  platform::WaveResult Unprepare(platform::WaveHeader& header) override {
    return m_device->Unprepare(header);
  }
  platform::WaveResult Reset() override { return m_device->Reset(); }
  platform::WaveResult Close() override {
    m_closed = ProcessorTime();
    return m_device->Close();
  }

 private:
  std::unique_ptr<platform::WaveInDevice> m_device;
  double& m_closed;
};

class MarkedWaveIn final : public platform::WaveIn {
 public:
  explicit MarkedWaveIn(platform::WaveIn& waveIn) : m_waveIn(waveIn) {}
  std::uint32_t GetDeviceCount() override { return m_waveIn.GetDeviceCount(); }
  platform::Result<std::unique_ptr<platform::WaveInDevice>, platform::WaveResult> Open(
      const platform::WaveFormat& format) override {
    auto opened = m_waveIn.Open(format);
    if (opened) {
      opened = std::make_unique<MarkedDevice>(std::move(*opened), closed);
    }
    return opened;
  }

  double closed = 0;

 private:
  platform::WaveIn& m_waveIn;
};

/// No output; the name is to be heard right after its line was listed.
class MarkedWaveOut final : public platform::WaveOut {
 public:
  platform::Result<std::unique_ptr<platform::WaveOutDevice>, platform::WaveResult> Open(
      const platform::WaveFormat& /*format*/) override {
    opened = ProcessorTime();
    return platform::Failure(platform::WaveResult::kNoDevice);
  }

  double opened = 0;
};

/// Learns one tag after the other on a page of its own; what each took.
std::vector<double> Learn(cli::Session& session) {
  const platform::Platform real = session.GetPlatform();
  MarkedWaveIn waveIn(real.waveIn);
  MarkedWaveOut waveOut;
  const language::Texts texts = session::LoadTexts(session);
  tags::Page_one page({real.files, waveIn, real.clock, real.threads, real.process, real.ui,
                       real.registry, real.contacts, waveOut, real.shell},
                      texts);
  framework::CPropertySheet sheet(texts(resources::kSheetCaption), session.GetUi());
  sheet.AddPage(page);
  std::vector<double> costs;
  session.GetUi().SetSheetStory([&](headless::HeadlessSheet& window) {
    headless::HeadlessDialog& dialog = *window.ShowPage(0);
    for (int i = 0; i < kRounds; ++i) {
      const int before = dialog.GetItemCount(resources::kTagListId);
      dialog.Press(resources::kRecordButtonId);
      if (dialog.GetItemCount(resources::kTagListId) != before + 1) {
        std::fputs("no tag was learned\n", stderr);
        std::exit(1);
      }
      costs.push_back(waveOut.opened - waveIn.closed);
    }
  });
  sheet.DoModal();
  return costs;
}

/// The same recording, untrimmed each time: its speech found, the file trimmed, the template
/// computed.
std::vector<double> LearnFilesOnly(cli::Session& session, const std::filesystem::path& folder) {
  const std::filesystem::path copy = folder / "copy.wav";
  std::vector<double> costs;
  for (int i = 0; i < kRounds; ++i) {
    std::filesystem::copy_file(VOXTREL_SAMPLE, copy,
                               std::filesystem::copy_options::overwrite_existing);
    voicemath::CVoiceMathematics mathematics(session.GetFiles(), session.GetUi());
    mathematics.m_wavePath = machine::Backends::ToSystemPath(copy.string());
    const double begin = ProcessorTime();
    if (mathematics.LearnFile(0) != voicemath::kLearned) {
      std::fputs("the sample was not learned\n", stderr);
      std::exit(1);
    }
    costs.push_back(ProcessorTime() - begin);
  }
  return costs;
}

}  // namespace

int main() {
  const support::TempFolder folder;
  const benchmarks::FullDevice device;
  cli::Options options;
  options.machine.root = folder.Path() / "root";
  options.machine.contacts = device.GetFile();
  options.machine.microphone = VOXTREL_SAMPLE;
  cli::Session session(options);
  static_cast<void>(session.GetRegistry());  // Makes the root folder.
  const double whole = benchmarks::Median(Learn(session));
  const double mathematics = benchmarks::Median(LearnFilesOnly(session, folder.Path()));
  std::printf("%-44s %12s %8s\n", "a tag, 1,000 contacts", "processor ms", "ratio");
  std::printf("%-44s %12.2f\n", "its recording trimmed, its template computed", mathematics);
  std::printf("%-44s %12.2f %7.2fx\n", "end of the recording to the line in the list", whole,
              whole / mathematics);
  return 0;
}
