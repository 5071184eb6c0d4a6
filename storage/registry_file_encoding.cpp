#include "storage/registry_file_encoding.h"

#include <algorithm>

namespace storage {

namespace {

bool BeginsWith(std::span<const std::byte> file, std::string_view bytes) {
  return file.size() >= bytes.size() &&
         std::equal(bytes.begin(), bytes.end(), file.begin(), [](char expected, std::byte actual) {
           return static_cast<std::byte>(expected) == actual;
         });
}

}  // namespace

bool IsAnsiRegistryFile(std::span<const std::byte> file) { return BeginsWith(file, "REGEDIT4"); }

std::u16string FromWindows1252(std::span<const std::byte> bytes) {
  // From 0x80 on; all other bytes have the numbers of their characters.
  constexpr std::u16string_view kMiddle =
      u"\u20AC\x81\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\x8D\u017D\x8F"
      u"\x90\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\x9D\u017E"
      u"\u0178";
  constexpr std::size_t kFirst = 0x80;
  static_assert(kMiddle.size() == 32);
  std::u16string text;
  text.reserve(bytes.size());
  for (const std::byte byte : bytes) {
    const auto number = std::to_integer<char16_t>(byte);
    const bool isMiddle = number >= kFirst && number < kFirst + kMiddle.size();
    text += isMiddle ? kMiddle[number - kFirst] : number;
  }
  return text;
}

std::string_view CheckRegistryFileEncoding(std::span<const std::byte> file) {
  if (file.empty()) {
    return "the file is empty";
  }
  if (BeginsWith(file, "\xFF\xFE")) {
    return file.size() % 2 == 0 ? "" : "the file ends in the middle of a character";
  }
  if (BeginsWith(file, "\xEF\xBB\xBF") || BeginsWith(file, "Windows Registry Editor")) {
    return "the file is saved as UTF-8 or in a Windows code page; save it as UTF-16LE, which some "
           "editors call Unicode";
  }
  if (BeginsWith(file, "\xFE\xFF")) {
    return "the file is saved as big-endian UTF-16; save it as UTF-16LE";
  }
  return "this is not a registry file: it does not begin with the byte-order mark of UTF-16LE";
}

}  // namespace storage
