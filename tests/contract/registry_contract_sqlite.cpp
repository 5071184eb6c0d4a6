#include "backends/sqlite/sqlite_registry.h"
#include "tests/contract/registry_contract.h"
#include "tests/support/temp_folder.h"

namespace contract {

namespace {

class SqliteFixture final : public RegistryFixture {
 public:
  SqliteFixture(const std::vector<std::u16string>& initialKeys, std::chrono::milliseconds busyLimit)
      : m_registry(m_folder.Path() / sqlite::kDatabaseName, {initialKeys, busyLimit, {}}) {}

  platform::Registry& Get() override { return m_registry; }

 private:
  support::TempFolder m_folder;
  sqlite::SqliteRegistry m_registry;
};

const RegistryBackEnd kSqlite{"Sqlite", [](const auto& initialKeys, auto busyLimit) {
                                return std::make_unique<SqliteFixture>(initialKeys, busyLimit);
                              }};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Files, RegistryContract, testing::Values(kSqlite), NameOf);

}  // namespace contract
