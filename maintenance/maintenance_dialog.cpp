#include "maintenance/maintenance_dialog.h"

namespace maintenance {
namespace {

constexpr int kRuleTop = 26;
constexpr platform::Point kTitleAt{5, 6};
constexpr platform::Font kTitleFont{u"Tahoma", 13, platform::kBoldWeight};
constexpr platform::Color kBlack{};
constexpr platform::Color kDarkBlue{0, 0, 128};

}  // namespace

void PaintHeader(platform::Canvas& canvas, std::u16string_view title) {
  const platform::Rect area = canvas.GetClientRect();
  canvas.DrawLine({area.left, kRuleTop}, {area.right - 1, kRuleTop}, kBlack);
  canvas.DrawText(kTitleAt, title, kTitleFont, kDarkBlue);
}

}  // namespace maintenance
