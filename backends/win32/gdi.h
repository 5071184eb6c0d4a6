#pragma once

#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "backends/win32/scale.h"
#include "backends/win32/windows.h"
#include "platform/canvas.h"

namespace win32 {

/// Owns a font.
class FontHandle {
 public:
  FontHandle() = default;
  FontHandle(const platform::Font& font, const Scale& scale);
  /// Takes the font over.
  explicit FontHandle(HFONT font) : m_font(font) {}
  FontHandle(FontHandle&& other) noexcept : m_font(std::exchange(other.m_font, nullptr)) {}
  FontHandle& operator=(FontHandle&& other) noexcept {
    std::swap(m_font, other.m_font);
    return *this;
  }
  ~FontHandle() {
    if (m_font != nullptr) DeleteObject(m_font);
  }

  [[nodiscard]] HFONT Get() const { return m_font; }

 private:
  HFONT m_font = nullptr;
};

/// Selects a font into a device context for as long as it lives.
class SelectedFont {
 public:
  SelectedFont(HDC context, HFONT font)
      : m_context(context), m_earlier(SelectObject(context, font)) {}
  SelectedFont(const SelectedFont&) = delete;
  SelectedFont& operator=(const SelectedFont&) = delete;
  ~SelectedFont() { SelectObject(m_context, m_earlier); }

 private:
  const HDC m_context;
  const HGDIOBJ m_earlier;
};

/// Returns the width of one line of text in the selected font.
[[nodiscard]] int MeasureLine(HDC context, std::u16string_view text);

/// Returns `font` with letters as narrow as `text` needs to fit into `width`, within limits.
/// Returns none if the text fits as it is.
[[nodiscard]] FontHandle NarrowedFont(HFONT font, std::u16string_view text, int width);

/// The pictures of a library or a program, which holds each as PNG in several sizes, as resources
/// of type RT_RCDATA. The resource with the picture's number has the picture's own size. The one
/// with that number and N times kLarger is N times as large. Belongs to the user-interface thread.
class Pictures {
 public:
  static constexpr int kLarger = 10000;

  explicit Pictures(HMODULE module);
  Pictures(const Pictures&) = delete;
  Pictures& operator=(const Pictures&) = delete;
  ~Pictures();

  /// Returns the size of the picture, in pixels of the device.
  [[nodiscard]] SIZE GetSize(int picture) const;
  /// Draws the picture with its left top at `at`. Draws nothing if there is no such picture.
  void Draw(HDC context, platform::Point at, int picture, const Scale& scale);

 private:
  class Library;

  const HMODULE m_module;
  std::unique_ptr<Library> m_library;  ///< Made when something is first drawn.
};

/// Paints on a window.
class GdiCanvas final : public platform::Canvas {
 public:
  GdiCanvas(HDC context, const platform::Rect& client, const Scale& scale, Pictures& pictures)
      : m_context(context), m_client(client), m_scale(scale), m_pictures(pictures) {}

  [[nodiscard]] platform::Rect GetClientRect() const override { return m_client; }
  void DrawLine(platform::Point from, platform::Point to, platform::Color color) override;
  void DrawText(platform::Point at, std::u16string_view text, const platform::Font& font,
                platform::Color color) override;
  void DrawTextIn(const platform::Rect& area, std::u16string_view text, const platform::Font& font,
                  platform::Color color) override;
  void DrawPicture(platform::Point at, int picture) override;
  [[nodiscard]] int GetTextWidth(std::u16string_view text,
                                 const platform::Font& font) const override;

 private:
  void DrawOneLine(platform::Point at, const RECT* clip, std::u16string_view text,
                   const platform::Font& font, platform::Color color);

  const HDC m_context;
  const platform::Rect m_client;
  const Scale m_scale;
  Pictures& m_pictures;
};

}  // namespace win32
