// A program of its own, since it replaces the allocation of the whole program.

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "dialer/recognizer.h"

namespace {

/// Allocations left until one fails; below zero none does.
thread_local int allocationsLeft = -1;

void* Allocate(std::size_t size) {
  if (allocationsLeft == 0) {
    allocationsLeft = -1;
    throw std::bad_alloc();
  }
  if (allocationsLeft > 0) {
    --allocationsLeft;
  }
  void* const memory = std::malloc(size == 0 ? 1 : size);
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

// The allocation of the system ends the program if memory is given back twice.
TEST(RecognizerWithoutMemory, GivesBackOnceWhatItHad) {
  dialer::TaughtTag tag{.name = u"A name that is no short text",
                        .oid = 1,
                        .phoneKind = u"A kind that is no short text",
                        .features = std::vector<float>(50, 0.5F),
                        .samples = {}};
  int failures = 0;
  for (bool isMade = false; !isMade; ++failures) {
    allocationsLeft = failures;
    try {
      const dialer::Recognizer recognizer(std::span(&tag, 1), dialer::Steps::kTemplatesOnly);
      isMade = true;
    } catch (const std::bad_alloc&) {
      isMade = false;
    }
    allocationsLeft = -1;
  }
  EXPECT_GT(failures, 4);
}

}  // namespace
