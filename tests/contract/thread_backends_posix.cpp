#include "backends/posix/posix_threads.h"
#include "tests/contract/thread_backends.h"

namespace contract {
namespace {

class PosixThreadBackend final : public ThreadBackend {
 public:
  platform::Threads& Threads() override { return m_threads; }
  platform::Clock& Clock() override { return m_clock; }

 private:
  posix::PosixThreads m_threads;
  posix::PosixClock m_clock;
};

}  // namespace

ThreadBackendKind SystemThreadBackend() {
  return {"Posix", []() -> std::unique_ptr<ThreadBackend> {
            return std::make_unique<PosixThreadBackend>();
          }};
}

}  // namespace contract
