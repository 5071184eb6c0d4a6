#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "backends/win32/windows.h"
#include "platform/registry.h"

namespace win32 {

// The calls of the system's registry, each as one that fails with our errors. Keys of 64-bit and of
// 32-bit programs are the same here.

/// An open key of the system. The destructor closes it.
class SystemKey {
 public:
  explicit SystemKey(HKEY key = nullptr) : m_key(key) {}
  SystemKey(const SystemKey&) = delete;
  SystemKey& operator=(const SystemKey&) = delete;
  SystemKey(SystemKey&& other) noexcept : m_key(std::exchange(other.m_key, nullptr)) {}
  SystemKey& operator=(SystemKey&& other) noexcept {
    std::swap(m_key, other.m_key);
    return *this;
  }
  ~SystemKey() {
    if (m_key != nullptr) {
      ::RegCloseKey(m_key);
    }
  }

  [[nodiscard]] HKEY Get() const { return m_key; }
  [[nodiscard]] bool IsOpen() const { return m_key != nullptr; }

 private:
  HKEY m_key;
};

using Done = platform::Result<void, platform::RegistryError>;

/// A key below another one, as the system lists it.
struct ListedKey {
  std::optional<std::u16string> name;  ///< None: it is longer than a registry takes.
  std::uint64_t written = 0;           ///< When it or one of its values was last changed.
};

/// A value with its name.
struct NamedValue {
  std::u16string name;
  platform::RegistryValue value;

  [[nodiscard]] friend bool operator==(const NamedValue& a, const NamedValue& b) {
    return a.name == b.name && a.value.type == b.value.type && a.value.bytes == b.value.bytes;
  }
};

/// A key with all that is below it.
struct KeyTree {
  std::vector<NamedValue> values;
  std::vector<std::pair<std::u16string, KeyTree>> keys;

  [[nodiscard]] friend bool operator==(const KeyTree&, const KeyTree&) = default;
};

/// Opens a key below `parent`, level by level, since the system bounds the length of one path.
[[nodiscard]] platform::Result<SystemKey, platform::RegistryError> OpenSystemKey(
    HKEY parent, std::u16string_view path, REGSAM access);

/// Makes one key below `parent`, or opens the one that is there.
[[nodiscard]] platform::Result<SystemKey, platform::RegistryError> MakeSystemKey(
    HKEY parent, std::u16string_view name);

/// Makes the key of a path with all that is missing on its way.
[[nodiscard]] platform::Result<SystemKey, platform::RegistryError> MakeSystemPath(
    HKEY hive, std::u16string_view path);

/// Returns the path of the key above and the name of the key in it.
[[nodiscard]] std::pair<std::u16string_view, std::u16string_view> SplitLast(
    std::u16string_view path);

/// Returns nothing after the last one.
[[nodiscard]] platform::Result<std::optional<ListedKey>, platform::RegistryError> ListSubkey(
    HKEY key, std::uint32_t index);
[[nodiscard]] platform::Result<std::optional<std::u16string>, platform::RegistryError> ListValue(
    HKEY key, std::uint32_t index);

/// Fails with kInvalid if the value has more bytes than `limit`.
[[nodiscard]] platform::Result<platform::RegistryValue, platform::RegistryError> ReadValue(
    HKEY key, std::u16string_view name, std::size_t limit = platform::kMaxValueBytes);
[[nodiscard]] Done WriteValue(HKEY key, std::u16string_view name,
                              const platform::RegistryValue& value);
[[nodiscard]] Done RemoveValue(HKEY key, std::u16string_view name);

[[nodiscard]] platform::Result<KeyTree, platform::RegistryError> ReadTree(
    HKEY key, std::size_t limit = platform::kMaxValueBytes);
[[nodiscard]] Done WriteTree(HKEY key, const KeyTree& tree);
/// Deletes a key with all that is below it. After a failure a part may be gone.
[[nodiscard]] Done RemoveTree(HKEY parent, std::u16string_view name);

/// Returns when the changes of the whole registry to which `key` belongs are on the medium.
[[nodiscard]] Done FlushRegistry(HKEY key);

}  // namespace win32
