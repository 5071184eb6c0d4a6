#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/e2e/pulse_server.h"
#include "tests/e2e/sound_session.h"
#include "tests/support/run_program.h"

namespace {

/// What a handheld spares for it.
constexpr long kMostKiB = long{MOST_MEBIBYTES} * 1024;

class LearnMemory : public testing::Test {
 protected:
  /// Learns a sample name and gives the most memory that was resident meanwhile.
  [[nodiscard]] long Learn(const std::vector<std::string>& options) const {
    std::vector<std::string> all{VOXTREL_PROGRAM,
                                 "--root",
                                 m_session.Folder() / "root",
                                 "--contacts",
                                 VOXTREL_SAMPLES_DIR "/contacts.vcf",
                                 "--microphone",
                                 VOXTREL_SAMPLES_DIR "/anna_1.wav"};
    all.insert(all.end(), options.begin(), options.end());
    all.insert(all.end(), {"tags", "learn", "--contact", "anna"});
    const auto run = support::RunProgram(all, {"LC_ALL=C.UTF-8"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    RecordProperty("peak_kib", std::to_string(run.peakKiB));
    return run.peakKiB;
  }

  e2e::SoundSession m_session;
};

TEST_F(LearnMemory, ATagIsLearnedFromAFileIntoAFile) {
  EXPECT_LT(Learn({"--speaker", m_session.Folder() / "heard.wav"}), kMostKiB);
}

TEST_F(LearnMemory, ATagIsLearnedFromAFileWithoutASoundServer) { EXPECT_LT(Learn({}), kMostKiB); }

TEST_F(LearnMemory, ATagIsLearnedFromAFileAndHeardFromTheLoudspeaker) {
  const auto server = e2e::PulseServer::Start(m_session, {.input = e2e::PulseInput::kMonitorOnly});
  ASSERT_TRUE(server);
  EXPECT_LT(Learn({}), kMostKiB);
}

}  // namespace
