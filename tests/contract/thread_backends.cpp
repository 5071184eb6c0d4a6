#include "tests/contract/thread_backends.h"

#include <utility>

#include "tests/machine/simulation.h"

namespace contract {
namespace {

class SimulationBackend final : public ThreadBackend {
 public:
  platform::Threads& Threads() override { return m_simulation; }
  platform::Clock& Clock() override { return m_simulation; }

 private:
  machine::Simulation m_simulation;
};

}  // namespace

std::ostream& operator<<(std::ostream& stream, const ThreadBackendKind& kind) {
  return stream << kind.name;
}

std::vector<ThreadBackendKind> AllThreadBackends() {
  return {
      {"Simulation",
       []() -> std::unique_ptr<ThreadBackend> { return std::make_unique<SimulationBackend>(); }},
      SystemThreadBackend(),
  };
}

std::unique_ptr<platform::Thread> ThreadContract::MustStart(std::function<void()> body,
                                                            platform::ThreadStart start) {
  return Threads().Start(std::move(body), start).value();
}

std::unique_ptr<platform::Event> ThreadContract::MustCreateEvent() {
  return Threads().CreateManualResetEvent().value();
}

std::string ThreadBackendName(const testing::TestParamInfo<ThreadBackendKind>& info) {
  return info.param.name;
}

}  // namespace contract
