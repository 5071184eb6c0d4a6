#pragma once

#include "backends/win32/windows.h"
#include "platform/canvas.h"

namespace win32 {

/// How pixels of the device become pixels of one window. The system makes dialogs from dialog units
/// and its own font; what a page paints or places itself follows them.
class Scale {
 public:
  Scale() = default;
  /// Takes the average width and the height of a dialog's font.
  Scale(int across, int down) : m_across(across), m_down(down) {}
  /// Takes the scale of a dialog. A system that has no font left says no size, or none above 0.
  explicit Scale(HWND dialog) {
    RECT units{0, 0, 4, 8};
    if (MapDialogRect(dialog, &units) && units.right > 0 && units.bottom > 0) {
      m_across = units.right;
      m_down = units.bottom;
    }
  }

  [[nodiscard]] int Across(int device) const { return MulDiv(device, m_across, kAcross); }
  [[nodiscard]] int Down(int device) const { return MulDiv(device, m_down, kDown); }
  [[nodiscard]] RECT ToWindow(const platform::Rect& rect) const {
    return {Across(rect.left), Down(rect.top), Across(rect.right), Down(rect.bottom)};
  }

  /// Returns the pixel of the device under a point of the window.
  [[nodiscard]] platform::Point ToDevice(POINT point) const {
    return {static_cast<int>(point.x) * kAcross / m_across,
            static_cast<int>(point.y) * kDown / m_down};
  }
  /// Returns how many pixels of the device a width in the window takes.
  [[nodiscard]] int ToDeviceWidth(int width) const {
    return (width * kAcross + m_across - 1) / m_across;
  }

 private:
  // Of the device's dialog font: see platform::ToPixels.
  static constexpr int kAcross = 6;
  static constexpr int kDown = 13;

  // Of the dialog's font.
  int m_across = kAcross;
  int m_down = kDown;
};

}  // namespace win32
