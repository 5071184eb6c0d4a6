#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

enum class RegistryError : std::uint8_t {
  kNone,
  kNotFound,     ///< No such key or value.
  kNoMoreItems,  ///< The index of an enumeration lies behind the last subkey.
  kBusy,         ///< Another process holds the store for longer than moments.
  kReadOnly,
  kFull,     ///< The medium is full.
  kDamaged,  ///< The store is there but cannot be read as one.
  kOther,
};

/// Type of a value, with the numbers of the Windows family; other numbers are kept as they are.
enum class RegistryType : std::uint32_t { kNone = 0, kString = 1, kBinary = 3, kDword = 4 };

struct RegistryValue {
  RegistryType type = RegistryType::kNone;
  std::vector<std::byte> bytes;  ///< As written: of any length, with or without a terminator.
};

/// One open key. Closing is the destructor's work. Used by one thread at a time.
class RegistryKey {
 public:
  RegistryKey() = default;
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;
  virtual ~RegistryKey() = default;

  /// Stores the name of the subkey at `index` (0-based) in `name`. The order is fixed; deleting a
  /// subkey moves every later one down by one index.
  [[nodiscard]] virtual RegistryError EnumerateSubkey(std::uint32_t index,
                                                      std::u16string& name) = 0;

  /// Stores the name of the value at `index` (0-based) in `name`.
  [[nodiscard]] virtual RegistryError EnumerateValue(std::uint32_t index, std::u16string& name) = 0;

  [[nodiscard]] virtual RegistryError Query(std::u16string_view valueName,
                                            RegistryValue& value) = 0;

  /// Writes exactly `bytes`, whatever text they hold. Durable when it returns.
  [[nodiscard]] virtual RegistryError Set(std::u16string_view valueName, RegistryType type,
                                          std::span<const std::byte> bytes) = 0;

  [[nodiscard]] virtual RegistryError DeleteValue(std::u16string_view valueName) = 0;
};

struct OpenedKey {
  std::unique_ptr<RegistryKey> key;  ///< Null exactly where `error` is not kNone.
  RegistryError error = RegistryError::kOther;
};

/// The settings store of the machine, below HKEY_LOCAL_MACHINE. Paths are key names joined by
/// backslashes; names of keys and values are compared without regard to case and kept as first
/// written. Each change is atomic, and durable when its call returns. May be called from any
/// thread.
class Registry {
 public:
  Registry() = default;
  Registry(const Registry&) = delete;
  Registry& operator=(const Registry&) = delete;
  virtual ~Registry() = default;

  [[nodiscard]] virtual OpenedKey OpenKey(std::u16string_view path) = 0;

  /// Opens the key, made with every missing key on its way.
  [[nodiscard]] virtual OpenedKey CreateKey(std::u16string_view path) = 0;

  /// Deletes a key with all subkeys and values below it, or nothing.
  [[nodiscard]] virtual RegistryError DeleteKey(std::u16string_view path) = 0;

  /// Gathers the changes made by this thread until Commit into one atomic and durable change. A
  /// group that is not committed is undone by CancelGroup. Groups do not nest.
  [[nodiscard]] virtual RegistryError BeginGroup() = 0;
  [[nodiscard]] virtual RegistryError CommitGroup() = 0;
  virtual void CancelGroup() = 0;
};

}  // namespace platform
