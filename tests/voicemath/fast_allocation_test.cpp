// What is done for each frame, block or comparison takes no memory.

#include <array>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/signals.h"
#include "voicemath/band_features.h"
#include "voicemath/endpoint_detector.h"
#include "voicemath/nearest_neighbours.h"
#include "voicemath/template_distance.h"

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

PreparedTemplate Prepared(std::size_t frames, float last) {
  std::vector<float> values(frames * kBandCount, 1.0F);
  values.back() = last;
  PreparedTemplate prepared;
  EXPECT_TRUE(prepared.Prepare(values));
  return prepared;
}

TEST(Memory, IsTakenWhenATemplateIsPreparedAsOftenForManyFramesAsForFew) {
  const std::vector<float> few(10 * kBandCount, 1.0F);
  const std::vector<float> many(1000 * kBandCount, 1.0F);
  PreparedTemplate prepared;
  const std::size_t before = allocations;
  ASSERT_TRUE(prepared.Prepare(few));
  const std::size_t between = allocations;
  ASSERT_TRUE(prepared.Prepare(many));
  EXPECT_GT(between, before);
  EXPECT_EQ(allocations - between, between - before);
}

TEST(Memory, IsNotTakenWhenTemplatesAreCompared) {
  std::vector<PreparedTemplate> prepared;
  for (const std::size_t frames : {1U, 20U, 40U, 40U, 62U, 200U}) {
    prepared.push_back(Prepared(frames, 0.5F));
    prepared.push_back(Prepared(frames, -1.0F));  // Not on the grid.
  }
  std::vector<Neighbour> nearest(prepared.size());
  const std::size_t ready = allocations;
  const auto found = FindNearest(prepared, nearest);
  const float distance = TemplateDistance(prepared[2], prepared[2]);
  EXPECT_EQ(allocations, ready);
  EXPECT_TRUE(found);
  EXPECT_EQ(distance, 0.0F);
}

TEST(Memory, IsNotTakenForFramesAndBlocks) {
  constexpr std::size_t kFrames = 63;
  const support::Samples samples = support::Noise(kFrameSamples + kFrames * kFrameHop, 1000, 1);
  std::array<float, kFrames * kBandCount> bands{};
  std::array<std::int16_t, 600> envelope{};
  const std::size_t ready = allocations;
  BandFeatures(samples, kFrameHop, bands);
  SubtractBandMinima(bands);
  MeasureEnvelope(samples, envelope);
  const auto speech = LocateSpeech(envelope, kFrameSamples);
  EXPECT_EQ(allocations, ready);
  EXPECT_GT(envelope[0] + bands[0], 0.0F);
  EXPECT_TRUE(!speech || speech->first <= speech->last);
}

}  // namespace
}  // namespace voicemath
