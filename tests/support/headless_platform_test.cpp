#include "tests/support/headless_platform.h"

#include <gtest/gtest.h>

#include "tests/support/failing_file_system.h"

namespace {

class NoWaveIn final : public platform::WaveIn {
 public:
  std::uint32_t GetDeviceCount() override { return 0; }
  platform::OpenedWaveIn Open(const platform::WaveFormat&) override {
    return {nullptr, platform::WaveResult::kNoDevice};
  }
};

TEST(HeadlessPlatform, EachMemberIsTheBackEndOfThatName) {
  NoWaveIn waveIn;
  support::HeadlessPlatform headless(waveIn, 7);
  const platform::Platform platform = headless.Get();
  EXPECT_EQ(platform.clock.GetTickCount(), 7U);
  ASSERT_EQ(platform.files.CreateFolder(u"\\a"), platform::FileError::kNone);
  EXPECT_EQ(headless.files.FindFirst(u"\\a").error, platform::FileError::kNone);
  platform.process.End(3);
  EXPECT_EQ(headless.process.GetExitCode(), 3);
  platform.ui.ShowMessage(platform::ApplicationBox(u"text"));
  EXPECT_EQ(headless.ui.GetMessages().size(), 1U);
  EXPECT_NE(platform.threads.CreateManualResetEvent(), nullptr);
  EXPECT_EQ(platform.waveIn.GetDeviceCount(), 0U);
}

TEST(HeadlessPlatform, OtherFilesMayTakeThePlaceOfItsOwn) {
  NoWaveIn waveIn;
  support::HeadlessPlatform headless(waveIn);
  support::FailingFileSystem failing(headless.files);
  failing.FailCall(1, support::Failing::kOnce, platform::FileError::kDiskFull);
  EXPECT_EQ(headless.GetWith(failing).files.CreateFolder(u"\\a"), platform::FileError::kDiskFull);
}

}  // namespace
