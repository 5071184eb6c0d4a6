#include <atomic>

#include "backends/win32/win32_registry.h"
#include "tests/contract/registry_contract.h"

namespace contract {

namespace {

/// A registry below a key of the test's own, which goes with it.
class Win32Fixture final : public RegistryFixture {
 public:
  Win32Fixture(const std::vector<std::u16string>& initialKeys, std::chrono::milliseconds busyLimit)
      : m_registry(MakePlace(m_base),
                   {initialKeys, {u"k", u"", u"Software\\Maker"}, {}, busyLimit, false}) {}
  ~Win32Fixture() override { static_cast<void>(win32::RemoveTree(HKEY_CURRENT_USER, m_base)); }

  platform::Registry& Get() override { return m_registry; }

 private:
  static std::u16string NewBase() {
    static std::atomic<unsigned> number = 0;
    const std::string name =
        std::to_string(::GetCurrentProcessId()) + "-" + std::to_string(++number);
    return u"Software\\Voxtrel Test " + std::u16string(name.begin(), name.end());
  }
  static win32::RegistryPlace MakePlace(const std::u16string& base) {
    return {HKEY_CURRENT_USER, base + u"\\Registry", base + u"\\Order"};
  }

  const std::u16string m_base = NewBase();
  win32::Win32Registry m_registry;
};

const RegistryBackEnd kWin32{"Win32", [](const auto& initialKeys, auto busyLimit) {
                               return std::make_unique<Win32Fixture>(initialKeys, busyLimit);
                             }};

}  // namespace

INSTANTIATE_TEST_SUITE_P(System, RegistryContract, testing::Values(kWin32), NameOf);

}  // namespace contract
