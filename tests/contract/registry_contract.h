#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "platform/registry.h"

namespace contract {

/// A new, empty registry and what it stands on.
class RegistryFixture {
 public:
  RegistryFixture() = default;
  RegistryFixture(const RegistryFixture&) = delete;
  RegistryFixture& operator=(const RegistryFixture&) = delete;
  virtual ~RegistryFixture() = default;

  [[nodiscard]] virtual platform::Registry& Get() = 0;
};

struct RegistryBackEnd {
  std::string name;
  std::function<std::unique_ptr<RegistryFixture>(const std::vector<std::u16string>& initialKeys,
                                                 std::chrono::milliseconds busyLimit)>
      make;
};

inline std::ostream& operator<<(std::ostream& stream, const RegistryBackEnd& backEnd) {
  return stream << backEnd.name;
}

/// The suite that every back end of the registry is put through.
class RegistryContract : public testing::TestWithParam<RegistryBackEnd> {
 protected:
  void SetUp() override { Make({}); }

  void Make(const std::vector<std::u16string>& initialKeys,
            std::chrono::milliseconds busyLimit = std::chrono::seconds(20)) {
    m_fixture.reset();
    m_fixture = GetParam().make(initialKeys, busyLimit);
  }

  [[nodiscard]] platform::Registry& Store() { return m_fixture->Get(); }

 private:
  std::unique_ptr<RegistryFixture> m_fixture;
};

[[nodiscard]] inline std::string NameOf(const testing::TestParamInfo<RegistryBackEnd>& info) {
  return info.param.name;
}

}  // namespace contract
