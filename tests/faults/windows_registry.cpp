// The registry of a root folder as a file of that folder, so that a campaign can keep a machine's
// state and put it back. The file has a line for each key, "K PATH", and for each value, "V PATH
// NAME TYPE BYTES". Texts and bytes are hexadecimal digits; texts are UTF-16, little-endian.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "backends/win32/registry_calls.h"
#include "backends/win32/win32_registry.h"
#include "host/machine/system.h"
#include "tests/faults/windows_calls.h"

namespace faults {
namespace {

/// The key of all that belongs to the root folder.
std::u16string OwnKey(const std::filesystem::path& root) {
  const auto place = win32::RegistryPlace::OfRoot(machine::ToName(root.lexically_normal()));
  return std::u16string(win32::SplitLast(place.path).first);
}

std::filesystem::path Root() {
  const char* const root = std::getenv("VOXTREL_ROOT");
  return root == nullptr ? "" : root;
}

std::string Digits(const void* data, std::size_t size) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string digits;
  for (const auto* byte = static_cast<const unsigned char*>(data); size > 0; --size, ++byte) {
    digits += kDigits[*byte >> 4U];
    digits += kDigits[*byte & 0xFU];
  }
  return digits + '.';  // So that an empty one is a word, too.
}
std::string Digits(const std::u16string& text) { return Digits(text.data(), text.size() * 2); }

std::vector<std::byte> Bytes(const std::string& digits) {
  std::vector<std::byte> bytes;
  for (std::size_t i = 0; i + 2 < digits.size(); i += 2) {
    bytes.push_back(static_cast<std::byte>(std::stoi(digits.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}
std::u16string Text(const std::string& digits) {
  std::u16string text;
  const auto bytes = Bytes(digits);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    text += static_cast<char16_t>(std::to_integer<unsigned>(bytes[i]) |
                                  std::to_integer<unsigned>(bytes[i + 1]) << 8U);
  }
  return text;
}

void Save(std::ostream& to, const std::u16string& path, const win32::KeyTree& tree) {
  to << "K " << Digits(path) << '\n';
  for (const auto& value : tree.values) {
    to << "V " << Digits(path) << ' ' << Digits(value.name) << ' '
       << static_cast<unsigned>(value.value.type) << ' '
       << Digits(value.value.bytes.data(), value.value.bytes.size()) << '\n';
  }
  for (const auto& [name, below] : tree.keys) {
    Save(to, path.empty() ? name : path + u'\\' + name, below);
  }
}

}  // namespace

void LoadRegistry() {
  const std::filesystem::path root = Root();
  const std::u16string key = OwnKey(root);
  const auto [parentPath, name] = win32::SplitLast(key);
  const auto parent = win32::MakeSystemPath(HKEY_CURRENT_USER, parentPath);
  if (parent) {
    static_cast<void>(win32::RemoveTree(parent->Get(), name));
  }
  std::ifstream file(root / "state");
  for (std::string kind, path; file >> kind >> path;) {
    const std::u16string full = path == "." ? key : key + u'\\' + Text(path);
    const auto made = win32::MakeSystemPath(HKEY_CURRENT_USER, full);
    if (!made) {
      std::abort();
    }
    if (std::string valueName, bytes; kind == "V") {
      unsigned type = 0;
      file >> valueName >> type >> bytes;
      if (!win32::WriteValue(made->Get(), Text(valueName),
                             {static_cast<platform::RegistryType>(type), Bytes(bytes)})) {
        std::abort();
      }
    }
  }
  file.close();
  std::error_code none;
  std::filesystem::remove(root / "state", none);
}

void SaveRegistry() {
  const std::filesystem::path root = Root();
  const auto key = win32::OpenSystemKey(HKEY_CURRENT_USER, OwnKey(root), KEY_READ);
  const auto tree =
      key ? win32::ReadTree(key->Get(), std::size_t{1} << 30U) : platform::Failure(key.error());
  std::error_code none;
  if (tree && std::filesystem::is_directory(root, none)) {
    std::ofstream file(root / "state", std::ios::binary);
    Save(file, u"", *tree);
  }
}

}  // namespace faults

namespace {

/// Before and after all of the program.
struct Frame {
  Frame() {
    faults::LoadRegistry();
    faults::TakeCalls();
  }
  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;
  ~Frame() {
    faults::LeaveCalls();
    faults::SaveRegistry();
  }
};
const Frame g_frame;

}  // namespace
