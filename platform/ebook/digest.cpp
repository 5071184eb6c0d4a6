#include "platform/ebook/digest.h"

#include <glib.h>

#include <algorithm>
#include <memory>

namespace ebook {

Digest ComputeDigest(std::string_view text) {
  constexpr std::size_t kSha256Size = 32;
  const std::unique_ptr<GChecksum, decltype(&g_checksum_free)> checksum(
      g_checksum_new(G_CHECKSUM_SHA256), &g_checksum_free);
  const std::string_view bytes = text.empty() ? std::string_view("") : text;
  g_checksum_update(checksum.get(), reinterpret_cast<const guchar*>(bytes.data()),
                    static_cast<gssize>(bytes.size()));
  std::array<guchar, kSha256Size> whole{};
  gsize length = whole.size();
  g_checksum_get_digest(checksum.get(), whole.data(), &length);
  Digest digest{};
  std::transform(whole.begin(), whole.begin() + digest.size(), digest.begin(),
                 [](guchar byte) { return std::byte{byte}; });
  return digest;
}

}  // namespace ebook
