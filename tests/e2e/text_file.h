#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace e2e {

/// The content of a file; empty if it cannot be read.
[[nodiscard]] inline std::string ReadText(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace e2e
