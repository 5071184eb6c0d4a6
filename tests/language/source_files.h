#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

/// The bytes of a file of the source tree.
inline std::vector<std::byte> ReadSourceFile(const std::filesystem::path& path) {
  std::ifstream stream(std::filesystem::path(VOXTREL_SOURCE_DIR) / path, std::ios::binary);
  const std::string content{std::istreambuf_iterator<char>(stream), {}};
  std::vector<std::byte> bytes;
  for (const char byte : content) {
    bytes.push_back(static_cast<std::byte>(byte));
  }
  return bytes;
}
