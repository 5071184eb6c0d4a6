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
  kNotFound,     ///< No such key or value, or the open key has been deleted.
  kNoMoreItems,  ///< The index of an enumeration lies behind the last item.
  kInvalid,      ///< A name, a length or an order of calls that this contract does not allow.
  kBusy,         ///< Another holder keeps the store for longer than moments.
  kReadOnly,
  kFull,        ///< The medium is full.
  kDamaged,     ///< The store is there but cannot be read as one. It is left as it is.
  kNewerStore,  ///< The store was made by a later version of the system. It is left as it is.
  kLink,  ///< A file of the store is a symbolic link, which is neither read nor written through.
  kOther,
};

/// Type of a value, with the numbers of the Windows family; other numbers are kept as they are.
enum class RegistryType : std::uint32_t { kNone = 0, kString = 1, kBinary = 3, kDword = 4 };

// What a registry takes. Lengths of names count UTF-16 units.
inline constexpr std::size_t kMaxKeyNameLength = 255;
inline constexpr std::size_t kMaxKeyDepth = 512;
inline constexpr std::size_t kMaxValueNameLength = 16383;
inline constexpr std::size_t kMaxValueBytes = std::size_t{1} << 20;

struct RegistryValue {
  RegistryType type = RegistryType::kNone;
  std::vector<std::byte> bytes;  ///< As written: of any length, with or without a terminator.
};

/// One open key. Closing is the destructor's work, and no key outlives its registry. Used by one
/// thread at a time. Once the key itself is deleted each call gives kNotFound, also after a key of
/// the same name was made again; so it does after the group that made the key was undone.
class RegistryKey {
 public:
  RegistryKey() = default;
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;
  virtual ~RegistryKey() = default;

  /// Stores the name of the subkey at `index` (0-based) in `name`. The order is that in which the
  /// subkeys were made; deleting one moves every later one down by one index. Another program may
  /// have made names that no path can hold; one that is too long to be read gives kInvalid, here
  /// and below, and the enumeration goes on at the next index.
  [[nodiscard]] virtual RegistryError EnumerateSubkey(std::uint32_t index,
                                                      std::u16string& name) = 0;

  /// Stores the name of the value at `index` (0-based) in `name`, in the order in which the values
  /// were made; writing a value again leaves it in its place.
  [[nodiscard]] virtual RegistryError EnumerateValue(std::uint32_t index, std::u16string& name) = 0;

  /// Reads a value whole. The empty name is that of the key's default value. One that another
  /// program made longer than a registry takes gives kInvalid.
  [[nodiscard]] virtual RegistryError Query(std::u16string_view valueName,
                                            RegistryValue& value) = 0;

  /// Writes exactly `bytes`, whatever text they hold. A value of that name keeps its name as first
  /// written and takes the new type.
  [[nodiscard]] virtual RegistryError Set(std::u16string_view valueName, RegistryType type,
                                          std::span<const std::byte> bytes) = 0;

  [[nodiscard]] virtual RegistryError DeleteValue(std::u16string_view valueName) = 0;
};

struct OpenedKey {
  std::unique_ptr<RegistryKey> key;  ///< Null exactly where `error` is not kNone.
  RegistryError error = RegistryError::kOther;
};

/// The settings store of the machine, below HKEY_LOCAL_MACHINE. Paths are key names joined by
/// backslashes; the empty path is the root, which always exists and cannot be deleted. A key name
/// holds at least one character and no control character, a value name no zero character. Names
/// of keys and values are compared without regard to case and kept as first written.
///
/// Each change is atomic, and durable when its call returns. An output parameter is left alone
/// where a call fails. May be called from any thread.
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

  /// Gathers what this thread does until CommitGroup into one atomic and durable change; until then
  /// nobody else sees any of it, other threads of the process wait for its end for moments and get
  /// kBusy thereafter, and what the thread reads is one state of the store, with its own changes.
  /// Groups do not nest. On a store that takes no writes a group serves for reading.
  ///
  /// A failure of the store within the group (every code but kNotFound, kNoMoreItems and kInvalid)
  /// dooms the group: the later calls within it and CommitGroup give that code, and nothing of it
  /// is kept. The group ends with CommitGroup, whatever that returns, or with CancelGroup, which
  /// undoes it. Prefer RegistryGroup.
  [[nodiscard]] virtual RegistryError BeginGroup() = 0;
  [[nodiscard]] virtual RegistryError CommitGroup() = 0;
  virtual void CancelGroup() = 0;
};

/// A group of changes in one scope, undone unless it is committed.
class RegistryGroup {
 public:
  explicit RegistryGroup(Registry& registry)
      : m_registry(registry), m_beginError(registry.BeginGroup()), m_open(m_beginError == kBegun) {}
  RegistryGroup(const RegistryGroup&) = delete;
  RegistryGroup& operator=(const RegistryGroup&) = delete;
  ~RegistryGroup() {
    if (m_open) {
      m_registry.CancelGroup();
    }
  }

  /// kNone where the group is open; else no change may be made.
  [[nodiscard]] RegistryError BeginError() const { return m_beginError; }

  [[nodiscard]] RegistryError Commit() {
    if (!m_open) {
      return m_beginError == kBegun ? RegistryError::kInvalid : m_beginError;
    }
    m_open = false;
    return m_registry.CommitGroup();
  }

 private:
  static constexpr RegistryError kBegun = RegistryError::kNone;

  Registry& m_registry;
  RegistryError m_beginError;
  bool m_open;
};

}  // namespace platform
