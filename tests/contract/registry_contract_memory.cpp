#include "tests/contract/registry_contract.h"
#include "tests/machine/memory_registry.h"

namespace contract {

namespace {

class MemoryFixture final : public RegistryFixture {
 public:
  MemoryFixture(const std::vector<std::u16string>& initialKeys, std::chrono::milliseconds busyLimit)
      : m_registry(initialKeys, busyLimit) {}

  platform::Registry& Get() override { return m_registry; }

 private:
  machine::MemoryRegistry m_registry;
};

const RegistryBackEnd kMemory{"Memory", [](const auto& initialKeys, auto busyLimit) {
                                return std::make_unique<MemoryFixture>(initialKeys, busyLimit);
                              }};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Headless, RegistryContract, testing::Values(kMemory), NameOf);

}  // namespace contract
