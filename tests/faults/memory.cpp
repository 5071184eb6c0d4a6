#include <cerrno>
#include <cstddef>

#include "tests/faults/plan.h"

// The allocations of the program and of every library in it, operator new included.

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

void* malloc(std::size_t size) noexcept {
  if (faults::FailsToAllocate()) {
    errno = ENOMEM;
    return nullptr;
  }
  return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) noexcept {
  if (faults::FailsToAllocate()) {
    errno = ENOMEM;
    return nullptr;
  }
  return __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) noexcept {
  if (faults::FailsToAllocate()) {
    errno = ENOMEM;
    return nullptr;
  }
  return __libc_realloc(memory, size);
}

void* memalign(std::size_t alignment, std::size_t size) noexcept {
  if (faults::FailsToAllocate()) {
    errno = ENOMEM;
    return nullptr;
  }
  return __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  return memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept {
  const faults::ErrnoKept kept;
  void* const made = memalign(alignment, size);
  if (made == nullptr) {
    return ENOMEM;
  }
  *memory = made;
  return 0;
}

}  // extern "C"
