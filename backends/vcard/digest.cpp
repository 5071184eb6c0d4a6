#include "backends/vcard/digest.h"

#include <nettle/sha2.h>

namespace vcard {

Digest ComputeDigest(std::string_view text) {
  sha256_ctx state{};
  ::sha256_init(&state);
  ::sha256_update(&state, text.size(), reinterpret_cast<const std::uint8_t*>(text.data()));
  Digest digest{};
  ::sha256_digest(&state, digest.size(), reinterpret_cast<std::uint8_t*>(digest.data()));
  return digest;
}

}  // namespace vcard
