#include "backends/sqlite/sqlite_registry.h"

#include <utility>

#include "backends/sqlite/store.h"

namespace sqlite {

using platform::Failure;
using platform::OpenedKey;
using platform::RegistryError;
using platform::RegistryType;
using platform::RegistryValue;
using platform::Result;

/// A key by its number. It remembers the places of its two enumerations, and the group within which
/// it was opened: if that group is undone, a key that it made is gone.
class SqliteRegistry::Key final : public platform::RegistryKey {
 public:
  Key(SqliteRegistry& registry, std::int64_t key, std::shared_ptr<const Group> group)
      : m_registry(registry), m_key(key), m_group(std::move(group)) {}

  using ItemName = Result<std::optional<std::u16string>, RegistryError>;

  ItemName EnumerateSubkey(std::uint32_t index) override {
    return Perform([&](const Store& store) { return store.SubkeyAt(m_key, index, m_subkey); });
  }

  ItemName EnumerateValue(std::uint32_t index) override {
    return Perform([&](const Store& store) { return store.ValueAt(m_key, index, m_value); });
  }

  Result<RegistryValue, RegistryError> Query(std::u16string_view valueName) override {
    return Perform([&](const Store& store) { return store.QueryValue(m_key, valueName); });
  }

  Result<void, RegistryError> Set(std::u16string_view valueName, RegistryType type,
                                  std::span<const std::byte> bytes) override {
    if (!platform::IsValueName(valueName) || bytes.size() > platform::kMaxValueBytes) {
      return Failure(RegistryError::kInvalid);
    }
    return Perform(
        [&](const Store& store) { return store.SetValue(m_key, valueName, type, bytes); });
  }

  Result<void, RegistryError> DeleteValue(std::u16string_view valueName) override {
    return Perform([&](const Store& store) { return store.DeleteValue(m_key, valueName); });
  }

 private:
  template <typename Call>
  auto Perform(const Call& call) -> std::invoke_result_t<Call, const Store&> {
    return m_registry.Perform([&](const Store& store) -> std::invoke_result_t<Call, const Store&> {
      // The number of a key that was never kept may by now be that of another one.
      if (m_group && m_group->undone) {
        return Failure(RegistryError::kNotFound);
      }
      return call(store);
    });
  }

  SqliteRegistry& m_registry;
  std::int64_t m_key;
  Position m_subkey;  ///< Like m_value used only within the gate.
  Position m_value;
  std::shared_ptr<const Group> m_group;  ///< Within which the key was opened, if any.
};

SqliteRegistry::SqliteRegistry(std::filesystem::path database, RegistryOptions options)
    : m_database(std::move(database)), m_options(std::move(options)), m_gate(m_options.busyLimit) {}

OpenedKey SqliteRegistry::OpenKey(std::u16string_view path) { return OpenWith(path, FindPath); }

OpenedKey SqliteRegistry::CreateKey(std::u16string_view path) {
  return OpenWith(path, [this](const Store& store, const KeyNames& names) {
    // A store that takes no writes still opens the keys it has.
    auto key = FindPath(store, names);
    const bool isMissing = !key && key.error() == RegistryError::kNotFound;
    return isMissing ? CreateMissing(store, names) : key;
  });
}

Result<void, RegistryError> SqliteRegistry::DeleteKey(std::u16string_view path) {
  const auto names = platform::SplitKeyPath(path);
  if (!names || names->empty()) {
    return Failure(RegistryError::kInvalid);
  }
  return Perform([&](const Store& store) {
    return FindPath(store, *names).and_then([&](std::int64_t key) { return store.DeleteKey(key); });
  });
}

template <typename BeginTransaction>
Result<void, RegistryError> SqliteRegistry::Begin(const BeginTransaction& begin) {
  const auto pass = m_gate.Enter();
  if (!pass) {
    return Failure(RegistryError::kBusy);
  }
  if (m_gate.GroupIsOpen()) {
    return Failure(RegistryError::kInvalid);
  }
  const auto begun = Connect().and_then(begin);
  if (begun) {
    m_group = std::make_shared<Group>();
    m_gate.OpenGroup();
  }
  return begun;
}

Result<void, RegistryError> SqliteRegistry::BeginGroup() {
  return Begin([this] {
    Result<void, RegistryError> ready;
    if (m_lacksRoom) {
      ready = OpenForChanges();
      // Without room the group serves for reading.
      if (!ready && ready.error() == RegistryError::kFull && m_connection) {
        ready = {};
      }
    }
    return ready ? m_connection->Begin() : ready;
  });
}

Result<void, RegistryError> SqliteRegistry::BeginReading() {
  return Begin([this] { return m_connection->BeginReading(); });
}

Result<void, RegistryError> SqliteRegistry::CommitGroup() {
  const auto pass = m_gate.Enter();
  if (!pass) {
    return Failure(RegistryError::kBusy);
  }
  if (!m_gate.GroupIsOpen()) {
    return Failure(RegistryError::kInvalid);
  }
  Result<void, RegistryError> committed;
  if (const auto doom = m_gate.Doom()) {
    committed = Failure(*doom);
  } else {
    committed = m_connection->Commit();
  }
  if (!committed && committed.error() == RegistryError::kOther && m_isAlone) {
    committed = Failure(RegistryError::kFull);  // It is alone for lack of room a moment ago.
  }
  if (!committed) {
    NoteDamage(committed.error());
  }
  EndGroup(!committed);
  return committed;
}

void SqliteRegistry::CancelGroup() {
  const auto pass = m_gate.Enter();
  if (!pass || !m_gate.GroupIsOpen()) {
    return;
  }
  m_connection->Rollback();
  EndGroup(true);
}

// Every call runs through here. It is let in alone, refused in a doomed group, and connected. Then
// two failures get a second try, since a full disk must not keep a user from deleting what fills
// it. A store that was opened for reading for want of room is opened for changes. A change without
// room is made again with the database alone, which takes the least room.
template <typename Call>
auto SqliteRegistry::Perform(const Call& call) -> std::invoke_result_t<Call, const Store&> {
  const auto pass = m_gate.Enter();
  if (!pass) {
    return Failure(RegistryError::kBusy);
  }
  if (const auto doom = m_gate.Doom()) {
    return Failure(*doom);
  }
  if (const auto connected = Connect(); !connected) {
    return Failure(connected.error());
  }
  auto result = call(m_connection->GetStore());
  if (!result && result.error() == RegistryError::kReadOnly && m_lacksRoom) {
    const auto opened = m_gate.GroupIsOpen()
                            ? Result<void, RegistryError>(Failure(RegistryError::kFull))
                            : OpenForChanges();
    if (opened) {
      result = call(m_connection->GetStore());
    } else {
      result = Failure(opened.error());
    }
  }
  if (!result && result.error() == RegistryError::kFull && !m_gate.GroupIsOpen() && OpenAlone()) {
    if (auto again = call(m_connection->GetStore())) {
      result = std::move(again);
    }
  }
  if (!result) {
    NoteFailure(result.error());
  }
  return result;
}

void SqliteRegistry::NoteFailure(RegistryError error) {
  NoteDamage(error);
  if (m_gate.GroupIsOpen() && platform::DoomsGroup(error)) {
    // The library may have undone the transaction already; what followed would stand alone.
    m_connection->Rollback();
    m_gate.SetDoom(error);
  }
}

Result<void, RegistryError> SqliteRegistry::Connect() {
  if (m_damaged) {
    return Failure(RegistryError::kDamaged);
  }
  if (m_connection) {
    return {};
  }
  auto opened = Open(m_options.access);
  m_lacksRoom =
      !opened && opened.error() == RegistryError::kFull && m_options.access == Access::kChange;
  if (!m_lacksRoom || !Open(Access::kRead)) {
    return opened;
  }
  // The store can be read, so that what takes room can be found and deleted. A store that could not
  // be made is made by a later call.
  if (m_connection->IsStandIn()) {
    m_connection.reset();
    return opened;
  }
  return {};
}

Result<void, RegistryError> SqliteRegistry::Open(Access access) {
  auto opened =
      Connection::Open({m_database, m_options.initialKeys, m_options.busyLimit, m_options.fileLayer,
                        access, m_options.findSoundMark, ++m_connectionCount});
  if (!opened) {
    return Failure(opened.error());
  }
  m_connection = std::move(*opened);
  return {};
}

Result<void, RegistryError> SqliteRegistry::OpenForChanges() {
  // Alone first: if there is room by now, it was made for something else than an index.
  const auto opened = OpenAlone() ? Result<void, RegistryError>() : Open(Access::kChange);
  m_lacksRoom = !opened;
  return opened;
}

bool SqliteRegistry::OpenAlone() {
  if (m_isAlone || m_options.access != Access::kChange) {
    return false;
  }
  m_connection.reset();
  m_isAlone = Open(Access::kChangeAlone).has_value();
  if (!m_isAlone) {
    static_cast<void>(Connect());  // The next call reports why that fails.
  }
  return m_isAlone;
}

OpenedKey SqliteRegistry::OpenWith(std::u16string_view path, const PathCall& find) {
  const auto names = platform::SplitKeyPath(path);
  if (!names) {
    return Failure(RegistryError::kInvalid);
  }
  return Perform([&](const Store& store) -> OpenedKey {
    const auto number = find(store, *names);
    if (!number) {
      return Failure(number.error());
    }
    return std::make_unique<Key>(*this, *number, m_group);
  });
}

Result<std::int64_t, RegistryError> SqliteRegistry::CreateMissing(const Store& store,
                                                                  const KeyNames& names) {
  if (m_gate.GroupIsOpen()) {
    return CreatePath(store, names);
  }
  if (const auto begun = m_connection->Begin(); !begun) {
    return Failure(begun.error());
  }
  auto key = CreatePath(store, names);
  if (!key) {
    m_connection->Rollback();
  } else if (const auto committed = m_connection->Commit(); !committed) {
    return Failure(committed.error());
  }
  return key;
}

void SqliteRegistry::NoteDamage(RegistryError error) {
  if (error != RegistryError::kDamaged) {
    return;
  }
  m_damaged = true;
  // What lies in the log stays there. To move it into a damaged database could spread the damage.
  m_connection->Abandon();
}

void SqliteRegistry::EndGroup(bool undone) {
  m_group->undone = undone;
  m_group.reset();
  m_gate.CloseGroup();
}

}  // namespace sqlite
