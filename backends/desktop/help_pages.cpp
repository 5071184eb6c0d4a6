#include "backends/desktop/help_pages.h"

#include <filesystem>
#include <system_error>

namespace xdg {
namespace {

bool IsFile(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(path, ignored);
}

/// Whether an address shows the byte as it is, in a path or behind it.
bool IsPlain(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= '0' && byte <= '9') ||
         std::string_view("-._~/").find(byte) != std::string_view::npos;
}

std::string Escape(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string escaped;
  for (const char byte : text) {
    if (IsPlain(byte)) {
      escaped += byte;
    } else {
      const auto value = static_cast<unsigned char>(byte);
      escaped += '%';
      escaped += kDigits[value >> 4U];
      escaped += kDigits[value & 0xFU];
    }
  }
  return escaped;
}

}  // namespace

std::string HelpPage::GetUrl() const {
  return "file://" + Escape(path) + (anchor.empty() ? "" : "#" + Escape(anchor));
}

HelpPage HelpFolders::Find(std::string_view address) const {
  constexpr std::string_view kScheme = "file:";
  if (address.starts_with(kScheme)) {
    address.remove_prefix(kScheme.size());
  }
  const std::size_t hash = address.find('#');
  const std::string name(address.substr(0, hash));
  const std::string anchor(hash == std::string_view::npos ? "" : address.substr(hash + 1));
  for (const std::string& folder : folders) {
    for (const std::string& language : languages) {
      std::string path = folder;
      path.append("/").append(language).append("/").append(name);
      if (IsFile(path)) {
        return {path, anchor};
      }
    }
    if (std::string path = folder + "/" + name; IsFile(path)) {
      return {path, anchor};
    }
  }
  return {folders.empty() ? "/" + name : folders.front() + "/" + name, anchor};
}

}  // namespace xdg
