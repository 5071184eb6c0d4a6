#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/registry.h"
#include "platform/result.h"
#include "storage/registry_file.h"
#include "storage/registry_file_text.h"

namespace storage {

/// Reads what follows the "=" of a value in a registry file. Each call fails at the first thing
/// that is not what it should be.
class RegistryValueReader {
 public:
  template <typename Value>
  using Read = platform::Result<Value, RegistryFileError>;

  /// If `isAnsi`, the file is of version 4, and the bytes of texts are in its code page too.
  RegistryValueReader(RegistryFileScanner& scanner, bool isAnsi)
      : m_scanner(scanner), m_isAnsi(isAnsi) {}

  [[nodiscard]] Read<platform::RegistryValue> ReadValue();

  /// Reads a text in quotation marks. It may go on over line ends, which are then part of it.
  [[nodiscard]] Read<std::u16string> ReadQuoted();

 private:
  [[nodiscard]] Read<platform::RegistryValue> ReadString();
  [[nodiscard]] Read<platform::RegistryValue> ReadDword();
  [[nodiscard]] Read<platform::RegistryValue> ReadHex();
  [[nodiscard]] Read<platform::RegistryType> ReadHexType();
  [[nodiscard]] Read<std::vector<std::byte>> ReadBytes();

  /// Passes over blanks, and over each backslash that continues the line on the next one.
  [[nodiscard]] Read<void> SkipContinuations();

  [[nodiscard]] tl::unexpected<RegistryFileError> Fail(std::string message) const;

  RegistryFileScanner& m_scanner;
  const bool m_isAnsi;
};

/// Returns the failure of a registry file at `line`.
[[nodiscard]] tl::unexpected<RegistryFileError> FailAt(std::size_t line, std::string message);

}  // namespace storage
