#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/result.h"

namespace platform {

/// Why a registry did not do what it was asked.
enum class RegistryError : std::uint8_t {
  kNotFound,  ///< There is no such key or value, or the open key has been deleted.
  kInvalid,   ///< This contract does not allow such a name, length or order of calls.
  kBusy,      ///< Another holder keeps the store for longer than moments.
  kReadOnly,
  kFull,        ///< The medium is full.
  kDamaged,     ///< The store is there but cannot be read as one. It is left as it is.
  kNewerStore,  ///< A later version of the system made the store. It is left as it is.
  kLink,  ///< A file of the store is a symbolic link, which is neither read nor written through.
  kOther,
};

/// Returns whether a failure leaves a registry unable to keep the promise of the group in which it
/// happened.
[[nodiscard]] constexpr bool DoomsGroup(RegistryError error) {
  return error != RegistryError::kNotFound && error != RegistryError::kInvalid;
}

/// Type of a value, with the numbers of the Windows family; other numbers are kept as they are.
enum class RegistryType : std::uint32_t { kNone = 0, kString = 1, kBinary = 3, kDword = 4 };

// What a registry takes. Lengths of names count UTF-16 units.
inline constexpr std::size_t kMaxKeyNameLength = 255;
inline constexpr std::size_t kMaxKeyDepth = 512;
inline constexpr std::size_t kMaxValueNameLength = 16383;
inline constexpr std::size_t kMaxValueBytes = std::size_t{1} << 20;

/// Returns whether a registry takes `name` as the name of one key.
[[nodiscard]] inline bool IsKeyName(std::u16string_view name) {
  constexpr char16_t kFirstPrintable = u' ';
  return !name.empty() && name.size() <= kMaxKeyNameLength &&
         std::none_of(name.begin(), name.end(),
                      [](char16_t unit) { return unit < kFirstPrintable || unit == u'\\'; });
}

/// Returns whether a registry takes `name` as the name of a value.
[[nodiscard]] inline bool IsValueName(std::u16string_view name) {
  return name.size() <= kMaxValueNameLength && name.find(u'\0') == std::u16string_view::npos;
}

/// Returns the key names of `path` from the root downwards, and none for the root itself. Fails
/// with kInvalid if a registry does not take it as a path.
[[nodiscard]] inline Result<std::vector<std::u16string_view>, RegistryError> SplitKeyPath(
    std::u16string_view path) {
  std::vector<std::u16string_view> names;
  if (path.empty()) {
    return names;
  }
  while (true) {
    const std::size_t end = path.find(u'\\');
    const std::u16string_view name = path.substr(0, end);
    if (!IsKeyName(name) || names.size() == kMaxKeyDepth) {
      return Failure(RegistryError::kInvalid);
    }
    names.push_back(name);
    if (end == std::u16string_view::npos) {
      return names;
    }
    path.remove_prefix(end + 1);
  }
}

struct RegistryValue {
  RegistryType type = RegistryType::kNone;
  std::vector<std::byte> bytes;  ///< As written: of any length, with or without a terminator.
};

/// One open key. The destructor closes it. No key outlives its registry. A key is used by one
/// thread at a time. After the key itself is deleted, each call fails with kNotFound, even if a key
/// of the same name is made again. The same holds after the group that made the key was undone.
class RegistryKey {
 public:
  RegistryKey() = default;
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;
  virtual ~RegistryKey() = default;

  /// Returns the name of the subkey at `index` (0-based), or nothing if `index` is past the last
  /// subkey. If one is deleted, every later one moves down by one index.
  ///
  /// Tags are in the order in which they were made, on every system. So are the subkeys of every
  /// other key, unless the store is that of a system which lists them by their names.
  ///
  /// Another program may have made names that no path can hold. A name that is too long to be read
  /// gives kInvalid, and the enumeration can go on at the next index. Both hold for values as well.
  [[nodiscard]] virtual Result<std::optional<std::u16string>, RegistryError> EnumerateSubkey(
      std::uint32_t index) = 0;

  /// Returns the name of the value at `index` (0-based), or nothing if `index` is past the last
  /// value. A value that is written again keeps its place. Otherwise the order is the store's own:
  /// that in which they were made, or that of their names.
  [[nodiscard]] virtual Result<std::optional<std::u16string>, RegistryError> EnumerateValue(
      std::uint32_t index) = 0;

  /// Reads a whole value. The empty name is that of the key's default value. Another program may
  /// have made a value that is longer than a registry takes. It gives kInvalid.
  [[nodiscard]] virtual Result<RegistryValue, RegistryError> Query(
      std::u16string_view valueName) = 0;

  /// Writes exactly `bytes`, whatever text they hold. A value that is there keeps its name as first
  /// written and takes the new type.
  [[nodiscard]] virtual Result<void, RegistryError> Set(std::u16string_view valueName,
                                                        RegistryType type,
                                                        std::span<const std::byte> bytes) = 0;

  [[nodiscard]] virtual Result<void, RegistryError> DeleteValue(std::u16string_view valueName) = 0;
};

using OpenedKey = Result<std::unique_ptr<RegistryKey>, RegistryError>;

/// The settings store of the machine, below HKEY_LOCAL_MACHINE. A path is key names joined by
/// backslashes. The empty path is the root, which always exists and cannot be deleted. A key name
/// holds at least one character and no control character. A value name holds no zero character.
/// Names of keys and values are compared without regard to case and kept as first written.
///
/// Each change is atomic. It is durable when its call returns. May be called from any thread.
///
/// The registry of Windows knows neither groups nor the deletion of a key with others below it. Its
/// back end makes such changes one by one, and undoes them if one fails or the group is cancelled.
/// Others see them before. After a kill a part stays until the next process opens the registry to
/// change it, and so undoes it. A reader takes a tag with one value for what it is: half of one.
class Registry {
 public:
  Registry() = default;
  Registry(const Registry&) = delete;
  Registry& operator=(const Registry&) = delete;
  virtual ~Registry() = default;

  [[nodiscard]] virtual OpenedKey OpenKey(std::u16string_view path) = 0;

  /// Opens a key. Makes the key, and every key on its way, if it is missing.
  [[nodiscard]] virtual OpenedKey CreateKey(std::u16string_view path) = 0;

  /// Deletes a key with all subkeys and values below it. If this fails, nothing is deleted.
  [[nodiscard]] virtual Result<void, RegistryError> DeleteKey(std::u16string_view path) = 0;

  /// Begins a group: CommitGroup makes all changes of this thread until then as one atomic and
  /// durable change. Nobody else sees any of them before. Other threads of the process wait for the
  /// end of the group for moments, and get kBusy after that. What this thread reads is one state of
  /// the store, with its own changes. Groups do not nest. On a store that takes no writes a group
  /// serves for reading.
  ///
  /// A failure of the store within the group dooms it. That is every error but kNotFound and
  /// kInvalid. Each later call within a doomed group, and CommitGroup, fail with that error, and
  /// nothing of the group is kept. A group ends with CommitGroup, whatever that returns, or with
  /// CancelGroup, which undoes it. Prefer RegistryGroup.
  [[nodiscard]] virtual Result<void, RegistryError> BeginGroup() = 0;

  /// Begins a group in which nothing is changed. What is read is one state of the store, and it
  /// costs less than as many calls by themselves. No other process waits for the end of it. It ends
  /// as every group does.
  [[nodiscard]] virtual Result<void, RegistryError> BeginReading() { return BeginGroup(); }
  [[nodiscard]] virtual Result<void, RegistryError> CommitGroup() = 0;
  virtual void CancelGroup() = 0;
};

/// A group of changes in one scope. It is undone unless it is committed.
class RegistryGroup {
 public:
  [[nodiscard]] static Result<RegistryGroup, RegistryError> Begin(Registry& registry) {
    if (const auto begun = registry.BeginGroup(); !begun) {
      return Failure(begun.error());
    }
    return RegistryGroup(registry);
  }

  /// The same in which nothing is changed.
  [[nodiscard]] static Result<RegistryGroup, RegistryError> BeginReading(Registry& registry) {
    if (const auto begun = registry.BeginReading(); !begun) {
      return Failure(begun.error());
    }
    return RegistryGroup(registry);
  }

  /// Ends the group. Call it once.
  [[nodiscard]] Result<void, RegistryError> Commit() { return m_open.release()->CommitGroup(); }

 private:
  struct Cancel {
    void operator()(Registry* registry) const { registry->CancelGroup(); }
  };

  explicit RegistryGroup(Registry& registry) : m_open(&registry) {}

  std::unique_ptr<Registry, Cancel> m_open;  ///< The registry, until the group is committed.
};

}  // namespace platform
