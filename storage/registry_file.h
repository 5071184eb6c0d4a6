#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"
#include "platform/result.h"

namespace storage {

/// One change that a registry file asks for.
struct RegistryChange {
  enum class Kind : std::uint8_t { kCreateKey, kDeleteKey, kSetValue, kDeleteValue };

  Kind kind = Kind::kCreateKey;
  std::size_t line = 0;           ///< 1-based, of the file.
  std::u16string key;             ///< Path below HKEY_LOCAL_MACHINE; empty for that itself.
  std::u16string valueName;       ///< Of values only.
  platform::RegistryValue value;  ///< With kSetValue only.
};

/// What a registry file asks for.
struct RegistryFileContent {
  std::vector<RegistryChange> changes;  ///< In their order.
  std::size_t passedOver = 0;  ///< Keys of other hives, each with its values: there are none here.
};

/// Why a registry file was not taken.
struct RegistryFileError {
  std::size_t line = 0;  ///< 1-based; 0 if no line is to blame.
  std::string message;   ///< In English, without the line and without a full stop.
  std::optional<platform::RegistryError> store = {};  ///< Nothing if the file itself is wrong.
};

/// Longest registry file that is read, in bytes.
inline constexpr std::uint64_t kMaxRegistryFileLength = std::uint64_t{1} << 28;

/// Reads a registry file of the Windows family: version 5.00, in UTF-16LE with its byte-order mark,
/// or version 4 ("REGEDIT4"), in the code page Windows-1252. Fails with the first thing that is
/// wrong with it.
///
/// HKEY_LOCAL_MACHINE alone is known. What 64-bit Windows keeps for programs of 32 bits in
/// Software\WOW6432Node is in Software here, as it was on the device.
[[nodiscard]] platform::Result<RegistryFileContent, RegistryFileError> ParseRegistryFile(
    std::span<const std::byte> file);

/// Makes all changes of a file, or none of them.
[[nodiscard]] platform::Result<void, RegistryFileError> ApplyRegistryChanges(
    platform::Registry& registry, std::span<const RegistryChange> changes);

/// Returns such a file with the key of `path` and all below it. Without a path it holds the whole
/// registry. The same keys and values give the same bytes. If they are read again, they give
/// the same keys and values, byte for byte. Fails with kInvalid if another program made a name or a
/// length that could not be read again.
[[nodiscard]] platform::Result<std::vector<std::byte>, platform::RegistryError> WriteRegistryFile(
    platform::Registry& registry, std::u16string_view path = {});

/// Returns the code in words for the user, without a full stop.
[[nodiscard]] std::string ExplainRegistryError(platform::RegistryError error);

/// Returns the path of the first key from `start` on that cannot be opened by its path. Another
/// program may make such a key in a store on disk: its name is empty, has a backslash or a control
/// character, or is too long, or the key lies too deep. A value that cannot be asked for, or is too
/// long, is named with its key. Names are escaped, so that they stay on one line. Returns nothing
/// if there is none, or if the registry cannot be read.
[[nodiscard]] std::optional<std::string> FindUnusableKey(platform::Registry& registry,
                                                         std::u16string_view start = {});

}  // namespace storage
