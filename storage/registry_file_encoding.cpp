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

std::string_view CheckRegistryFileEncoding(std::span<const std::byte> file) {
  if (file.empty()) {
    return "the file is empty";
  }
  if (BeginsWith(file, "\xFF\xFE")) {
    return file.size() % 2 == 0 ? "" : "the file ends in the middle of a character";
  }
  if (BeginsWith(file, "REGEDIT4")) {
    return "this is a file of version 4 in a Windows code page; export it as version 5.00";
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
