// Reads a registry file of arbitrary bytes: it is refused with a line of its own, or it can be
// imported, and what is then exported is read as the same registry.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "storage/registry_file.h"
#include "tests/fuzz/require.h"
#include "tests/machine/memory_registry.h"

namespace {

using Bytes = std::vector<std::byte>;

constexpr char kHeader[] = "Windows Registry Editor Version 5.00\r\n";

void Append(Bytes& file, unsigned unit) {
  file.push_back(static_cast<std::byte>(unit & 0xFF));
  file.push_back(static_cast<std::byte>(unit >> 8));
}

/// An input that begins with a zero is the whole file after it. Any other is what follows the
/// first line, a character a byte, so that the mistakes after the header are found soon.
Bytes ToFile(std::span<const std::byte> input) {
  if (!input.empty() && input.front() == std::byte{0}) {
    return {input.begin() + 1, input.end()};
  }
  Bytes file;
  Append(file, 0xFEFF);
  for (const char character : std::string(kHeader)) {
    Append(file, static_cast<unsigned char>(character));
  }
  for (const std::byte byte : input) {
    Append(file, std::to_integer<unsigned>(byte));
  }
  return file;
}

Bytes Export(platform::Registry& registry) {
  const auto file = storage::WriteRegistryFile(registry);
  Require(file.has_value(), "a registry in memory can be exported");
  return *file;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Bytes file = ToFile(std::as_bytes(std::span(data, size)));
  const auto parsed = storage::ParseRegistryFile(file);
  if (!parsed) {
    const auto lines = static_cast<std::size_t>(std::ranges::count(file, std::byte{'\n'})) + 1;
    Require(parsed.error().line <= lines && !parsed.error().message.empty(),
            "a refusal names a line of the file");
    return 0;
  }
  machine::MemoryRegistry registry;
  Require(storage::ApplyRegistryChanges(registry, parsed->changes).has_value(),
          "what is read can be imported");
  const Bytes exported = Export(registry);

  const auto again = storage::ParseRegistryFile(exported);
  Require(again.has_value(), "what is exported is read");
  machine::MemoryRegistry copy;
  Require(storage::ApplyRegistryChanges(copy, again->changes).has_value(), "and can be imported");
  Require(Export(copy) == exported, "as the same registry");
  return 0;
}
