#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

#include "platform/registry.h"
#include "platform/sqlite/statement.h"
#include "platform/sqlite/store.h"

namespace sqlite {

/// One open database that holds a registry, and the transaction it may be in.
class Connection {
 public:
  struct Settings {
    std::filesystem::path database;
    std::span<const std::u16string> initialKeys;
    std::chrono::milliseconds busyLimit;
    std::string fileLayer;
  };

  /// Opens the database, and makes the registry where there is none. A file that holds something
  /// else, a damaged or a newer registry is left byte for byte as it is.
  [[nodiscard]] static platform::RegistryError Open(const Settings& settings,
                                                    std::unique_ptr<Connection>& connection);

  [[nodiscard]] const Store& GetStore() const { return m_store; }

  /// Begins a transaction that may write; on a store that takes no writes, one that reads.
  [[nodiscard]] platform::RegistryError Begin() const;

  /// A transaction that cannot be committed is undone.
  [[nodiscard]] platform::RegistryError Commit() const;

  /// Undoes the transaction, if there is one.
  void Rollback() const;

  /// From now on the files are only closed, nothing gathered is moved into the database.
  void Abandon() const;

 private:
  [[nodiscard]] platform::RegistryError OpenOnce(const Settings& settings);
  [[nodiscard]] platform::RegistryError MakeReady(const Settings& settings);
  [[nodiscard]] platform::RegistryError UseWriteAheadLog() const;

  Database m_database;
  Store m_store;  ///< Goes before the database.
};

}  // namespace sqlite
