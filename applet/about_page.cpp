#include "applet/about_page.h"

#include <array>

#include "resources/dialogs.h"
#include "resources/pictures.h"

// Everything on this page is painted: there is no control. A screen reader finds the texts, since
// the presentation notes what is painted, and the link, since GetLinks names it.
namespace applet {
namespace {

using platform::Canvas;
using platform::Color;
using platform::Font;
using platform::Point;
using platform::Rect;

// The page is painted in pixels of the device.
constexpr Rect kLink{55, 160, 202, 173};
constexpr Point kTopPictureAt{8, 15};
constexpr Point kSecondPictureAt{158, 210};
constexpr Rect kProductArea{46, 13, 230, 30};
constexpr Rect kMakerArea{46, 34, 220, 51};
constexpr Rect kFrame{8, 54, 232, 156};
/// Where the picture stands while it is pressed, from its own place.
constexpr Point kShift{1, -2};
constexpr std::uint32_t kShiftMilliseconds = 200;

constexpr Font kLineFont{u"Tahoma", 12, platform::kBoldWeight};
constexpr Color kProductColor{164, 34, 76};
constexpr Color kBlack{0, 0, 0};
constexpr Color kYellow{255, 255, 0};

constexpr std::u16string_view kBrowser = u"iexplore.exe";
constexpr std::u16string_view kOpenVerb = u"open";

}  // namespace

AboutPage::AboutPage(const platform::Platform& platform, const AboutDetails& details)
    : CPropertyPage(resources::kAboutDialog, platform.ui),
      m_clock(platform.clock),
      m_shell(platform.shell),
      m_topPicture(details.topPicture),
      m_secondPicture(details.secondPicture),
      m_product(details.product),
      m_version(details.version),
      m_backgroundBrush(kYellow),
      m_link(kLink),
      m_isSiteReachable(details.isSiteReachable) {}

bool AboutPage::OnInitDialog() {
  CPropertyPage::OnInitDialog();
  m_titleFont = Font{u"Tahoma", 13, platform::kSemiboldWeight};
  m_textFont = Font{u"Tahoma", 13, platform::kNormalWeight};
  return true;
}

void AboutPage::OnPaint(Canvas& canvas) {
  PaintFrame(canvas);
  PaintProduct(canvas);
  PaintMaker(canvas);
  PaintWebSite(canvas);
}

void AboutPage::PaintFrame(Canvas& canvas) const {
  constexpr std::array<Point, 5> kCorners{{{kFrame.left, kFrame.top},
                                           {kFrame.left, kFrame.bottom},
                                           {kFrame.right, kFrame.bottom},
                                           {kFrame.right, kFrame.top},
                                           {kFrame.left, kFrame.top}}};
  for (std::size_t i = 1; i < kCorners.size(); ++i) {
    canvas.DrawLine(kCorners[i - 1], kCorners[i], kBlack);
  }
  canvas.DrawPicture(kSecondPictureAt, m_secondPicture);
}

void AboutPage::PaintProduct(Canvas& canvas) const {
  canvas.DrawPicture(kTopPictureAt, m_topPicture);
  canvas.DrawTextIn(kProductArea, m_product + u" " + m_version, kLineFont, kProductColor);
}

void AboutPage::PaintMaker(Canvas& canvas) const {
  canvas.DrawTextIn(kMakerArea, kMakerLine, kLineFont, kBlack);
}

void AboutPage::PaintWebSite(Canvas& canvas) const {
  canvas.DrawPicture({m_link.left, m_link.top}, resources::kWebSitePicture);
  if (m_isLinkShifted) {
    // Over the picture in its place, which shows at two edges.
    canvas.DrawPicture({m_link.left + kShift.x, m_link.top + kShift.y}, resources::kWebSitePicture);
  }
}

std::vector<platform::PaintedLink> AboutPage::GetLinks() const {
  return m_isSiteReachable ? std::vector<platform::PaintedLink>{{m_link, kWebSite}}
                           : std::vector<platform::PaintedLink>();
}

void AboutPage::OnLButtonDown(Point point) {
  if (!m_link.Contains(point)) {
    return;
  }
  ShowLink(true);
  m_clock.Sleep(kShiftMilliseconds);
  ShowLink(false);
  m_shell.Execute(kOpenVerb, kBrowser, kWebSite);
}

void AboutPage::ShowLink(bool isShifted) {
  // A page paints in OnPaint alone; the sleep of the user-interface thread lets it do so.
  m_isLinkShifted = isShifted;
  GetWindow().Invalidate();
}

}  // namespace applet
