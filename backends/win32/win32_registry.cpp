#include "backends/win32/win32_registry.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "backends/text/names.h"
#include "backends/win32/registry_order.h"
#include "backends/win32/system_calls.h"

namespace win32 {

using platform::Failure;
using platform::OpenedKey;
using platform::RegistryError;
using platform::RegistryType;
using platform::RegistryValue;
using platform::Result;

namespace {

/// The folder of names for what is ours alone.
constexpr std::u16string_view kOwnPath = u"Software\\Voxtrel";
/// Text: the hive in which this user's registry is.
constexpr std::u16string_view kHiveValue = u"Hive";
constexpr std::u16string_view kOfMachine = u"HKEY_LOCAL_MACHINE";
constexpr std::u16string_view kOfUser = u"HKEY_CURRENT_USER";

constexpr REGSAM kChangeAccess = KEY_READ | KEY_WRITE;

RegistryValue ToText(std::u16string_view text) {
  const std::u16string ended(text);
  const auto* const bytes = reinterpret_cast<const std::byte*>(ended.c_str());
  return {RegistryType::kString,
          std::vector<std::byte>(bytes, bytes + (ended.size() + 1) * sizeof(char16_t))};
}

std::u16string FromBytes(const std::vector<std::byte>& bytes) {
  std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
  std::copy_n(bytes.begin(), text.size() * sizeof(char16_t),
              reinterpret_cast<std::byte*>(text.data()));
  return text;
}

std::u16string Join(std::u16string_view parent, std::u16string_view name) {
  return parent.empty() ? std::u16string(name) : std::u16string(parent).append(u"\\").append(name);
}

/// Returns whether `path` is `above` or below it.
bool IsAtOrBelow(std::u16string_view path, std::u16string_view above) {
  return path.size() >= above.size() && text::SameName(path.substr(0, above.size()), above) &&
         (path.size() == above.size() || path[above.size()] == u'\\');
}

/// Returns what was decided for good. Fails with kNotFound if nothing was, and with kDamaged if
/// what stands there is no hive.
Result<HKEY, RegistryError> ReadHive() {
  const auto own = OpenSystemKey(HKEY_CURRENT_USER, kOwnPath, KEY_READ);
  const auto value = own ? ReadValue(own->Get(), kHiveValue) : Failure(own.error());
  if (!value) {
    return Failure(value.error());
  }
  if (value->bytes == ToText(kOfMachine).bytes) {
    return HKEY_LOCAL_MACHINE;
  }
  if (value->bytes == ToText(kOfUser).bytes) {
    return HKEY_CURRENT_USER;
  }
  return Failure(RegistryError::kDamaged);
}

/// Returns the hive of the machine if this user may write there, otherwise that of the user.
Result<HKEY, RegistryError> FindHive() {
  const auto ofMachine =
      OpenSystemKey(HKEY_LOCAL_MACHINE, u"Software", KEY_READ | KEY_CREATE_SUB_KEY);
  if (ofMachine) {
    return HKEY_LOCAL_MACHINE;
  }
  if (ofMachine.error() == RegistryError::kReadOnly) {
    return HKEY_CURRENT_USER;
  }
  return Failure(ofMachine.error());
}

}  // namespace

RegistryPlace RegistryPlace::OfUser(Deciding deciding) {
  auto hive = ReadHive();
  if (!hive && hive.error() == RegistryError::kNotFound) {
    hive = FindHive();
    const auto own = hive && deciding == Deciding::kForGood
                         ? MakeSystemPath(HKEY_CURRENT_USER, kOwnPath)
                         : Failure(RegistryError::kReadOnly);
    if (own) {
      // If this fails, the next program decides.
      static_cast<void>(WriteValue(own->Get(), kHiveValue,
                                   ToText(*hive == HKEY_LOCAL_MACHINE ? kOfMachine : kOfUser)));
    }
  }
  // In the wrong hive the user would find no tags, and teach them again.
  return {hive.value_or(nullptr), {}, Join(kOwnPath, u"Order")};
}

// No folder has a name with a colon at its beginning. So what belongs to one root folder never
// meets what belongs to a folder within it.
RegistryPlace RegistryPlace::OfRoot(std::u16string_view root) {
  std::u16string path(root);
  std::ranges::replace(path, u'/', u'\\');
  while (path.ends_with(u'\\')) {
    path.pop_back();
  }
  path.erase(0, path.find_first_not_of(u'\\'));
  path = Join(Join(Join(kOwnPath, u"Roots"), path), u":");
  return {HKEY_CURRENT_USER, Join(path, u"Registry"), Join(path, u"Order")};
}

std::u16string RegistryPlace::GetName() const {
  if (hive == nullptr) {
    return u"unknown";
  }
  const std::u16string name(hive == HKEY_LOCAL_MACHINE ? kOfMachine : kOfUser);
  return path.empty() ? name : Join(name, path);
}

/// One key that somebody has open.
class Win32Registry::Key final : public platform::RegistryKey {
 public:
  Key(Win32Registry& registry, State state) : m_registry(registry), m_state(std::move(state)) {}

  [[nodiscard]] Listed EnumerateSubkey(std::uint32_t index) override {
    return Read([&]() -> Listed {
      if (!m_state->key.IsOpen()) {
        return std::nullopt;
      }
      if (m_registry.GetReach(m_state->path) != Reach::kOwn) {
        return m_registry.ListWay(*m_state, index);
      }
      if (m_registry.IsOrdered(m_state->path)) {
        return m_registry.ListInOrder(*m_state, index);
      }
      auto listed = ListSubkey(m_state->key.Get(), index);
      if (!listed) {
        return Failure(listed.error());
      }
      if (!*listed) {
        return std::nullopt;
      }
      return (*listed)->name ? Listed(std::move((*listed)->name))
                             : Failure(RegistryError::kInvalid);
    });
  }

  [[nodiscard]] Listed EnumerateValue(std::uint32_t index) override {
    return Read([&]() -> Listed {
      return m_state->key.IsOpen() && m_registry.GetReach(m_state->path) == Reach::kOwn
                 ? ListValue(m_state->key.Get(), index)
                 : std::nullopt;
    });
  }

  [[nodiscard]] Result<RegistryValue, RegistryError> Query(std::u16string_view name) override {
    return Read([&]() -> Result<RegistryValue, RegistryError> {
      if (!platform::IsValueName(name)) {
        return Failure(RegistryError::kInvalid);
      }
      return m_state->key.IsOpen() ? ReadValue(m_state->key.Get(), name)
                                   : Failure(RegistryError::kNotFound);
    });
  }

  [[nodiscard]] Done Set(std::u16string_view name, RegistryType type,
                         std::span<const std::byte> bytes) override {
    return m_registry.Change([&]() -> Done {
      if (!platform::IsValueName(name) || bytes.size() > platform::kMaxValueBytes) {
        return Failure(RegistryError::kInvalid);
      }
      if (m_registry.GetReach(m_state->path) != Reach::kOwn) {
        return Failure(RegistryError::kReadOnly);
      }
      return m_state->isDead ? Failure(RegistryError::kNotFound)
                             : m_registry.Set(*m_state, name, {type, {bytes.begin(), bytes.end()}});
    });
  }

  [[nodiscard]] Done DeleteValue(std::u16string_view name) override {
    return m_registry.Change([&]() -> Done {
      if (!platform::IsValueName(name)) {
        return Failure(RegistryError::kInvalid);
      }
      if (m_registry.GetReach(m_state->path) != Reach::kOwn) {
        return Failure(RegistryError::kReadOnly);
      }
      return m_state->isDead ? Failure(RegistryError::kNotFound)
                             : m_registry.DeleteValue(*m_state, name);
    });
  }

 private:
  template <typename Call>
  [[nodiscard]] auto Read(const Call& call) -> std::invoke_result_t<Call> {
    return m_registry.Perform([&]() -> std::invoke_result_t<Call> {
      if (m_state->isDead) {
        return Failure(RegistryError::kNotFound);
      }
      return call();
    });
  }

  Win32Registry& m_registry;
  const State m_state;
};

Win32Registry::Win32Registry(RegistryPlace place, RegistryOptions options)
    : m_place(std::move(place)),
      m_options(std::move(options)),
      m_gate(m_options.busyLimit),
      m_writer(m_place.GetName()),
      m_journal(m_place.hive, Join(SplitLast(m_place.orderPath).first, u"Undo"),
                m_options.writer.empty() ? NameOfWriter(this) : m_options.writer) {}

template <typename Call>
auto Win32Registry::Perform(const Call& call) -> std::invoke_result_t<Call> {
  const auto lock = m_gate.Enter();
  if (!lock.owns_lock()) {
    return Failure(RegistryError::kBusy);
  }
  if (const auto doom = m_gate.Doom()) {
    return Failure(*doom);
  }
  if (const auto connected = Connect(); !connected) {
    return Failure(connected.error());
  }
  auto result = call();
  if (m_gate.GroupIsOpen()) {
    if (!result && platform::DoomsGroup(result.error())) {
      m_gate.SetDoom(result.error());
    }
    return result;
  }
  Done kept;
  if (result) {
    kept = KeepChanges();
  } else {
    UndoChanges();
  }
  m_writer.Release();
  return kept ? std::move(result) : Failure(kept.error());
}

template <typename Call>
auto Win32Registry::Change(const Call& call) -> std::invoke_result_t<Call> {
  return Perform([&]() -> std::invoke_result_t<Call> {
    if (m_options.isReadOnly) {
      return Failure(RegistryError::kReadOnly);
    }
    if (const auto begun = BeginWriting(m_options.busyLimit); !begun) {
      return Failure(begun.error());
    }
    return call();
  });
}

/// Waits for other writers, and undoes what one left that ended within its group.
Done Win32Registry::BeginWriting(std::chrono::milliseconds limit) {
  if (m_writer.IsHeld()) {
    return {};
  }
  const Done taken = m_writer.Take(limit);
  const Done begun = taken && m_writer.IsHeld() ? m_journal.Recover() : taken;
  if (!begun) {
    m_writer.Release();
  }
  return begun;
}

// Before anything is read: what a killed process left may belong to files that are gone. Whoever
// writes now has looked for that, and is not waited for.
Done Win32Registry::Connect() {
  if (m_isConnected || m_options.isReadOnly) {
    return {};
  }
  Done connected = BeginWriting(std::chrono::milliseconds(0));
  if (connected || connected.error() == RegistryError::kBusy) {
    connected = MakeIfNew();
  }
  m_writer.Release();
  m_isConnected = connected.has_value();
  return connected;
}

// The place of the order is made last. So a registry without it is a new one.
Done Win32Registry::MakeIfNew() const {
  if (OpenSystemKey(m_place.hive, m_place.orderPath, KEY_READ)) {
    return {};
  }
  std::vector<std::u16string> paths;
  for (const std::u16string& key : m_options.initialKeys) {
    paths.push_back(FullPath(key));
  }
  paths.insert(paths.end(), {m_place.path, m_place.orderPath});
  for (const std::u16string& path : paths) {
    if (const auto made = MakeSystemPath(m_place.hive, path); !made) {
      return Failure(made.error());
    }
  }
  return {};
}

std::u16string Win32Registry::FullPath(std::u16string_view path) const {
  return path.empty() ? m_place.path : Join(m_place.path, path);
}

Result<SystemKey, RegistryError> Win32Registry::Open(std::u16string_view path,
                                                     REGSAM access) const {
  return OpenSystemKey(m_place.hive, FullPath(path), access);
}

OpenedKey Win32Registry::Hold(std::u16string_view path, SystemKey key) {
  std::erase_if(m_open, [](const auto& state) { return state.expired(); });
  auto state =
      std::make_shared<OpenKeyState>(OpenKeyState{std::u16string(path), std::move(key), false});
  m_open.push_back(state);
  return std::make_unique<Key>(*this, std::move(state));
}

OpenedKey Win32Registry::OpenKey(std::u16string_view path) {
  return Perform([&]() -> OpenedKey {
    if (const auto names = platform::SplitKeyPath(path); !names) {
      return Failure(names.error());
    }
    if (GetReach(path) == Reach::kForeign) {
      return Failure(RegistryError::kNotFound);
    }
    const bool writes = !m_options.isReadOnly && GetReach(path) == Reach::kOwn;
    auto key = Open(path, writes ? kChangeAccess : KEY_READ);
    if (!key && key.error() == RegistryError::kReadOnly) {
      key = Open(path, KEY_READ);
    }
    if (!key && path.empty() && key.error() == RegistryError::kNotFound) {
      return Hold(path, SystemKey());
    }
    return key ? Hold(path, std::move(*key)) : Failure(key.error());
  });
}

OpenedKey Win32Registry::CreateKey(std::u16string_view path) {
  return Change([&]() -> OpenedKey {
    if (const auto names = platform::SplitKeyPath(path); !names) {
      return Failure(names.error());
    }
    const Reach reach = GetReach(path);
    if (reach == Reach::kForeign) {
      return Failure(RegistryError::kReadOnly);
    }
    auto key = Open(path, reach == Reach::kOwn ? kChangeAccess : KEY_READ);
    if (!key && key.error() == RegistryError::kNotFound) {
      key = Make(path);
    }
    return key ? Hold(path, std::move(*key)) : Failure(key.error());
  });
}

// The system would make all keys of a path in one call, and not say which of them are new.
Result<SystemKey, RegistryError> Win32Registry::Make(std::u16string_view path) {
  const auto [parentPath, name] = SplitLast(path);
  // Nobody may write into all of a hive, such as HKEY_LOCAL_MACHINE.
  const bool isOwn = GetReach(parentPath) == Reach::kOwn;
  auto parent = Open(parentPath, isOwn ? kChangeAccess : KEY_READ);
  if (!parent && parent.error() == RegistryError::kNotFound && !parentPath.empty()) {
    parent = Make(parentPath);
  }
  if (!parent) {
    return parent;
  }
  const auto kept = Keep({{UndoStep::Kind::kKeyMade, FullPath(path), {}, {}}, {}});
  const auto noted = kept ? NoteOrder(parentPath, parent->Get(), name) : kept;
  if (!noted) {
    return Failure(noted.error());
  }
  return MakeSystemKey(parent->Get(), name);
}

// The system deletes key by key. What was there is read before, so that a deletion that ends half
// way can be undone.
Done Win32Registry::Delete(std::u16string_view path) {
  const auto [parentPath, name] = SplitLast(path);
  const auto parent = Open(parentPath, KEY_READ);
  const auto key = Open(path, KEY_READ);
  if (!parent || !key) {
    return Failure(parent ? key.error() : parent.error());
  }
  auto tree = ReadTree(key->Get());
  if (!tree) {
    return Failure(tree.error());
  }
  if (const auto kept =
          Keep({{UndoStep::Kind::kKeyDeleted, FullPath(path), {}, std::move(*tree)}, {}});
      !kept) {
    return kept;
  }
  m_undo.back().deadKeys = TakeLife(FullPath(path));
  return RemoveTree(parent->Get(), name);
}

/// Every open key at `path` and below it is dead from now on. Returns them.
std::vector<Win32Registry::State> Win32Registry::TakeLife(std::u16string_view path) {
  std::vector<State> taken;
  for (const auto& weak : m_open) {
    State state = weak.lock();
    if (state && !state->isDead && IsAtOrBelow(FullPath(state->path), path)) {
      state->isDead = true;
      taken.push_back(std::move(state));
    }
  }
  return taken;
}

void Win32Registry::GiveLife(const std::vector<State>& states) {
  for (const State& state : states) {
    if (auto key = Open(state->path, kChangeAccess)) {
      state->key = std::move(*key);
      state->isDead = false;
    }
  }
}

Result<void, RegistryError> Win32Registry::DeleteKey(std::u16string_view path) {
  return Change([&]() -> Done {
    const auto names = platform::SplitKeyPath(path);
    if (!names) {
      return Failure(names.error());
    }
    if (names->empty()) {
      return Failure(RegistryError::kInvalid);
    }
    return GetReach(path) == Reach::kOwn ? Delete(path) : Failure(RegistryError::kReadOnly);
  });
}

/// Writes down a change that is about to be made.
Done Win32Registry::Keep(MadeChange&& change) {
  const Done noted = m_journal.Note(change.step);
  if (noted) {
    m_undo.push_back(std::move(change));
  }
  return noted;
}

/// Keeps the value of that name, or that there is none.
Done Win32Registry::KeepValue(HKEY key, std::u16string path, std::u16string_view name) {
  UndoStep step{UndoStep::Kind::kValueSet, std::move(path), std::u16string(name), {}};
  auto before = ReadValue(key, name);
  if (before) {
    step.before.values.push_back({step.name, std::move(*before)});
  } else if (before.error() != RegistryError::kNotFound) {
    return Failure(before.error());
  }
  return Keep({std::move(step), {}});
}

Done Win32Registry::Set(const OpenKeyState& state, std::u16string_view name,
                        const RegistryValue& value) {
  return KeepOrderOf(state.path)
      .and_then([&] { return KeepValue(state.key.Get(), FullPath(state.path), name); })
      .and_then([&] { return WriteValue(state.key.Get(), name, value); });
}

Done Win32Registry::DeleteValue(const OpenKeyState& state, std::u16string_view name) {
  if (const auto there = ReadValue(state.key.Get(), name); !there) {
    return Failure(there.error());
  }
  return KeepOrderOf(state.path)
      .and_then([&] { return KeepValue(state.key.Get(), FullPath(state.path), name); })
      .and_then([&] { return RemoveValue(state.key.Get(), name); });
}

// The changes stay once the journal is gone, which is one step of the system's.
Done Win32Registry::KeepChanges() {
  if (m_undo.empty()) {
    return {};
  }
  const Done kept = m_journal.Clear().and_then([&] { return Flush(); });
  if (!kept) {
    UndoChanges();
  }
  m_undo.clear();
  return kept;
}

// What cannot be undone now stays in the journal, for the next process.
void Win32Registry::UndoChanges() {
  bool isUndone = !m_undo.empty();
  for (; !m_undo.empty(); m_undo.pop_back()) {
    const MadeChange& change = m_undo.back();
    if (change.step.kind == UndoStep::Kind::kKeyMade) {
      static_cast<void>(TakeLife(change.step.path));
    }
    if (win32::Undo(m_place.hive, change.step)) {
      GiveLife(change.deadKeys);
    } else {
      isUndone = false;
    }
  }
  if (isUndone) {
    static_cast<void>(m_journal.Clear());
  }
}

Done Win32Registry::Flush() const {
  const auto base = OpenSystemKey(m_place.hive, m_place.orderPath, KEY_READ);
  return base ? FlushRegistry(base->Get()) : Failure(base.error());
}

Result<void, RegistryError> Win32Registry::BeginGroup() {
  const auto lock = m_gate.Enter();
  if (!lock.owns_lock()) {
    return Failure(RegistryError::kBusy);
  }
  if (m_gate.GroupIsOpen()) {
    return Failure(RegistryError::kInvalid);
  }
  const auto begun = Connect().and_then(
      [&] { return m_options.isReadOnly ? Done() : BeginWriting(m_options.busyLimit); });
  if (begun) {
    m_gate.OpenGroup();
  }
  return begun;
}

Result<void, RegistryError> Win32Registry::CommitGroup() {
  const auto lock = m_gate.Enter();
  if (!lock.owns_lock()) {
    return Failure(RegistryError::kBusy);
  }
  if (!m_gate.GroupIsOpen()) {
    return Failure(RegistryError::kInvalid);
  }
  const auto doom = m_gate.Doom();
  if (doom) {
    UndoChanges();
  }
  const Done committed = doom ? Failure(*doom) : KeepChanges();
  m_writer.Release();
  m_gate.CloseGroup();
  return committed;
}

void Win32Registry::CancelGroup() {
  const auto lock = m_gate.Enter();
  if (lock.owns_lock() && m_gate.GroupIsOpen()) {
    UndoChanges();
    m_writer.Release();
    m_gate.CloseGroup();
  }
}

Win32Registry::Reach Win32Registry::GetReach(std::u16string_view path) const {
  Reach reach = m_options.ownKeys.empty() ? Reach::kOwn : Reach::kForeign;
  for (const std::u16string& own : m_options.ownKeys) {
    if (IsAtOrBelow(path, own)) {
      return Reach::kOwn;
    }
    if (path.empty() || IsAtOrBelow(own, path)) {
      reach = Reach::kOnTheWay;
    }
  }
  return reach;
}

/// Returns the name of the key at `index` among those that lead to a key of the device's.
Win32Registry::Listed Win32Registry::ListWay(const OpenKeyState& state, std::uint32_t index) const {
  std::vector<std::u16string> names;
  for (const std::u16string& own : m_options.ownKeys) {
    if (!state.path.empty() && !IsAtOrBelow(own, state.path)) {
      continue;
    }
    const std::size_t start = state.path.empty() ? 0 : state.path.size() + 1;
    std::u16string name = own.substr(start, own.find(u'\\', start) - start);
    if (std::ranges::find(names, name) != names.end()) {
      continue;
    }
    if (const auto there = OpenSystemKey(state.key.Get(), name, KEY_READ); there) {
      names.push_back(std::move(name));
    } else if (there.error() != RegistryError::kNotFound) {
      return Failure(there.error());
    }
  }
  return index < names.size() ? Listed(std::move(names[index])) : std::nullopt;
}

// The system lists keys by their names. So the names of the keys below an ordered one are kept in a
// value of our own, in the order in which they were made. A name in it whose key is gone means
// nothing, so a deletion leaves it as it is.

bool Win32Registry::IsOrdered(std::u16string_view path) const {
  return std::ranges::any_of(m_options.orderedKeys, [&](const std::u16string& ordered) {
    return text::SameName(ordered, path);
  });
}

Result<std::vector<std::u16string>, RegistryError> Win32Registry::ReadOrder(
    std::u16string_view path) const {
  const auto order = OpenSystemKey(m_place.hive, m_place.orderPath, KEY_READ);
  const auto value = order ? ReadValue(order->Get(), path) : Failure(order.error());
  std::vector<std::u16string> names;
  if (!value) {
    // Without the order the tags would be listed in another one, and that would be written down.
    return value.error() == RegistryError::kNotFound ? Result<decltype(names), RegistryError>(names)
                                                     : Failure(value.error());
  }
  const std::u16string all = FromBytes(value->bytes);
  for (std::size_t at = 0; at < all.size() && all[at] != u'\0';) {
    names.emplace_back(all.c_str() + at);
    at += names.back().size() + 1;
  }
  return names;
}

/// Notes that a key of that name is the last one below an ordered key. Those that another program
/// made are noted before it.
Done Win32Registry::NoteOrder(std::u16string_view parentPath, HKEY parent,
                              std::u16string_view name) {
  return IsOrdered(parentPath) ? ListAll(parentPath, parent).and_then([&](const auto& keys) {
    return WriteOrder(parentPath, keys, name);
  })
                               : Done();
}

/// Notes the place of a key that another program made, if it has one by the time of its last
/// change.
Done Win32Registry::KeepOrderOf(std::u16string_view path) {
  const auto [parentPath, name] = SplitLast(path);
  if (!IsOrdered(parentPath)) {
    return {};
  }
  const auto order = ReadOrder(parentPath);
  if (!order) {
    return Failure(order.error());
  }
  if (std::ranges::any_of(*order, [&](const auto& noted) { return text::SameName(noted, name); })) {
    return {};
  }
  const auto parent = Open(parentPath, KEY_READ);
  if (!parent) {
    return Failure(parent.error());
  }
  return ListAll(parentPath, parent->Get()).and_then([&](const auto& keys) {
    return WriteOrder(parentPath, keys, {});
  });
}

Result<std::vector<ListedKey>, RegistryError> Win32Registry::ListAll(std::u16string_view parentPath,
                                                                     HKEY parent) const {
  std::vector<ListedKey> keys;
  for (std::uint32_t i = 0;; ++i) {
    auto listed = ListSubkey(parent, i);
    if (!listed) {
      return Failure(listed.error());
    }
    if (!*listed) {
      auto order = ReadOrder(parentPath);
      return order ? Result<std::vector<ListedKey>, RegistryError>(
                         InOrderOfMaking(std::move(keys), *order))
                   : Failure(order.error());
    }
    keys.push_back(std::move(**listed));
  }
}

Done Win32Registry::WriteOrder(std::u16string_view parentPath, const std::vector<ListedKey>& keys,
                               std::u16string_view last) {
  std::u16string all;
  for (const ListedKey& key : keys) {
    if (key.name && !text::SameName(*key.name, last)) {
      all.append(*key.name).append(1, u'\0');
    }
  }
  if (!last.empty()) {
    all.append(last).append(1, u'\0');
  }
  const auto order = OpenSystemKey(m_place.hive, m_place.orderPath, kChangeAccess);
  if (!order) {
    return Failure(order.error());
  }
  RegistryValue value = ToText(all);
  value.type = static_cast<RegistryType>(REG_MULTI_SZ);
  return KeepValue(order->Get(), m_place.orderPath, parentPath).and_then([&] {
    return WriteValue(order->Get(), parentPath, value);
  });
}

Win32Registry::Listed Win32Registry::ListInOrder(const OpenKeyState& state,
                                                 std::uint32_t index) const {
  auto keys = ListAll(state.path, state.key.Get());
  if (!keys) {
    return Failure(keys.error());
  }
  if (index >= keys->size()) {
    return std::nullopt;
  }
  auto& name = (*keys)[index].name;
  return name ? Listed(std::move(name)) : Failure(RegistryError::kInvalid);
}

}  // namespace win32
