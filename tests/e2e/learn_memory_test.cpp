#include <gtest/gtest.h>

#include <string>

#include "tests/support/run_program.h"
#include "tests/support/temp_folder.h"

namespace {

/// What a handheld spares for it.
constexpr long kMostKiB = 12 * 1024;

TEST(LearnMemory, ATagIsLearnedWithinTwelveMebibytes) {
  const support::TempFolder folder;
  const std::string root = folder.Path() / "root";
  const std::string heard = folder.Path() / "heard.wav";
  const auto run = support::RunProgram(
      {VOXTREL_PROGRAM, "--root", root, "--contacts", VOXTREL_SAMPLES_DIR "/contacts.vcf",
       "--microphone", VOXTREL_SAMPLES_DIR "/anna_1.wav", "--speaker", heard, "tags", "learn",
       "--contact", "anna"},
      {"LC_ALL=C.UTF-8"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  RecordProperty("peak_kib", std::to_string(run.peakKiB));
  EXPECT_GT(run.peakKiB, 0);
  EXPECT_LT(run.peakKiB, kMostKiB);
}

}  // namespace
