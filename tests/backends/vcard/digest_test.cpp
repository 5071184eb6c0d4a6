#include "backends/vcard/digest.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace vcard {
namespace {

std::string Hex(const Digest& digest) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string hex;
  for (const std::byte byte : digest) {
    hex += kDigits[static_cast<std::size_t>(byte) >> 4];
    hex += kDigits[static_cast<std::size_t>(byte) & 15];
  }
  return hex;
}

/// What stores hold depends on these bits: the published examples of SHA-256 (FIPS 180-2), their
/// first half.
TEST(Digest, IsTheFirstHalfOfSha256) {
  EXPECT_EQ(Hex(ComputeDigest("")), "e3b0c44298fc1c149afbf4c8996fb924");
  EXPECT_EQ(Hex(ComputeDigest("abc")), "ba7816bf8f01cfea414140de5dae2223");
  EXPECT_EQ(Hex(ComputeDigest("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq")),
            "248d6a61d20638b8e5c026930c3e6039");
  EXPECT_EQ(Hex(ComputeDigest(std::string(1'000'000, 'a'))), "cdc76e5c9914fb9281a1c7e284d73e67");
}

}  // namespace
}  // namespace vcard
