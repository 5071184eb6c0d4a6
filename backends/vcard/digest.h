#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace vcard {

/// Stands for a text of any length; no two texts that occur share one. The first half of the
/// SHA-256 of its bytes: what is stored stays good.
using Digest = std::array<std::byte, 16>;

struct DigestHash {
  std::size_t operator()(const Digest& digest) const {
    std::size_t hash = 0;
    std::memcpy(&hash, digest.data(), sizeof hash);
    return hash;
  }
};

[[nodiscard]] Digest ComputeDigest(std::string_view text);

}  // namespace vcard
