#include "backends/win32/registry_calls.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

#include "backends/win32/system_calls.h"

namespace win32 {
namespace {

using platform::Failure;
using platform::RegistryError;
using platform::RegistryType;
using platform::RegistryValue;
using platform::Result;

RegistryError ToRegistryError(LSTATUS error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_KEY_DELETED:
      return RegistryError::kNotFound;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
      return RegistryError::kReadOnly;
    case ERROR_DISK_FULL:
    case ERROR_NO_SYSTEM_RESOURCES:
      return RegistryError::kFull;
    case ERROR_BADDB:
    case ERROR_BADKEY:
    case ERROR_CANTREAD:
    case ERROR_REGISTRY_CORRUPT:
      return RegistryError::kDamaged;
    default:
      return RegistryError::kOther;
  }
}

Done ToDone(LSTATUS error) {
  return error == ERROR_SUCCESS ? Done() : Failure(ToRegistryError(error));
}

// The registry of a machine is the same one for 32-bit programs of a 64-bit Windows.
constexpr REGSAM kOneView = KEY_WOW64_64KEY;

/// The bytes of a value between two units that are no zero. The system looks at the unit before and
/// after a text to see whether its writer forgot the zero, and would add it.
class FencedBytes {
 public:
  explicit FencedBytes(const std::vector<std::byte>& bytes)
      : m_fenced(bytes.size() + 2 * kFence, std::byte{0xFF}) {
    if (!bytes.empty()) {
      std::memcpy(m_fenced.data() + kFence, bytes.data(), bytes.size());
    }
  }

  [[nodiscard]] const BYTE* Get() const {
    return reinterpret_cast<const BYTE*>(m_fenced.data() + kFence);
  }

 private:
  static constexpr std::size_t kFence = sizeof(char16_t);

  std::vector<std::byte> m_fenced;
};

}  // namespace

Result<SystemKey, RegistryError> OpenSystemKey(HKEY parent, std::u16string_view path,
                                               REGSAM access) {
  constexpr std::size_t kLongPath = 8000;
  SystemKey key;
  do {
    // As much of the path as the system takes at once, up to the end of a name.
    std::size_t end = path.size();
    if (end > kLongPath) {
      end = path.rfind(u'\\', kLongPath);
    }
    const std::u16string part(path.substr(0, end));
    path.remove_prefix(std::min(end + 1, path.size()));
    HKEY opened = nullptr;
    const LSTATUS error = ::RegOpenKeyExW(key.IsOpen() ? key.Get() : parent, ToWide(part), 0,
                                          access | kOneView, &opened);
    if (error != ERROR_SUCCESS) {
      return Failure(ToRegistryError(error));
    }
    key = SystemKey(opened);
  } while (!path.empty());
  return key;
}

Result<SystemKey, RegistryError> MakeSystemKey(HKEY parent, std::u16string_view name) {
  HKEY made = nullptr;
  const LSTATUS error =
      ::RegCreateKeyExW(parent, ToWide(std::u16string(name)), 0, nullptr, REG_OPTION_NON_VOLATILE,
                        KEY_READ | KEY_WRITE | kOneView, nullptr, &made, nullptr);
  if (error != ERROR_SUCCESS) {
    return Failure(ToRegistryError(error));
  }
  return SystemKey(made);
}

Result<SystemKey, RegistryError> MakeSystemPath(HKEY hive, std::u16string_view path) {
  // Name by name, since a user may be allowed to write to a key but not to those above it. Those
  // are only read.
  auto key = OpenSystemKey(hive, u"", KEY_READ);
  while (key && !path.empty()) {
    const std::size_t end = std::min(path.find(u'\\'), path.size());
    const std::u16string name(path.substr(0, end));
    path.remove_prefix(std::min(end + 1, path.size()));
    if (auto there =
            OpenSystemKey(key->Get(), name, path.empty() ? KEY_READ | KEY_WRITE : KEY_READ)) {
      key = std::move(there);
    } else {
      key = MakeSystemKey(key->Get(), name);
    }
  }
  return key;
}

std::pair<std::u16string_view, std::u16string_view> SplitLast(std::u16string_view path) {
  const std::size_t at = path.rfind(u'\\');
  return at == std::u16string_view::npos ? std::pair(std::u16string_view(), path)
                                         : std::pair(path.substr(0, at), path.substr(at + 1));
}

Result<std::optional<ListedKey>, RegistryError> ListSubkey(HKEY key, std::uint32_t index) {
  constexpr unsigned kHalf = 32;
  std::array<wchar_t, platform::kMaxKeyNameLength + 1> name{};
  auto length = static_cast<DWORD>(name.size());
  FILETIME written{};
  const LSTATUS error =
      ::RegEnumKeyExW(key, index, name.data(), &length, nullptr, nullptr, nullptr, &written);
  if (error == ERROR_NO_MORE_ITEMS) {
    return std::nullopt;
  }
  if (error == ERROR_MORE_DATA) {
    return ListedKey{};
  }
  if (error != ERROR_SUCCESS) {
    return Failure(ToRegistryError(error));
  }
  return ListedKey{std::u16string(FromWide({name.data(), length})),
                   std::uint64_t{written.dwHighDateTime} << kHalf | written.dwLowDateTime};
}

Result<std::optional<std::u16string>, RegistryError> ListValue(HKEY key, std::uint32_t index) {
  std::u16string name(platform::kMaxValueNameLength + 1, u'\0');
  auto length = static_cast<DWORD>(name.size());
  const LSTATUS error =
      ::RegEnumValueW(key, index, ToWide(name.data()), &length, nullptr, nullptr, nullptr, nullptr);
  if (error == ERROR_NO_MORE_ITEMS) {
    return std::nullopt;
  }
  if (error != ERROR_SUCCESS) {
    return Failure(error == ERROR_MORE_DATA ? RegistryError::kInvalid : ToRegistryError(error));
  }
  name.resize(length);
  return name;
}

Result<RegistryValue, RegistryError> ReadValue(HKEY key, std::u16string_view name,
                                               std::size_t limit) {
  const std::u16string ended(name);
  RegistryValue value;
  DWORD type = 0;
  DWORD length = 0;
  LSTATUS error = ::RegQueryValueExW(key, ToWide(ended), nullptr, &type, nullptr, &length);
  // Another program may write a longer value between two of these calls.
  do {
    if (error != ERROR_SUCCESS && error != ERROR_MORE_DATA) {
      return Failure(ToRegistryError(error));
    }
    if (length > limit) {
      return Failure(RegistryError::kInvalid);
    }
    // The system ends a text without a zero, if there is room, and does not count that.
    value.bytes.resize(length + sizeof(char16_t));
    length = static_cast<DWORD>(value.bytes.size());
    error = ::RegQueryValueExW(key, ToWide(ended), nullptr, &type,
                               reinterpret_cast<BYTE*>(value.bytes.data()), &length);
  } while (error == ERROR_MORE_DATA);
  if (error != ERROR_SUCCESS) {
    return Failure(ToRegistryError(error));
  }
  value.type = static_cast<RegistryType>(type);
  value.bytes.resize(length);
  return value;
}

Done WriteValue(HKEY key, std::u16string_view name, const RegistryValue& value) {
  const FencedBytes bytes(value.bytes);
  return ToDone(::RegSetValueExW(key, ToWide(std::u16string(name)), 0,
                                 static_cast<DWORD>(value.type), bytes.Get(),
                                 static_cast<DWORD>(value.bytes.size())));
}

Done RemoveValue(HKEY key, std::u16string_view name) {
  return ToDone(::RegDeleteValueW(key, ToWide(std::u16string(name))));
}

Result<KeyTree, RegistryError> ReadTree(HKEY key, std::size_t limit) {
  KeyTree tree;
  for (std::uint32_t i = 0;; ++i) {
    auto name = ListValue(key, i);
    if (!name) {
      return Failure(name.error());
    }
    if (!*name) {
      break;
    }
    auto value = ReadValue(key, **name, limit);
    if (!value) {
      return Failure(value.error());
    }
    tree.values.push_back({std::move(**name), std::move(*value)});
  }
  for (std::uint32_t i = 0;; ++i) {
    auto listed = ListSubkey(key, i);
    if (!listed) {
      return Failure(listed.error());
    }
    if (!*listed) {
      return tree;
    }
    if (!(*listed)->name) {
      return Failure(RegistryError::kInvalid);
    }
    const auto subkey = OpenSystemKey(key, *(*listed)->name, KEY_READ);
    auto below = subkey ? ReadTree(subkey->Get(), limit) : Failure(subkey.error());
    if (!below) {
      return Failure(below.error());
    }
    tree.keys.emplace_back(std::move(*(*listed)->name), std::move(*below));
  }
}

Done WriteTree(HKEY key, const KeyTree& tree) {
  for (const NamedValue& value : tree.values) {
    if (const auto written = WriteValue(key, value.name, value.value); !written) {
      return written;
    }
  }
  for (const auto& [name, below] : tree.keys) {
    const auto made = MakeSystemKey(key, name);
    const auto written = made ? WriteTree(made->Get(), below) : Failure(made.error());
    if (!written) {
      return written;
    }
  }
  return {};
}

Done RemoveTree(HKEY parent, std::u16string_view name) {
  return ToDone(::RegDeleteTreeW(parent, ToWide(std::u16string(name))));
}

Done FlushRegistry(HKEY key) { return ToDone(::RegFlushKey(key)); }

}  // namespace win32
