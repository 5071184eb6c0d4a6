// A program of its own, since it replaces the allocation of the whole program and the library.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <set>
#include <string>

#include "backends/pulse/pulse_sound.h"
#include "tests/backends/pulse/fake_library.h"
#include "tests/support/results.h"

namespace {

thread_local bool isStarved = false;
thread_local int refusals = 0;

void* Allocate(std::size_t size) {
  refusals += isStarved ? 1 : 0;
  void* const memory = isStarved ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

using platform::WaveResult;
using testing::UnorderedElementsAre;

constexpr platform::WaveFormat kFormat{.formatTag = platform::kFormatTagPcm,
                                       .channels = 1,
                                       .samplesPerSecond = 11025,
                                       .averageBytesPerSecond = 22050,
                                       .blockAlign = 2,
                                       .bitsPerSample = 16};

class ScarceLibraryMemory : public testing::Test {
 protected:
  ScarceLibraryMemory() { fake_library::Reset(); }
  ~ScarceLibraryMemory() override {
    isStarved = false;
    fake_library::Reset();
  }

  /// Does `attempt` once for each thing that the library makes for it, which is the one that fails,
  /// and once without a failure. `attempt` gets the name of the function, or an empty text.
  template <typename Attempt>
  std::set<std::string> FailEach(const Attempt& attempt) {
    std::set<std::string> failures;
    for (int number = 1;; ++number) {
      fake_library::Reset();
      fake_library::FailAt(number);
      attempt();
      EXPECT_EQ(fake_library::CountHeld(), 0) << fake_library::GetFailed();
      if (fake_library::GetFailed().empty()) {
        return failures;
      }
      failures.insert(fake_library::GetFailed());
    }
  }

  static constexpr std::uint32_t kSoundBytes = 64;
  std::array<std::byte, kSoundBytes> m_sound{};
};

TEST_F(ScarceLibraryMemory, NoMicrophoneIsCountedWithoutTheMemoryToAskForThem) {
  const auto failures = FailEach([] {
    const std::uint32_t count = pulse::PulseWaveIn().GetDeviceCount();
    // What the server's default is only matters to a recording.
    const std::string failed = fake_library::GetFailed();
    EXPECT_EQ(count, failed.empty() || failed == "pa_context_get_server_info" ? 1U : 0U) << failed;
  });
  EXPECT_THAT(failures, UnorderedElementsAre(
                            "pa_threaded_mainloop_new", "pa_context_new_with_proplist",
                            "pa_context_get_server_info", "pa_context_get_source_info_list"));
}

TEST_F(ScarceLibraryMemory, AMicrophoneThatCannotBeOpenedIsNone) {
  const auto failures = FailEach([] {
    const auto opened = pulse::PulseWaveIn().Open(kFormat);
    const std::string failed = fake_library::GetFailed();
    const bool isOpen = failed.empty() || failed == "pa_context_get_server_info";
    EXPECT_EQ(support::ErrorOf(opened),
              isOpen ? std::nullopt : std::optional(WaveResult::kNoDevice))
        << failed;
  });
  EXPECT_EQ(failures.size(), 5U);
  EXPECT_TRUE(failures.contains("pa_stream_new_with_proplist"));
}

TEST_F(ScarceLibraryMemory, ALoudspeakerThatCannotBeOpenedIsNoneAndASoundWithoutAnEndIsLost) {
  const auto failures = FailEach([this] {
    const auto opened = pulse::PulseWaveOut().Open(kFormat);
    const std::string failed = fake_library::GetFailed();
    EXPECT_EQ(support::ErrorOf(opened),
              failed.empty() ? std::nullopt : std::optional(WaveResult::kNoDevice))
        << failed;
    if (!opened) {
      return;
    }
    platform::WaveHeader header{.data = m_sound.data(), .bufferLength = kSoundBytes};
    ASSERT_EQ((*opened)->Prepare(header), WaveResult::kOk);
    ASSERT_EQ((*opened)->Write(header), WaveResult::kOk);
    const bool isHeard = fake_library::GetFailed().empty();
    EXPECT_EQ((*opened)->Unprepare(header), isHeard ? WaveResult::kOk : WaveResult::kNoDevice);
    EXPECT_EQ((*opened)->Reset(), WaveResult::kOk) << "with or without its own operation";
  });
  EXPECT_THAT(failures,
              UnorderedElementsAre("pa_threaded_mainloop_new", "pa_context_new_with_proplist",
                                   "pa_stream_new_with_proplist", "pa_stream_drain"));
}

TEST_F(ScarceLibraryMemory, AStopWithoutMemoryForItsOperationIsAStop) {
  const auto opened = pulse::PulseWaveOut().Open(kFormat);
  ASSERT_TRUE(opened);
  platform::WaveHeader header{.data = m_sound.data(), .bufferLength = kSoundBytes};
  ASSERT_EQ((*opened)->Prepare(header), WaveResult::kOk);
  ASSERT_EQ((*opened)->Write(header), WaveResult::kOk);
  fake_library::FailAt(1);
  EXPECT_EQ((*opened)->Reset(), WaveResult::kOk);
  EXPECT_EQ(fake_library::GetFailed(), "pa_stream_flush");
  EXPECT_EQ((*opened)->Write(header), WaveResult::kOk) << "the device takes the next sound";
}

TEST_F(ScarceLibraryMemory, AnAnswerThatThereIsNoMemoryForIsNoAnswer) {
  fake_library::SetAroundAnswers([] { isStarved = true; }, [] { isStarved = false; });
  refusals = 0;
  EXPECT_EQ(pulse::PulseWaveIn().GetDeviceCount(), 0U) << "and nothing passes through the library";
  EXPECT_EQ(refusals, 2) << "for the default's name, and for a microphone's";
  EXPECT_EQ(fake_library::CountHeld(), 0);
}

TEST_F(ScarceLibraryMemory, ARecordingWithoutItsMemoryIsRefusedAndTheNextOneIsTaken) {
  const auto opened = pulse::PulseWaveIn().Open(kFormat);
  ASSERT_TRUE(opened);
  platform::WaveHeader header{.data = m_sound.data(), .bufferLength = kSoundBytes};
  ASSERT_EQ((*opened)->Prepare(header), WaveResult::kOk);
  isStarved = true;
  const WaveResult refused = (*opened)->AddBuffer(header);
  isStarved = false;
  EXPECT_EQ(refused, WaveResult::kFailed);
  EXPECT_EQ((*opened)->Start(), WaveResult::kNotPrepared) << "nothing is queued";
  EXPECT_EQ((*opened)->AddBuffer(header), WaveResult::kOk);
}

}  // namespace
