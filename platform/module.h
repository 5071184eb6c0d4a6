#pragma once

#include <cstdint>
#include <span>

namespace platform {

/// A handle of an icon, known to the whole process; what it stands for is the back end's affair.
using IconHandle = std::uint32_t;

inline constexpr IconHandle kNoIcon = 0;

/// A loaded library as the owner of its resources.
class Module {
 public:
  Module() = default;
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;
  virtual ~Module() = default;

  /// The icon of that number, kNoIcon where there is none or it cannot be had. Until it is
  /// destroyed the same icon has the same handle, however often it is loaded.
  [[nodiscard]] virtual IconHandle LoadIcon(int id) = 0;
  /// No effect on what is no handle of a loaded icon.
  virtual void DestroyIcon(IconHandle icon) = 0;

  /// Copies as much of the string-table entry as fits with the NUL that ends it, and returns its
  /// length without the NUL. 0, with `buffer` as it was, where there is no such entry or no room.
  virtual int LoadString(int id, std::span<char16_t> buffer) = 0;
};

}  // namespace platform
