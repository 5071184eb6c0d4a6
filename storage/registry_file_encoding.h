#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace storage {

/// Whether it is a file of version 4, each byte of which is a character.
[[nodiscard]] bool IsAnsiRegistryFile(std::span<const std::byte> file);

/// What is wrong with the encoding of any other registry file, in English; empty if it is UTF-16LE
/// with its byte-order mark. Names the encodings that other programs save such files in.
[[nodiscard]] std::string_view CheckRegistryFileEncoding(std::span<const std::byte> file);

/// Text in the code page Windows-1252. The five bytes that it leaves open stay as they are.
[[nodiscard]] std::u16string FromWindows1252(std::span<const std::byte> bytes);

}  // namespace storage
