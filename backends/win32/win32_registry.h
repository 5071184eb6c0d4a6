#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "backends/win32/registry_calls.h"
#include "backends/win32/registry_undo.h"
#include "platform/registry.h"
#include "platform/registry_gate.h"

namespace win32 {

/// The part of the system's registry that stands for the device's.
struct RegistryPlace {
  HKEY hive = nullptr;  ///< Null if the system did not say which; then every call fails.
  std::u16string path;  ///< Below the hive; empty for all of it.
  /// Holds, in the same hive, what the system does not remember: the order in which keys were made.
  std::u16string orderPath;

  enum class Deciding : std::uint8_t { kForNow, kForGood };

  /// Returns the place for the user's own root folder. It is HKEY_LOCAL_MACHINE if this user may
  /// write there, otherwise HKEY_CURRENT_USER, with the same paths. Once a program has decided that
  /// for good, it stays, whatever rights a later one has. The hive is null if what was decided
  /// cannot be read.
  [[nodiscard]] static RegistryPlace OfUser(Deciding deciding);

  /// Returns the place for another root folder, a path of the host.
  [[nodiscard]] static RegistryPlace OfRoot(std::u16string_view root);

  /// Returns the place as users know it ("HKEY_CURRENT_USER\...").
  [[nodiscard]] std::u16string GetName() const;
};

struct RegistryOptions {
  /// Keys that a new registry is given, without values.
  std::vector<std::u16string> initialKeys;

  /// Keys whose subkeys are enumerated in the order in which they were made (registry_order.h). The
  /// subkeys of every other key are in the order of the system, which is that of their names.
  std::vector<std::u16string> orderedKeys;

  /// The keys that are the device's, with all that is below them; without any, all of the place.
  /// Every other key belongs to somebody else: it cannot be found, made or deleted. Those on the
  /// way to one of these show nothing but the way.
  std::vector<std::u16string> ownKeys = {};

  /// How long a call waits for another thread's group before kBusy.
  std::chrono::milliseconds busyLimit{2000};

  bool isReadOnly = false;  ///< Nothing is made. A missing registry counts as an empty one.

  /// The name under which changes are written down until they are kept; without one, that of this
  /// process. Only a test gives another one.
  std::u16string writer = {};
};

/// The registry of Windows. It knows no transactions. So what a group has changed can be seen
/// before the group is committed. A group that fails or is cancelled is undone change by change. If
/// the process is killed within a group, the next one that may change anything undoes it first.
class Win32Registry final : public platform::Registry {
 public:
  explicit Win32Registry(RegistryPlace place, RegistryOptions options = {});

  [[nodiscard]] platform::OpenedKey OpenKey(std::u16string_view path) override;
  [[nodiscard]] platform::OpenedKey CreateKey(std::u16string_view path) override;
  [[nodiscard]] platform::Result<void, platform::RegistryError> DeleteKey(
      std::u16string_view path) override;
  [[nodiscard]] platform::Result<void, platform::RegistryError> BeginGroup() override;
  [[nodiscard]] platform::Result<void, platform::RegistryError> CommitGroup() override;
  void CancelGroup() override;

 private:
  class Key;
  /// A key that somebody has open.
  struct OpenKeyState {
    std::u16string path;
    SystemKey key;        ///< Not open for a registry that is missing and only read.
    bool isDead = false;  ///< It was deleted.
  };
  using State = std::shared_ptr<OpenKeyState>;
  using Listed = platform::Result<std::optional<std::u16string>, platform::RegistryError>;

  /// Runs `call` as one caller at a time, connected. Outside of a group a failed change is undone.
  template <typename Call>
  [[nodiscard]] auto Perform(const Call& call) -> std::invoke_result_t<Call>;
  /// The same for a call that changes something.
  template <typename Call>
  [[nodiscard]] auto Change(const Call& call) -> std::invoke_result_t<Call>;

  [[nodiscard]] Done Connect();
  [[nodiscard]] Done MakeIfNew() const;
  [[nodiscard]] std::u16string FullPath(std::u16string_view path) const;
  [[nodiscard]] platform::Result<SystemKey, platform::RegistryError> Open(std::u16string_view path,
                                                                          REGSAM access) const;
  [[nodiscard]] platform::Result<SystemKey, platform::RegistryError> Make(std::u16string_view path);
  [[nodiscard]] platform::OpenedKey Hold(std::u16string_view path, SystemKey key);

  [[nodiscard]] Done Set(const OpenKeyState& state, std::u16string_view name,
                         const platform::RegistryValue& value);
  [[nodiscard]] Done DeleteValue(const OpenKeyState& state, std::u16string_view name);
  [[nodiscard]] Done Delete(std::u16string_view path);
  [[nodiscard]] std::vector<State> TakeLife(std::u16string_view fullPath);
  void GiveLife(const std::vector<State>& states);

  /// A change of the open group, or of the call that is made.
  struct MadeChange {
    UndoStep step;
    std::vector<State> deadKeys;  ///< Those that died with a deleted key.
  };
  [[nodiscard]] Done BeginWriting(std::chrono::milliseconds limit);
  [[nodiscard]] Done Keep(MadeChange&& change);
  [[nodiscard]] Done KeepValue(HKEY key, std::u16string path, std::u16string_view name);
  [[nodiscard]] Done KeepChanges();
  void UndoChanges();
  [[nodiscard]] Done Flush() const;

  enum class Reach : std::uint8_t { kOwn, kOnTheWay, kForeign };
  [[nodiscard]] Reach GetReach(std::u16string_view path) const;
  [[nodiscard]] Listed ListWay(const OpenKeyState& state, std::uint32_t index) const;

  [[nodiscard]] bool IsOrdered(std::u16string_view path) const;
  [[nodiscard]] Done NoteOrder(std::u16string_view parentPath, HKEY parent,
                               std::u16string_view name);
  [[nodiscard]] platform::Result<std::vector<std::u16string>, platform::RegistryError> ReadOrder(
      std::u16string_view path) const;
  [[nodiscard]] Done KeepOrderOf(std::u16string_view path);
  [[nodiscard]] platform::Result<std::vector<ListedKey>, platform::RegistryError> ListAll(
      std::u16string_view parentPath, HKEY parent) const;
  [[nodiscard]] Done WriteOrder(std::u16string_view parentPath, const std::vector<ListedKey>& keys,
                                std::u16string_view last);
  [[nodiscard]] Listed ListInOrder(const OpenKeyState& state, std::uint32_t index) const;

  const RegistryPlace m_place;
  const RegistryOptions m_options;
  platform::RegistryGate m_gate;

  // Used only by the thread that the gate has let in.
  bool m_isConnected = false;
  std::vector<std::weak_ptr<OpenKeyState>> m_open;
  WriterLock m_writer;
  UndoJournal m_journal;
  std::vector<MadeChange> m_undo;  ///< The last change last.
};

}  // namespace win32
