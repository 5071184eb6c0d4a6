// A program of its own, since it replaces the allocation of the whole program.

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "dialer/recognizer.h"

namespace {

/// Allocations left until one fails; below zero none does.
thread_local int allocationsLeft = -1;
thread_local bool hasFailed = false;

void* Allocate(std::size_t size) noexcept {
  if (allocationsLeft == 0) {
    allocationsLeft = -1;
    hasFailed = true;
    return nullptr;
  }
  if (allocationsLeft > 0) {
    --allocationsLeft;
  }
  return std::malloc(size == 0 ? 1 : size);
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

// The allocation of the system ends the program if memory is given back twice.
TEST(RecognizerWithoutMemory, GivesBackOnceWhatItHad) {
  dialer::TaughtTag tag{.name = u"A name that is no short text",
                        .oid = 1,
                        .phoneKind = u"A kind that is no short text",
                        .features = std::vector<float>(50, 0.5F),
                        .samples = {}};
  int failures = 0;
  for (hasFailed = true; hasFailed; ++failures) {
    hasFailed = false;
    allocationsLeft = failures;
    try {
      const dialer::Recognizer recognizer(std::span(&tag, 1), dialer::Steps::kTemplatesOnly);
    } catch (const std::bad_alloc&) {
      EXPECT_TRUE(hasFailed);
    }
    allocationsLeft = -1;
  }
  EXPECT_GT(failures, 4);
}

}  // namespace
