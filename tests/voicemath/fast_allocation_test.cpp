// What is done for each frame, block or comparison takes no memory.

#include <array>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/signals.h"
#include "voicemath/band_features.h"
#include "voicemath/block_envelope.h"
#include "voicemath/endpoint_detector.h"
#include "voicemath/nearest_neighbours.h"

namespace {

std::size_t allocations = 0;

void* Allocate(std::size_t size) {
  ++allocations;
  return std::malloc(size);
}

}  // namespace

void* operator new(std::size_t size) {
  void* memory = Allocate(size);
  if (memory == nullptr) {
    std::abort();
  }
  return memory;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace voicemath {
namespace {

TEST(Memory, IsTakenWhenATemplateIsPreparedAndNotWhenItIsCompared) {
  std::vector<PreparedTemplate> prepared(3);
  const std::vector<float> values(200, 1.0F);
  const std::size_t before = allocations;
  for (PreparedTemplate& each : prepared) {
    ASSERT_TRUE(each.Prepare(values));
  }
  EXPECT_GT(allocations, before);

  const std::size_t ready = allocations;
  std::array<Neighbour, 3> nearest;
  FindNearest(prepared, nearest);
  const float distance = TemplateDistance(prepared[0], prepared[1]);
  EXPECT_EQ(allocations, ready);
  EXPECT_EQ(distance, 0.0F);
}

TEST(Memory, IsNotTakenForFramesAndBlocks) {
  const support::Samples samples = support::Noise(kFrameSamples, 1000, 1);
  std::array<float, kBandCount> bands{};
  std::array<std::int16_t, 10> envelope{};
  const std::size_t ready = allocations;
  BandFeatures(samples, 0, bands);
  MeasureEnvelope(samples, envelope);
  const auto speech = LocateSpeech(envelope, kFrameSamples);
  EXPECT_EQ(allocations, ready);
  EXPECT_GT(bands[0], 0.0F);
  EXPECT_TRUE(!speech || speech->first <= speech->last);
}

}  // namespace
}  // namespace voicemath
