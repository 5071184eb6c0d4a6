#include "backends/sqlite/sqlite_registry.h"

#include <utility>

#include "backends/sqlite/store.h"
#include "platform/registry_names.h"

namespace sqlite {

using platform::OpenedKey;
using platform::RegistryError;
using platform::RegistryType;
using platform::RegistryValue;

class SqliteRegistry::Key final : public platform::RegistryKey {
 public:
  Key(SqliteRegistry& registry, std::int64_t key, std::shared_ptr<const Group> group)
      : m_registry(registry), m_key(key), m_group(std::move(group)) {}

  RegistryError EnumerateSubkey(std::uint32_t index, std::u16string& name) override {
    return Perform(
        [&](const Store& store) { return store.SubkeyAt(m_key, index, m_subkey, name); });
  }

  RegistryError EnumerateValue(std::uint32_t index, std::u16string& name) override {
    return Perform([&](const Store& store) { return store.ValueAt(m_key, index, m_value, name); });
  }

  RegistryError Query(std::u16string_view valueName, RegistryValue& value) override {
    return Perform([&](const Store& store) { return store.QueryValue(m_key, valueName, value); });
  }

  RegistryError Set(std::u16string_view valueName, RegistryType type,
                    std::span<const std::byte> bytes) override {
    if (!platform::IsValueName(valueName) || bytes.size() > platform::kMaxValueBytes) {
      return RegistryError::kInvalid;
    }
    return Perform(
        [&](const Store& store) { return store.SetValue(m_key, valueName, type, bytes); });
  }

  RegistryError DeleteValue(std::u16string_view valueName) override {
    return Perform([&](const Store& store) { return store.DeleteValue(m_key, valueName); });
  }

 private:
  RegistryError Perform(const Call& call) {
    return m_registry.Perform([&](const Store& store) {
      // The number of a key that was never kept may by now be that of another one.
      if (m_group && m_group->undone) {
        return RegistryError::kNotFound;
      }
      return call(store);
    });
  }

  SqliteRegistry& m_registry;
  std::int64_t m_key;
  Position m_subkey;  ///< As m_value, used behind the gate.
  Position m_value;
  std::shared_ptr<const Group> m_group;  ///< Within which the key was opened, if any.
};

SqliteRegistry::SqliteRegistry(std::filesystem::path database, RegistryOptions options)
    : m_database(std::move(database)), m_options(std::move(options)), m_gate(m_options.busyLimit) {}

OpenedKey SqliteRegistry::OpenKey(std::u16string_view path) { return OpenWith(path, FindPath); }

OpenedKey SqliteRegistry::CreateKey(std::u16string_view path) {
  return OpenWith(path, [this](const Store& store, const KeyNames& names, std::int64_t& key) {
    // A store that takes no writes still opens the keys it has.
    const RegistryError error = FindPath(store, names, key);
    return error == RegistryError::kNotFound ? CreateMissing(store, names, key) : error;
  });
}

RegistryError SqliteRegistry::DeleteKey(std::u16string_view path) {
  const auto names = platform::SplitKeyPath(path);
  if (!names || names->empty()) {
    return RegistryError::kInvalid;
  }
  return Perform([&](const Store& store) {
    std::int64_t key = kRootKey;
    const RegistryError error = FindPath(store, *names, key);
    return error == RegistryError::kNone ? store.DeleteKey(key) : error;
  });
}

RegistryError SqliteRegistry::BeginGroup() {
  const auto pass = m_gate.Enter();
  if (!pass) {
    return RegistryError::kBusy;
  }
  if (m_gate.GroupIsOpen()) {
    return RegistryError::kInvalid;
  }
  RegistryError error = Connect();
  if (error == RegistryError::kNone && m_lacksRoom) {
    // Without room the group serves for reading.
    error = OpenForChanges();
    error = error == RegistryError::kFull && m_connection ? RegistryError::kNone : error;
  }
  if (error == RegistryError::kNone) {
    error = m_connection->Begin();
  }
  if (error != RegistryError::kNone) {
    return error;
  }
  m_group = std::make_shared<Group>();
  m_gate.OpenGroup();
  return RegistryError::kNone;
}

RegistryError SqliteRegistry::CommitGroup() {
  const auto pass = m_gate.Enter();
  if (!pass) {
    return RegistryError::kBusy;
  }
  if (!m_gate.GroupIsOpen()) {
    return RegistryError::kInvalid;
  }
  RegistryError error = m_gate.Doom();
  if (error == RegistryError::kNone) {
    error = m_connection->Commit();
  }
  if (error == RegistryError::kOther && m_isAlone) {
    error = RegistryError::kFull;  // It is alone because there was no room a moment ago.
  }
  NoteDamage(error);
  EndGroup(error != RegistryError::kNone);
  return error;
}

void SqliteRegistry::CancelGroup() {
  const auto pass = m_gate.Enter();
  if (!pass || !m_gate.GroupIsOpen()) {
    return;
  }
  m_connection->Rollback();
  EndGroup(true);
}

RegistryError SqliteRegistry::Perform(const Call& call) {
  const auto pass = m_gate.Enter();
  if (!pass) {
    return RegistryError::kBusy;
  }
  if (m_gate.GroupIsOpen() && m_gate.Doom() != RegistryError::kNone) {
    return m_gate.Doom();
  }
  RegistryError error = Connect();
  if (error != RegistryError::kNone) {
    return error;
  }
  error = call(m_connection->GetStore());
  if (error == RegistryError::kReadOnly && m_lacksRoom) {
    error = m_gate.GroupIsOpen() ? RegistryError::kFull : OpenForChanges();
    error = error == RegistryError::kNone ? call(m_connection->GetStore()) : error;
  }
  if (error == RegistryError::kFull && !m_gate.GroupIsOpen() && OpenAlone() &&
      call(m_connection->GetStore()) == RegistryError::kNone) {
    error = RegistryError::kNone;
  }
  NoteDamage(error);
  if (m_gate.GroupIsOpen() && platform::DoomsGroup(error)) {
    // The library may have undone the transaction already; what followed would stand alone.
    m_connection->Rollback();
    m_gate.SetDoom(error);
  }
  return error;
}

RegistryError SqliteRegistry::Connect() {
  if (m_damaged) {
    return RegistryError::kDamaged;
  }
  if (m_connection) {
    return RegistryError::kNone;
  }
  const RegistryError error = Open(m_options.access);
  m_lacksRoom = error == RegistryError::kFull && m_options.access == Access::kChange;
  if (!m_lacksRoom || Open(Access::kRead) != RegistryError::kNone) {
    return error;
  }
  // What is there can be read, so that what takes room can be deleted. A store that could not be
  // made is made by a later call.
  if (m_connection->IsStandIn()) {
    m_connection.reset();
    return error;
  }
  return RegistryError::kNone;
}

RegistryError SqliteRegistry::Open(Access access) {
  return Connection::Open({m_database, m_options.initialKeys, m_options.busyLimit,
                           m_options.fileLayer, access, ++m_connectionCount},
                          m_connection);
}

RegistryError SqliteRegistry::OpenForChanges() {
  // Alone first: if there is room by now, it was made for something else than an index.
  const RegistryError error = OpenAlone() ? RegistryError::kNone : Open(Access::kChange);
  m_lacksRoom = error != RegistryError::kNone;
  return error;
}

bool SqliteRegistry::OpenAlone() {
  if (m_isAlone || m_options.access != Access::kChange) {
    return false;
  }
  m_connection.reset();
  m_isAlone = Open(Access::kChangeAlone) == RegistryError::kNone;
  if (!m_isAlone) {
    static_cast<void>(Connect());  // The next call reports why that fails.
  }
  return m_isAlone;
}

OpenedKey SqliteRegistry::OpenWith(std::u16string_view path, const PathCall& find) {
  const auto names = platform::SplitKeyPath(path);
  if (!names) {
    return {nullptr, RegistryError::kInvalid};
  }
  OpenedKey opened;
  opened.error = Perform([&](const Store& store) {
    std::int64_t number = kRootKey;
    const RegistryError error = find(store, *names, number);
    if (error == RegistryError::kNone) {
      opened.key = std::make_unique<Key>(*this, number, m_group);
    }
    return error;
  });
  return opened;
}

RegistryError SqliteRegistry::CreateMissing(const Store& store, const KeyNames& names,
                                            std::int64_t& key) {
  if (m_gate.GroupIsOpen()) {
    return CreatePath(store, names, key);
  }
  RegistryError error = m_connection->Begin();
  if (error != RegistryError::kNone) {
    return error;
  }
  error = CreatePath(store, names, key);
  if (error == RegistryError::kNone) {
    return m_connection->Commit();
  }
  m_connection->Rollback();
  return error;
}

void SqliteRegistry::NoteDamage(RegistryError error) {
  if (error != RegistryError::kDamaged) {
    return;
  }
  m_damaged = true;
  m_connection->Abandon();
}

void SqliteRegistry::EndGroup(bool undone) {
  m_group->undone = undone;
  m_group.reset();
  m_gate.CloseGroup();
}

}  // namespace sqlite
