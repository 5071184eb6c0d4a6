#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace ebook {

/// Stands for a text of any length; no two texts that occur share one.
using Digest = std::array<std::byte, 16>;

struct DigestHash {
  std::size_t operator()(const Digest& digest) const {
    std::size_t hash = 0;
    std::memcpy(&hash, digest.data(), sizeof hash);
    return hash;
  }
};

[[nodiscard]] Digest ComputeDigest(std::string_view text);

}  // namespace ebook
