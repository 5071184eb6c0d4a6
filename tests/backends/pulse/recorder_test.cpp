#include "backends/pulse/recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <thread>
#include <vector>

namespace {

using platform::WaveResult;
using testing::ElementsAreArray;

using Bytes = std::vector<std::byte>;

constexpr std::array<std::byte, 4> kSound{std::byte{1}, std::byte{2}, std::byte{3}, std::byte{4}};

/// A recorder without a server: the test is the loop's thread and the user.
class Recorder : public testing::Test {
 protected:
  /// Queues a buffer of `length` bytes.
  void Queue(std::uint32_t length) {
    m_memory.assign(length, std::byte{99});
    m_header = {.data = m_memory.data(), .bufferLength = length};
    ASSERT_EQ(m_recorder.Prepare(m_header), WaveResult::kOk);
    ASSERT_EQ(m_recorder.AddBuffer(m_header), WaveResult::kOk);
  }
  void Begin(std::uint32_t length) {
    Queue(length);
    ASSERT_EQ(m_recorder.Start(), WaveResult::kOk);
  }

  /// What the buffer holds so far.
  [[nodiscard]] Bytes Content() {
    static_cast<void>(m_recorder.Unprepare(m_header));
    return {m_memory.begin(), m_memory.begin() + m_header.bytesRecorded};
  }

  pulse::Recorder m_recorder;
  Bytes m_memory;
  platform::WaveHeader m_header;
};

TEST_F(Recorder, KeepsNothingBeforeTheStart) {
  m_recorder.Take(kSound);
  Queue(10);
  m_recorder.Take(kSound);
  m_recorder.TakeSilence(2);
  EXPECT_TRUE(Content().empty());
}

TEST_F(Recorder, WithoutABufferDoesNotStartAndKeepsNothing) {
  EXPECT_EQ(m_recorder.Start(), WaveResult::kNotPrepared);
  m_recorder.Take(kSound);
  m_recorder.TakeSilence(2);
  Begin(10);
  EXPECT_TRUE(Content().empty());
}

TEST_F(Recorder, HoleIsSilenceOfItsLength) {
  Begin(10);
  m_recorder.Take(kSound);
  m_recorder.TakeSilence(2);
  m_recorder.Take(kSound);
  const Bytes expected{kSound[0],    kSound[1], kSound[2], kSound[3], std::byte{0},
                       std::byte{0}, kSound[0], kSound[1], kSound[2], kSound[3]};
  EXPECT_THAT(Content(), ElementsAreArray(expected));
}

TEST_F(Recorder, KeepsTheFirstBytesThatFit) {
  Begin(6);
  m_recorder.Take(kSound);
  m_recorder.Take(kSound);
  m_recorder.TakeSilence(5);
  const Bytes expected{kSound[0], kSound[1], kSound[2], kSound[3], kSound[0], kSound[1]};
  EXPECT_THAT(Content(), ElementsAreArray(expected));
}

TEST_F(Recorder, CopiesNoMoreThanTheReceiverHolds) {
  Begin(10);
  m_recorder.Take(kSound);
  m_header.bufferLength = 2;
  EXPECT_THAT(Content(), testing::ElementsAre(kSound[0], kSound[1]));
  EXPECT_EQ(m_memory[2], std::byte{99});
}

TEST_F(Recorder, AfterAResetKeepsNothing) {
  Begin(10);
  m_recorder.Take(kSound);
  EXPECT_EQ(m_recorder.Reset(), WaveResult::kOk);
  EXPECT_EQ(m_header.bytesRecorded, kSound.size());
  m_recorder.Take(kSound);
  Queue(10);
  EXPECT_TRUE(Content().empty());
}

TEST_F(Recorder, AFullBufferIsReleasedAndTheNextOneIsEmptyAndNotStarted) {
  Begin(4);
  EXPECT_EQ(m_recorder.Unprepare(m_header), WaveResult::kStillPlaying);
  m_recorder.Take(kSound);
  EXPECT_EQ(m_recorder.Unprepare(m_header), WaveResult::kOk);
  EXPECT_THAT(m_memory, ElementsAreArray(kSound));
  Queue(10);
  m_recorder.Take(kSound);
  EXPECT_TRUE(Content().empty());
}

TEST_F(Recorder, WhatCameBeforeALossIsThere) {
  Begin(10);
  m_recorder.Take(kSound);
  m_recorder.Lose();
  EXPECT_EQ(m_recorder.Unprepare(m_header), WaveResult::kNoDevice);
  EXPECT_EQ(m_header.bytesRecorded, kSound.size());
}

TEST_F(Recorder, LossOutlastsEveryRecording) {
  Begin(10);
  m_recorder.Lose();
  EXPECT_EQ(m_recorder.Reset(), WaveResult::kOk);
  Queue(10);
  EXPECT_EQ(m_recorder.Start(), WaveResult::kNoDevice);
}

TEST_F(Recorder, TakesSoundFromOneThreadWhileAnotherCopies) {
  Begin(44);
  {
    const std::jthread loop([this] {
      for (int i = 0; i < 10; ++i) m_recorder.Take(kSound);
      m_recorder.Lose();
    });
    while (m_recorder.Unprepare(m_header) != WaveResult::kNoDevice) {
      ASSERT_EQ(m_header.bytesRecorded % kSound.size(), 0U);
    }
  }
  EXPECT_EQ(Content().size(), 40U);
}

}  // namespace
