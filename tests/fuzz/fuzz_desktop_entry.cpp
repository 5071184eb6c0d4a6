// Reads a desktop file of arbitrary bytes and makes the command that opens an address: whatever the
// file says, the address is within one argument, and its own letters are never read as a command.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "backends/desktop/desktop_entry.h"
#include "tests/fuzz/require.h"

namespace {

/// Each letter of it means something to a shell, a desktop file or a list of arguments.
const std::string kHostile = "file:///a b\"'$(c);%u%%\\\n--x";
const std::string kPlain = "file:///x";

bool Holds(const std::string& argument, const std::string& url) {
  return argument.find(url) != std::string::npos;
}

std::string Replaced(std::string text) {
  for (std::size_t at = text.find(kHostile); at != std::string::npos;
       at = text.find(kHostile, at + kPlain.size())) {
    text.replace(at, kHostile.size(), kPlain);
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view file(reinterpret_cast<const char*>(data), size);
  const auto entry = xdg::ParseDesktopEntry(file);
  if (!entry) {
    return 0;
  }
  Require(!entry->exec.empty(), "an entry has a command");
  Require(file.find("Exec") != std::string_view::npos, "which the file gives");
  const xdg::Command hostile = xdg::MakeCommand(*entry, kHostile);
  const xdg::Command plain = xdg::MakeCommand(*entry, kPlain);
  Require(hostile.size() == plain.size(), "no address makes arguments");
  Require(hostile.size() != 1 || Holds(hostile.front(), kHostile), "a command opens something");
  Require(hostile.empty() ||
              std::ranges::any_of(
                  hostile, [](const std::string& argument) { return Holds(argument, kHostile); }),
          "the address is there, letter by letter");
  for (std::size_t i = 0; i < hostile.size(); ++i) {
    Require(Replaced(hostile[i]) == plain[i], "all else does not depend on it");
  }
  return 0;
}
