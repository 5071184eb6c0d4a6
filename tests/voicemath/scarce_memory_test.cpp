// A program of its own, since it replaces the allocation of the whole program.

#include <cstdlib>
#include <new>

#include "tests/support/results.h"
#include "tests/voicemath/mathematics_fixture.h"

namespace {

/// Allocations of this size fail.
std::size_t refusedSize = 0;

void* Allocate(std::size_t size) noexcept {
  return size != 0 && size == refusedSize ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void* AllocateOrThrow(std::size_t size) {
  void* const memory = Allocate(size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

}  // namespace

void* operator new(std::size_t size) { return AllocateOrThrow(size); }
void* operator new[](std::size_t size) { return AllocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

/// A recording of which the header claims hours needs more memory than there may be.
class ScarceMemory : public MathematicsFixture {
 protected:
  ~ScarceMemory() override { refusedSize = 0; }

  /// Learns three seconds without the memory of that size.
  void ExpectRefused(std::size_t size) {
    const auto recording = support::WaveFile(
        support::Mixed(support::Noise(33075, 20, 1), 12000, support::SpeechLike(6000, 9000, 2)));
    PutWaveBytes(recording);
    refusedSize = size;
    EXPECT_EQ(m_mathematics.LearnFile(0), voicemath::kNotProcessed);
    refusedSize = 0;
    EXPECT_EQ(m_ui.GetMessages().size(), 1U);
    EXPECT_EQ(m_mathematics.m_count, 0);
    EXPECT_EQ(m_mathematics.m_frameCounts[0], 0);
    EXPECT_FALSE(m_mathematics.m_file.IsOpen());
    EXPECT_EQ(m_files.CountOpenHandles(), 0U);
  }
};

TEST_F(ScarceMemory, WithoutThatOfTheEnvelopeTheRecordingIsNotProcessed) {
  ExpectRefused(66150 / 110 * sizeof(std::int16_t));
  EXPECT_EQ(GetWave().size(), 66194U);
}

TEST_F(ScarceMemory, WithoutThatOfTheTemplateTheRecordingIsNotProcessed) {
  PutWave(support::Mixed(support::Noise(33075, 20, 1), 12000, support::SpeechLike(6000, 9000, 2)));
  ASSERT_EQ(m_mathematics.LearnFile(voicemath::CVoiceMathematics::kStoredSlots), 0);
  ExpectRefused(GetTemplate(voicemath::CVoiceMathematics::kStoredSlots).size() * sizeof(float));
  EXPECT_LT(GetWave().size(), 66194U) << "It has been trimmed by then.";
}

TEST_F(ScarceMemory, ATornTemplateReservesNothingOfWhatItClaims) {
  constexpr std::size_t kMostElements = std::size_t{65535} * 5;
  support::Bytes bytes(100);
  for (std::size_t at = 0; at < 4; ++at) {
    bytes[at] = static_cast<std::byte>(kMostElements >> (8 * at));
  }
  bytes[4] = bytes[5] = std::byte{0xFF};
  ASSERT_TRUE(m_files.PutFile(kTemplate, bytes));
  refusedSize = kMostElements * sizeof(float);
  EXPECT_EQ(support::ErrorOf(voicemath::ReadTemplateFile(m_files, kTemplate, m_mathematics)),
            voicemath::TemplateFileError::kTorn);
}

}  // namespace
