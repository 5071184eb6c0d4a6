#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"
#include "platform/registry_gate.h"

namespace machine {

/// The registry in memory, gone with the object. Nothing of it fails by itself.
class MemoryRegistry final : public platform::Registry {
 public:
  /// `initialKeys` are the keys that the new store is given, without values. `busyLimit` is how
  /// long a call waits for another thread's group before kBusy.
  explicit MemoryRegistry(const std::vector<std::u16string>& initialKeys = {},
                          std::chrono::milliseconds busyLimit = std::chrono::seconds(2));

  [[nodiscard]] platform::OpenedKey OpenKey(std::u16string_view path) override;
  [[nodiscard]] platform::OpenedKey CreateKey(std::u16string_view path) override;
  [[nodiscard]] platform::Result<void, platform::RegistryError> DeleteKey(
      std::u16string_view path) override;
  [[nodiscard]] platform::Result<void, platform::RegistryError> BeginGroup() override;
  [[nodiscard]] platform::Result<void, platform::RegistryError> CommitGroup() override;
  void CancelGroup() override;

 private:
  class Key;

  /// A key's number, never used again once the key is deleted.
  using Number = std::uint64_t;

  struct Value {
    std::u16string name;
    std::u16string foldedName;
    platform::RegistryValue content;
  };

  struct Node {
    std::u16string name;
    std::u16string foldedName;
    std::vector<Number> subkeys;  ///< In the order in which they were made.
    std::map<std::u16string, Number, std::less<>> subkeysByName;  ///< By their folded names.
    std::vector<Value> values;                                    ///< As the subkeys.
  };

  using Names = std::vector<std::u16string_view>;

  [[nodiscard]] static Number FindSubkey(const Node& node, std::u16string_view name);
  [[nodiscard]] Number FindPath(const Names& names) const;
  [[nodiscard]] Number CreatePath(const Names& names);
  void DeleteTree(Number number);
  [[nodiscard]] platform::OpenedKey Opened(Number number);
  void EndGroup();

  platform::RegistryGate m_gate;

  // Used only by the thread that the gate has let in.
  std::map<Number, Node> m_nodes;
  Number m_lastNumber;
  std::map<Number, Node> m_beforeGroup;
};

}  // namespace machine
