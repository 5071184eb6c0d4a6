#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "backends/sqlite/connection.h"
#include "platform/registry.h"
#include "platform/registry_gate.h"

namespace sqlite {

/// Name of the registry's database, which stands in the root folder of the device's files.
inline constexpr std::string_view kDatabaseName = "registry.db";

struct RegistryOptions {
  /// Keys that a new store is given, without values.
  std::vector<std::u16string> initialKeys;

  /// How long a call waits for another process, or for another thread's group, before kBusy.
  std::chrono::milliseconds busyLimit{2000};

  /// The library's file layer, by its name; empty for the system's.
  std::string fileLayer;

  Access access = Access::kChange;

  /// Without it, each opening looks at all pages of the database.
  FindSoundMark findSoundMark = {};
};

/// The registry in one SQLite database, which other processes may have open as well. The database
/// is opened at the first call, and again at the next one if that failed. So a store that was
/// locked or away is found when it is back. A database once found damaged while in use is not
/// touched again by this object. On a full medium the registry opens all the same, for reading; a
/// change gives kFull until there is room.
class SqliteRegistry final : public platform::Registry {
 public:
  /// To be changed, `database` must have its folder, and is made if it is missing. To be read, a
  /// missing one counts as a new one, and nothing is made.
  explicit SqliteRegistry(std::filesystem::path database, RegistryOptions options = {});

  [[nodiscard]] platform::OpenedKey OpenKey(std::u16string_view path) override;
  [[nodiscard]] platform::OpenedKey CreateKey(std::u16string_view path) override;
  [[nodiscard]] platform::Result<void, platform::RegistryError> DeleteKey(
      std::u16string_view path) override;
  [[nodiscard]] platform::Result<void, platform::RegistryError> BeginGroup() override;
  [[nodiscard]] platform::Result<void, platform::RegistryError> BeginReading() override;
  [[nodiscard]] platform::Result<void, platform::RegistryError> CommitGroup() override;
  void CancelGroup() override;

 private:
  class Key;
  struct Group {
    bool undone = false;
  };
  using PathCall = std::function<platform::Result<std::int64_t, platform::RegistryError>(
      const Store&, const KeyNames&)>;

  /// Runs `call` as one caller at a time, connected, and takes account of its failure. `call` takes
  /// the store and gives a Result of the registry.
  template <typename Call>
  [[nodiscard]] auto Perform(const Call& call) -> std::invoke_result_t<Call, const Store&>;

  /// Opens a group if `begin`, which is called once connected, begins a transaction.
  template <typename BeginTransaction>
  [[nodiscard]] platform::Result<void, platform::RegistryError> Begin(
      const BeginTransaction& begin);
  [[nodiscard]] platform::Result<void, platform::RegistryError> Connect();
  [[nodiscard]] platform::Result<void, platform::RegistryError> Open(Access access);
  /// Opens the registry for changes if it is open for reading for want of room.
  [[nodiscard]] platform::Result<void, platform::RegistryError> OpenForChanges();
  /// Opens the database so that a change takes the least room. Everybody else is kept out until
  /// this object goes. Returns false if the database is open so already, or if another process has
  /// it open. Then there may be no connection.
  [[nodiscard]] bool OpenAlone();
  [[nodiscard]] platform::OpenedKey OpenWith(std::u16string_view path, const PathCall& find);
  [[nodiscard]] platform::Result<std::int64_t, platform::RegistryError> CreateMissing(
      const Store& store, const KeyNames& names);
  void NoteFailure(platform::RegistryError error);
  void NoteDamage(platform::RegistryError error);
  void EndGroup(bool undone);

  std::filesystem::path m_database;
  RegistryOptions m_options;
  platform::RegistryGate m_gate;

  // Used only by the thread that the gate has let in.
  std::unique_ptr<Connection> m_connection;  ///< Null until the database could be opened.
  std::uint32_t m_connectionCount = 0;
  bool m_damaged = false;
  bool m_isAlone = false;          ///< The connection keeps everybody else out.
  bool m_lacksRoom = false;        ///< The connection only reads, since the medium is full.
  std::shared_ptr<Group> m_group;  ///< Shared by the keys that were opened within it.
};

}  // namespace sqlite
