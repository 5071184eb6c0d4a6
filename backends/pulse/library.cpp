#include "backends/pulse/library.h"

#include <dlfcn.h>

#include <mutex>

namespace pulse {
namespace {

constexpr const char* kLibrary = "libpulse.so.0";

/// Gives `function` the address of the function of that name. One that the process has without
/// this library counts. Returns whether there is one.
template <typename Function>
bool Find(void* library, const char* name, Function& function) {
  void* found = ::dlsym(RTLD_DEFAULT, name);
  if (found == nullptr && library != nullptr) {
    found = ::dlsym(library, name);
  }
  function = reinterpret_cast<Function>(found);
  return found != nullptr;
}

}  // namespace

// NOLINTBEGIN(readability-identifier-naming)
// A name in a declaration takes no parentheses. NOLINTNEXTLINE(bugprone-macro-parentheses)
#define VOXTREL_DEFINE(function) decltype(&::function) function = nullptr;
VOXTREL_EACH_PULSE_FUNCTION(VOXTREL_DEFINE)
#undef VOXTREL_DEFINE
// NOLINTEND(readability-identifier-naming)

// A failure is not remembered: it may have been a lack of memory.
bool LoadLibrary() {
  static std::mutex mutex;
  static bool isLoaded = false;
  const std::lock_guard lock(mutex);
  if (!isLoaded) {
    void* const library = ::dlopen(kLibrary, RTLD_LAZY | RTLD_LOCAL);
    isLoaded = true;
#define VOXTREL_FIND(function) isLoaded = isLoaded && Find(library, #function, function);
    VOXTREL_EACH_PULSE_FUNCTION(VOXTREL_FIND)
#undef VOXTREL_FIND
  }
  return isLoaded;
}

}  // namespace pulse
