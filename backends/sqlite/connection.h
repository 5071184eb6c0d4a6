#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

#include "backends/sqlite/sound_mark.h"
#include "backends/sqlite/statement.h"
#include "backends/sqlite/store.h"
#include "platform/registry.h"

namespace sqlite {

/// What a registry may do with its database.
enum class Access : std::uint8_t {
  kChange,
  /// As kChange, with the index of the log in memory: it takes no room, and nobody else can open
  /// the database meanwhile. It is for a full medium, so that something can be deleted there.
  kChangeAlone,
  /// Nothing but reading: no file is made but the log and its index, and only next to a database
  /// that has a log. Every change gives kReadOnly.
  kRead,
};

/// Returns the first file of a store that is a symbolic link: the database, or a file that the
/// library makes next to it. Returns an empty path if none is. The folders on the way may be links.
[[nodiscard]] std::filesystem::path FindLink(const std::filesystem::path& database);

class Connection;
using OpenedConnection = platform::Result<std::unique_ptr<Connection>, platform::RegistryError>;

/// One open database that holds a registry, and the transaction it may be in.
class Connection {
 public:
  struct Settings {
    std::filesystem::path database;
    std::span<const std::u16string> initialKeys;
    std::chrono::milliseconds busyLimit;
    std::string fileLayer;
    Access access = Access::kChange;
    FindSoundMark findSoundMark;
    std::uint32_t number = 0;  ///< Differs from that of every other connection of one registry.
  };

  /// Opens the database. If it is opened for changes, the registry is made if there is none. If it
  /// is opened for reading, a database that is missing or empty counts as a new registry, which is
  /// kept in memory. Fails and changes no byte if the file holds something else, or a registry that
  /// is damaged or newer, or if it is a link (kLink).
  [[nodiscard]] static OpenedConnection Open(const Settings& settings);

  /// Returns whether this stands for a database that is missing or empty.
  [[nodiscard]] bool IsStandIn() const { return m_isStandIn; }

  [[nodiscard]] const Store& GetStore() const { return m_store; }

  /// Begins a transaction that may write; on a store that takes no writes, one that reads.
  [[nodiscard]] platform::Result<void, platform::RegistryError> Begin() const;

  /// Begins a transaction that only reads. It keeps no other process from writing.
  [[nodiscard]] platform::Result<void, platform::RegistryError> BeginReading() const;

  /// A transaction that cannot be committed is undone.
  [[nodiscard]] platform::Result<void, platform::RegistryError> Commit() const;

  /// Undoes the transaction, if there is one.
  void Rollback() const;

  /// From now on the files are only closed, nothing gathered is moved into the database.
  void Abandon() const;

 private:
  [[nodiscard]] static OpenedConnection OpenOnce(const Settings& settings);
  [[nodiscard]] static OpenedConnection OpenToRead(const Settings& settings);
  [[nodiscard]] static OpenedConnection OpenEmpty(const Settings& settings);
  /// `name` is a path, or a name as the library takes it.
  [[nodiscard]] platform::Result<void, platform::RegistryError> OpenFile(const Settings& settings,
                                                                         const std::string& name,
                                                                         int flags);
  [[nodiscard]] platform::Result<void, platform::RegistryError> FillInMemory(
      const Settings& settings);
  [[nodiscard]] platform::Result<void, platform::RegistryError> Configure(
      const Settings& settings) const;
  [[nodiscard]] platform::Result<void, platform::RegistryError> MakeReady(const Settings& settings);
  [[nodiscard]] platform::Result<void, platform::RegistryError> UseWriteAheadLog() const;

  Database m_database;
  Store m_store;  ///< Goes before the database.
  bool m_isReading = false;
  bool m_isStandIn = false;
};

}  // namespace sqlite
