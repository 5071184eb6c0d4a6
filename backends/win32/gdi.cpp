#include "backends/win32/gdi.h"

// The next two in this order: the second needs the first. GDI+ also uses the macros min and max.
#include <objidl.h>
#include <shlwapi.h>

namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus

#include <gdiplus.h>

#include <algorithm>
#include <string>

#include "backends/win32/system_calls.h"
#include "resources/pictures.h"

namespace win32 {
namespace {

[[nodiscard]] COLORREF ToColorRef(platform::Color color) {
  return RGB(color.red, color.green, color.blue);
}

/// The type of a resource that is bytes and nothing more.
constexpr int kRawData = 10;

/// Returns the text with blanks for the characters that would break or shift a line.
[[nodiscard]] std::u16string OneLine(std::u16string_view text) {
  std::u16string line(text);
  std::ranges::replace_if(
      line, [](char16_t unit) { return unit < u' ' || unit == 0x2028 || unit == 0x2029; }, u' ');
  return line;
}

[[nodiscard]] int Measure(HDC context, const std::u16string& line) {
  SIZE size{};
  GetTextExtentPoint32W(context, ToWide(line), static_cast<int>(line.size()), &size);
  return static_cast<int>(size.cx);
}

}  // namespace

// A positive height is that of a line, a negative one that of its letters.
FontHandle::FontHandle(const platform::Font& font, const Scale& scale)
    : m_font(CreateFontW(scale.Down(font.height), 0, 0, 0, font.weight, FALSE, FALSE, FALSE,
                         DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY,
                         DEFAULT_PITCH, ToWide(std::u16string(font.face)))) {}

int MeasureLine(HDC context, std::u16string_view text) { return Measure(context, OneLine(text)); }

FontHandle NarrowedFont(HFONT font, std::u16string_view text, int width) {
  constexpr int kWidths[] = {95, 90, 85, 80, 75};  // In percent of the usual width.
  const HDC context = GetDC(nullptr);
  const auto fits = [&](HFONT tried) {
    const SelectedFont selected(context, tried);
    return MeasureLine(context, text) <= width;
  };
  FontHandle narrowed;
  if (!fits(font)) {
    LOGFONTW form{};
    ::GetObjectW(font, sizeof(form), &form);
    TEXTMETRICW metrics{};
    {
      const SelectedFont selected(context, font);
      GetTextMetricsW(context, &metrics);
    }
    for (const int percent : kWidths) {
      form.lfWidth = MulDiv(static_cast<int>(metrics.tmAveCharWidth), percent, 100);
      narrowed = FontHandle(CreateFontIndirectW(&form));
      if (fits(narrowed.Get())) {
        break;
      }
    }
  }
  ReleaseDC(nullptr, context);
  return narrowed;
}

/// GDI+ for as long as it lives, and the images that it has read.
class Pictures::Library {
 public:
  Library() {
    const Gdiplus::GdiplusStartupInput input;
    m_isUp = Gdiplus::GdiplusStartup(&m_token, &input, nullptr) == Gdiplus::Ok;
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() {
    m_images.clear();
    if (m_isUp) Gdiplus::GdiplusShutdown(m_token);
  }

  /// Returns null if there is no such resource, or if it is no picture.
  Gdiplus::Image* Find(HMODULE module, int resource) {
    const auto [place, isNew] = m_images.try_emplace(resource);
    if (isNew && m_isUp) {
      place->second = Read(module, resource);
    }
    return place->second.get();
  }

 private:
  static std::unique_ptr<Gdiplus::Image> Read(HMODULE module, int resource) {
    const HRSRC found =
        FindResourceW(module, MAKEINTRESOURCEW(resource), MAKEINTRESOURCEW(kRawData));
    const HGLOBAL loaded = found == nullptr ? nullptr : LoadResource(module, found);
    if (loaded == nullptr) return nullptr;
    IStream* const stream = SHCreateMemStream(static_cast<const BYTE*>(LockResource(loaded)),
                                              SizeofResource(module, found));
    if (stream == nullptr) return nullptr;
    std::unique_ptr<Gdiplus::Image> image(Gdiplus::Image::FromStream(stream));
    stream->Release();
    return image && image->GetLastStatus() == Gdiplus::Ok ? std::move(image) : nullptr;
  }

  ULONG_PTR m_token = 0;
  bool m_isUp = false;
  std::map<int, std::unique_ptr<Gdiplus::Image>> m_images;
};

Pictures::Pictures(HMODULE module) : m_module(module) {}

Pictures::~Pictures() = default;

SIZE Pictures::GetSize(int picture) const {
  const resources::Picture* const found = resources::FindPicture(picture);
  return found == nullptr ? SIZE{} : SIZE{found->width, found->height};
}

void Pictures::Draw(HDC context, platform::Point at, int picture, const Scale& scale) {
  const SIZE size = GetSize(picture);
  const int width = scale.Across(static_cast<int>(size.cx));
  const int height = scale.Down(static_cast<int>(size.cy));
  if (width == 0 || height == 0) {
    return;
  }
  if (!m_library) {
    m_library = std::make_unique<Library>();
  }
  // The smallest one that need not grow, since one that grows becomes blurred.
  Gdiplus::Image* image = nullptr;
  for (const int factor : {1, 2, 4}) {
    if (Gdiplus::Image* const larger =
            m_library->Find(m_module, picture + (factor == 1 ? 0 : factor * kLarger))) {
      image = larger;
      if (static_cast<int>(image->GetWidth()) >= width) break;
    }
  }
  if (image == nullptr) {
    return;
  }
  Gdiplus::Graphics graphics(context);
  const bool isExact = static_cast<int>(image->GetWidth()) == width;
  graphics.SetInterpolationMode(isExact ? Gdiplus::InterpolationModeNearestNeighbor
                                        : Gdiplus::InterpolationModeHighQualityBicubic);
  graphics.DrawImage(image, Gdiplus::Rect(scale.Across(at.x), scale.Down(at.y), width, height));
}

// A level or an upright line is a filled rectangle. So it includes both ends at every scale.
void GdiCanvas::DrawLine(platform::Point from, platform::Point to, platform::Color color) {
  const int thickness = std::max(1, m_scale.Down(1));
  if (from.x == to.x || from.y == to.y) {
    const RECT area{m_scale.Across(std::min(from.x, to.x)), m_scale.Down(std::min(from.y, to.y)),
                    m_scale.Across(std::max(from.x, to.x)) + thickness,
                    m_scale.Down(std::max(from.y, to.y)) + thickness};
    const HBRUSH brush = CreateSolidBrush(ToColorRef(color));
    FillRect(m_context, &area, brush);
    DeleteObject(brush);
    return;
  }
  const HPEN pen = CreatePen(PS_SOLID, thickness, ToColorRef(color));
  const HGDIOBJ earlier = SelectObject(m_context, pen);
  MoveToEx(m_context, m_scale.Across(from.x), m_scale.Down(from.y), nullptr);
  LineTo(m_context, m_scale.Across(to.x), m_scale.Down(to.y));
  SelectObject(m_context, earlier);
  DeleteObject(pen);
}

void GdiCanvas::DrawText(platform::Point at, std::u16string_view text, const platform::Font& font,
                         platform::Color color) {
  DrawOneLine(at, nullptr, text, font, color);
}

void GdiCanvas::DrawTextIn(const platform::Rect& area, std::u16string_view text,
                           const platform::Font& font, platform::Color color) {
  const RECT clip = m_scale.ToWindow(area);
  DrawOneLine({area.left, area.top}, &clip, text, font, color);
}

void GdiCanvas::DrawOneLine(platform::Point at, const RECT* clip, std::u16string_view text,
                            const platform::Font& font, platform::Color color) {
  const FontHandle made(font, m_scale);
  const SelectedFont selected(m_context, made.Get());
  SetTextColor(m_context, ToColorRef(color));
  SetBkMode(m_context, TRANSPARENT);
  const std::u16string line = OneLine(text);
  ExtTextOutW(m_context, m_scale.Across(at.x), m_scale.Down(at.y),
              clip == nullptr ? 0 : ETO_CLIPPED, clip, ToWide(line), static_cast<UINT>(line.size()),
              nullptr);
}

void GdiCanvas::DrawPicture(platform::Point at, int picture) {
  m_pictures.Draw(m_context, at, picture, m_scale);
}

int GdiCanvas::GetTextWidth(std::u16string_view text, const platform::Font& font) const {
  const FontHandle made(font, m_scale);
  const SelectedFont selected(m_context, made.Get());
  return m_scale.ToDeviceWidth(MeasureLine(m_context, text));
}

}  // namespace win32
