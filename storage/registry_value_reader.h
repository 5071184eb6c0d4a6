#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/registry.h"
#include "storage/registry_file.h"
#include "storage/registry_file_scanner.h"

namespace storage {

/// Reads what stands behind the "=" of a value in a registry file. Each call gives false, and says
/// why in the error it was given, where that is not what it should be.
class RegistryValueReader {
 public:
  /// If `isAnsi`, the file is of version 4, and the bytes of texts are in its code page too.
  RegistryValueReader(RegistryFileScanner& scanner, RegistryFileError& error, bool isAnsi)
      : m_scanner(scanner), m_error(error), m_isAnsi(isAnsi) {}

  [[nodiscard]] bool Read(platform::RegistryValue& value);

  /// Reads a text in quotation marks. It may go on over line ends, which are then part of it.
  [[nodiscard]] bool ReadQuoted(std::u16string& text);

 private:
  [[nodiscard]] bool ReadString(platform::RegistryValue& value);
  [[nodiscard]] bool ReadDword(platform::RegistryValue& value);
  [[nodiscard]] bool ReadHexType(platform::RegistryType& type);
  [[nodiscard]] bool ReadBytes(std::vector<std::byte>& bytes);

  /// Passes over blanks, and over each backslash that continues the line on the next one.
  [[nodiscard]] bool SkipContinuations();

  bool Fail(std::string message);
  bool FailAt(std::size_t line, std::string message);

  RegistryFileScanner& m_scanner;
  RegistryFileError& m_error;
  const bool m_isAnsi;
};

}  // namespace storage
