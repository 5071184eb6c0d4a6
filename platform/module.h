#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>

#include "resources/strings.h"

namespace platform {

/// A handle of an icon, valid in the whole process. Its meaning belongs to the back end, and so
/// does the number of bits that count in it.
using IconHandle = std::uintptr_t;

inline constexpr IconHandle kNoIcon = 0;

/// A loaded library as the owner of its resources.
class Module {
 public:
  Module() = default;
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;
  virtual ~Module() = default;

  /// Returns the icon of that number. Returns kNoIcon if there is none or if it cannot be loaded.
  /// Until the icon is destroyed, every call with this number returns the same handle.
  [[nodiscard]] virtual IconHandle LoadIcon(int id) = 0;
  /// Does nothing if `icon` is not the handle of a loaded icon.
  virtual void DestroyIcon(IconHandle icon) = 0;

  /// Copies as much of the string-table entry as fits together with its ending NUL. Returns the
  /// copied length without the NUL. Returns 0 and leaves `buffer` as it is if there is no such
  /// entry or no room.
  virtual int LoadString(int id, std::span<char16_t> buffer) = 0;
};

/// Does what Module::LoadString promises, for back ends whose system has no string tables.
inline int CopyModuleString(int id, std::span<char16_t> buffer) {
  const std::u16string_view text = resources::FindString(id);
  if (text.empty() || buffer.empty()) {
    return 0;
  }
  const std::u16string_view fitting = text.substr(0, buffer.size() - 1);
  std::ranges::copy(fitting, buffer.begin());
  buffer[fitting.size()] = u'\0';
  return static_cast<int>(fitting.size());
}

}  // namespace platform
