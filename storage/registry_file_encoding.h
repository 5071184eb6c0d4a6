#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace storage {

/// What is wrong with the encoding of a registry file, in English; empty where it is UTF-16LE
/// behind its byte-order mark. Names the encodings that other programs save such files in.
[[nodiscard]] std::string_view CheckRegistryFileEncoding(std::span<const std::byte> file);

}  // namespace storage
