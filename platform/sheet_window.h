#pragma once

#include <cstddef>
#include <string_view>

namespace platform {

/// One live property sheet: a window with a tab for each page. Belongs to the user-interface
/// thread.
class SheetWindow {
 public:
  SheetWindow() = default;
  SheetWindow(const SheetWindow&) = delete;
  SheetWindow& operator=(const SheetWindow&) = delete;
  virtual ~SheetWindow() = default;

  virtual void SetTabText(std::size_t tab, std::u16string_view text) = 0;
};

}  // namespace platform
