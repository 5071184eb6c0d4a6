#include "backends/sqlite/sqlite_registry.h"
#include "tests/host/cli/store.h"

std::unique_ptr<platform::Registry> OpenStore(const std::filesystem::path& root) {
  return std::make_unique<sqlite::SqliteRegistry>(root / sqlite::kDatabaseName);
}

std::string NameOfStore(const std::filesystem::path& root) {
  return (root / sqlite::kDatabaseName).string();
}

std::string NameOfContacts(const std::filesystem::path& root) {
  return (root / "contacts.vcf").string();
}
