#include "backends/pulse/capture_buffer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <thread>
#include <vector>

namespace {

using pulse::CaptureBuffer;
using testing::ElementsAreArray;

constexpr std::array<std::byte, 4> kSound{std::byte{1}, std::byte{2}, std::byte{3}, std::byte{4}};

std::vector<std::byte> Content(const CaptureBuffer& buffer) {
  std::vector<std::byte> bytes(100);
  bytes.resize(buffer.CopyTo(bytes));
  return bytes;
}

TEST(CaptureBuffer, KeepsNothingBeforeTheStart) {
  CaptureBuffer buffer;
  buffer.Append(kSound);
  ASSERT_TRUE(buffer.Prepare(10));
  buffer.Append(kSound);
  buffer.AppendSilence(2);
  EXPECT_TRUE(Content(buffer).empty());
}

TEST(CaptureBuffer, KeepsNothingWithoutRoom) {
  CaptureBuffer buffer;
  buffer.Start();
  buffer.Append(kSound);
  buffer.AppendSilence(2);
  EXPECT_TRUE(Content(buffer).empty());
}

TEST(CaptureBuffer, HoleIsSilenceOfItsLength) {
  CaptureBuffer buffer;
  ASSERT_TRUE(buffer.Prepare(10));
  buffer.Start();
  buffer.Append(kSound);
  buffer.AppendSilence(2);
  buffer.Append(kSound);
  const std::vector<std::byte> expected{kSound[0],    kSound[1], kSound[2], kSound[3], std::byte{0},
                                        std::byte{0}, kSound[0], kSound[1], kSound[2], kSound[3]};
  EXPECT_THAT(Content(buffer), ElementsAreArray(expected));
}

TEST(CaptureBuffer, KeepsTheFirstBytesThatFit) {
  CaptureBuffer buffer;
  ASSERT_TRUE(buffer.Prepare(6));
  buffer.Start();
  buffer.Append(kSound);
  buffer.Append(kSound);
  buffer.AppendSilence(5);
  const std::vector<std::byte> expected{kSound[0], kSound[1], kSound[2],
                                        kSound[3], kSound[0], kSound[1]};
  EXPECT_THAT(Content(buffer), ElementsAreArray(expected));
}

TEST(CaptureBuffer, CopiesNoMoreThanTheReceiverHolds) {
  CaptureBuffer buffer;
  ASSERT_TRUE(buffer.Prepare(10));
  buffer.Start();
  buffer.Append(kSound);
  std::array<std::byte, 2> receiver{};
  EXPECT_EQ(buffer.CopyTo(receiver), 2U);
  EXPECT_THAT(receiver, testing::ElementsAre(kSound[0], kSound[1]));
}

TEST(CaptureBuffer, ClearedBufferKeepsNothing) {
  CaptureBuffer buffer;
  ASSERT_TRUE(buffer.Prepare(10));
  buffer.Start();
  buffer.Append(kSound);
  buffer.Clear();
  buffer.Append(kSound);
  EXPECT_TRUE(Content(buffer).empty());
}

TEST(CaptureBuffer, PreparedAnewItIsEmptyAndNotStarted) {
  CaptureBuffer buffer;
  ASSERT_TRUE(buffer.Prepare(10));
  buffer.Start();
  buffer.Append(kSound);
  ASSERT_TRUE(buffer.Prepare(10));
  buffer.Append(kSound);
  EXPECT_TRUE(Content(buffer).empty());
}

TEST(CaptureBuffer, LossOutlastsEveryRecording) {
  CaptureBuffer buffer;
  EXPECT_FALSE(buffer.IsLost());
  buffer.Lose();
  buffer.Clear();
  ASSERT_TRUE(buffer.Prepare(10));
  EXPECT_TRUE(buffer.IsLost());
}

TEST(CaptureBuffer, TakesSoundFromOneThreadWhileAnotherCopies) {
  CaptureBuffer buffer;
  ASSERT_TRUE(buffer.Prepare(40));
  buffer.Start();
  {
    const std::jthread loop([&] {
      for (int i = 0; i < 10; ++i) buffer.Append(kSound);
      buffer.Lose();
    });
    while (!buffer.IsLost()) {
      const auto content = Content(buffer);
      ASSERT_EQ(content.size() % kSound.size(), 0U);
    }
  }
  EXPECT_EQ(Content(buffer).size(), 40U);
}

}  // namespace
