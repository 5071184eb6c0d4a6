#include "storage/registry_file.h"

#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

#include "backends/text/say.h"
#include "backends/text/utf.h"
#include "resources/report_strings.h"

// The settings as a registry file of Windows, by which they move to and from a Windows machine. A
// file is understood as a whole before its first change is made, and its changes are made in one
// group. So a file with one wrong line changes nothing.
namespace storage {

using platform::Failure;
using platform::RegistryError;
using platform::Result;

namespace {

/// The key that the changes are at. Most changes of a file are values of the key before, which is
/// so opened once. It is closed before any key is deleted, since it may lie below that.
class CurrentKey {
 public:
  explicit CurrentKey(platform::Registry& registry) : m_registry(registry) {}

  /// Opens the key of `path`, and makes it if it is missing.
  Result<void, RegistryError> MoveTo(const std::u16string& path) {
    if (m_key && m_path == path) {
      return {};
    }
    platform::OpenedKey opened = m_registry.CreateKey(path);
    if (!opened) {
      return Failure(opened.error());
    }
    m_key = std::move(*opened);
    m_path = path;
    return {};
  }

  void Close() { m_key.reset(); }

  [[nodiscard]] platform::RegistryKey& Get() const { return *m_key; }

 private:
  platform::Registry& m_registry;
  std::unique_ptr<platform::RegistryKey> m_key;
  std::u16string m_path;
};

Result<void, RegistryError> Apply(platform::Registry& registry, CurrentKey& current,
                                  const RegistryChange& change) {
  if (change.kind == RegistryChange::Kind::kDeleteKey) {
    current.Close();
    return platform::AcceptMissing(registry.DeleteKey(change.key));
  }
  const auto moved = current.MoveTo(change.key);
  if (!moved || change.kind == RegistryChange::Kind::kCreateKey) {
    return moved;
  }
  if (change.kind == RegistryChange::Kind::kDeleteValue) {
    return platform::AcceptMissing(current.Get().DeleteValue(change.valueName));
  }
  return current.Get().Set(change.valueName, change.value.type, change.value.bytes);
}

tl::unexpected<RegistryFileError> StoreFailure(RegistryError error, std::size_t line) {
  return Failure(RegistryFileError{line, ExplainRegistryError(error), error});
}

/// What an enumeration gives.
using ListedName = platform::Result<std::optional<std::u16string>, RegistryError>;

/// For a terminal: a name of another program may hold anything, and must not move the cursor.
std::string Escape(std::u16string_view name) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  constexpr unsigned kBitsOfDigit = 4;
  std::string escaped;
  for (const char character : text::ToUtf8(name)) {
    const auto code = static_cast<unsigned char>(character);
    if (character == '\\') {
      escaped += "\\\\";
    } else if (character == '\n') {
      escaped += "\\n";
    } else if (code < ' ') {
      escaped += "\\x";
      escaped += kDigits[code >> kBitsOfDigit];
      escaped += kDigits[code & 0xF];
    } else {
      escaped += character;
    }
  }
  return escaped;
}

std::u16string_view TextOf(RegistryError error) {
  switch (error) {
    case RegistryError::kNotFound:
      return resources::kNoSuchKey;
    case RegistryError::kInvalid:
      return resources::kBadKeyOrLength;
    case RegistryError::kBusy:
      return resources::kStoreBusy;
    case RegistryError::kReadOnly:
      return resources::kStoreReadOnly;
    case RegistryError::kFull:
      return resources::kDiskFull;
    case RegistryError::kDamaged:
      return resources::kStoreDamaged;
    case RegistryError::kLink:
      return resources::kStoreIsLink;
    case RegistryError::kNewerStore:
      return resources::kStoreIsNewer;
    case RegistryError::kOther:
      break;
  }
  return resources::kStoreNotReached;
}

constexpr std::string_view kTooLong = "(longer than can be read)";

std::string NameOf(const ListedName& name) {
  if (!name) {
    return std::string(kTooLong);
  }
  return (*name)->empty() ? "(without a name)" : Escape(**name);
}

/// Whether there is an item: one that can be named, or one that cannot be read.
bool IsThere(const ListedName& name) {
  return name ? name->has_value() : name.error() == RegistryError::kInvalid;
}

std::optional<std::string> FindUnusableValue(platform::RegistryKey& key,
                                             const std::u16string& path) {
  ListedName name = key.EnumerateValue(0);
  for (std::uint32_t i = 1; IsThere(name); name = key.EnumerateValue(i++)) {
    const std::string start = text::ToUtf8(path) + ": ";
    if (!name || !platform::IsValueName(**name)) {
      return start + NameOf(name);
    }
    if (const auto value = key.Query(**name); !value && value.error() == RegistryError::kInvalid) {
      return start + Escape(**name) + ' ' + std::string(kTooLong);
    }
  }
  return std::nullopt;
}

// Ends at the depth to which the registry opens keys.
std::optional<std::string> FindBelow(platform::Registry& registry, const std::u16string& path) {
  const platform::OpenedKey opened = registry.OpenKey(path);
  if (!opened) {
    return opened.error() == RegistryError::kInvalid ? std::optional(text::ToUtf8(path))
                                                     : std::nullopt;
  }
  auto found = FindUnusableValue(**opened, path);
  const std::u16string start = path.empty() ? path : path + u'\\';
  for (std::uint32_t i = 0; !found; ++i) {
    const ListedName name = (*opened)->EnumerateSubkey(i);
    if (!IsThere(name)) {
      break;
    }
    // The first one is enough: the user looks for it and asks again.
    found = name && platform::IsKeyName(**name) ? FindBelow(registry, start + **name)
                                                : text::ToUtf8(start) + NameOf(name);
  }
  return found;
}

}  // namespace

Result<void, RegistryFileError> ApplyRegistryChanges(platform::Registry& registry,
                                                     std::span<const RegistryChange> changes) {
  // All changes are made or none is. If one fails, the group ends without Commit, which takes the
  // others back.
  auto group = platform::RegistryGroup::Begin(registry);
  if (!group) {
    return StoreFailure(group.error(), 0);
  }
  CurrentKey current(registry);
  for (const RegistryChange& change : changes) {
    if (const auto applied = Apply(registry, current, change); !applied) {
      return StoreFailure(applied.error(), change.line);
    }
  }
  if (const auto committed = group->Commit(); !committed) {
    return StoreFailure(committed.error(), 0);
  }
  return {};
}

std::string ExplainRegistryError(RegistryError error) { return text::Say(TextOf(error)); }

std::optional<std::string> FindUnusableKey(platform::Registry& registry,
                                           std::u16string_view start) {
  // Within a group, so that keys that come and go meanwhile are no surprise.
  const auto group = platform::RegistryGroup::Begin(registry);
  return group ? FindBelow(registry, std::u16string(start)) : std::nullopt;
}

}  // namespace storage
