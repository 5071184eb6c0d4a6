#include "tests/support/headless_platform.h"

#include <gtest/gtest.h>

#include "audio/wave_header.h"
#include "tests/support/results.h"
#include "tests/support/watched_file_system.h"

namespace {

TEST(HeadlessPlatform, EachMemberIsTheBackEndOfThatName) {
  support::HeadlessPlatform headless(7);
  const platform::Platform platform = headless.Get();
  EXPECT_EQ(platform.clock.GetTickCount(), 7U);
  ASSERT_TRUE(platform.files.CreateFolder(u"\\a"));
  EXPECT_TRUE(headless.files.Find(u"\\a"));
  platform.process.End(3);
  EXPECT_EQ(headless.process.GetExitCode(), 3);
  platform.ui.ShowMessage(platform::ApplicationBox(u"text"));
  EXPECT_EQ(headless.ui.GetMessages().size(), 1U);
  EXPECT_NE(platform.threads.CreateManualResetEvent().value(), nullptr);
  EXPECT_EQ(platform.waveIn.GetDeviceCount(), 1U);
  EXPECT_TRUE(platform.waveOut.Open(audio::MonoPcm(16, 11025)));
  EXPECT_NE(platform.registry.CreateKey(u"a").value(), nullptr);
  EXPECT_TRUE(platform.contacts.Initialize());
}

TEST(HeadlessPlatform, OtherFilesMayTakeThePlaceOfItsOwn) {
  support::HeadlessPlatform headless;
  support::WatchedFileSystem failing(headless.files);
  failing.FailCall(1, support::Failing::kOnce, platform::FileError::kDiskFull);
  EXPECT_EQ(
      support::ErrorOf(headless.GetWith(failing, headless.registry).files.CreateFolder(u"\\a")),
      platform::FileError::kDiskFull);
}

}  // namespace
