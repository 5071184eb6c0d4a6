#include "backends/win32/win32_threads.h"
#include "tests/contract/thread_backends.h"

namespace contract {
namespace {

class Win32ThreadBackend final : public ThreadBackend {
 public:
  platform::Threads& Threads() override { return m_threads; }
  platform::Clock& Clock() override { return m_clock; }

 private:
  win32::Win32Threads m_threads;
  win32::Win32Clock m_clock;
};

}  // namespace

ThreadBackendKind SystemThreadBackend() {
  return {"Win32", []() -> std::unique_ptr<ThreadBackend> {
            return std::make_unique<Win32ThreadBackend>();
          }};
}

}  // namespace contract
