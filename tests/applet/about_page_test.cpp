#include "applet/about_page.h"

#include <algorithm>
#include <functional>

#include "resources/dialogs.h"
#include "tests/applet/applet_fixture.h"
#include "tests/support/watched_clock.h"

namespace {

using headless::PaintedStroke;
using Kind = headless::PaintedStroke::Kind;
using platform::Color;
using platform::Font;
using platform::Point;
using platform::Rect;

constexpr Font kLineFont{u"Tahoma", 12, 700};

/// A shell that shows what is on the screen when the site is opened.
class WatchedShell final : public platform::Shell {
 public:
  explicit WatchedShell(platform::Shell& inner) : m_inner(inner) {}

  void StartProgram(std::u16string_view program, std::u16string_view commandLine) override {
    m_inner.StartProgram(program, commandLine);
  }
  void Execute(std::u16string_view verb, std::u16string_view file,
               std::u16string_view parameters) override {
    m_watch();
    m_inner.Execute(verb, file, parameters);
  }

  std::function<void()> m_watch = [] {};

 private:
  platform::Shell& m_inner;
};

class AboutPage : public AppletFixture {
 protected:
  AboutPage() {
    platform::Platform platform = m_machine.Get();
    platform::Platform watched{
        platform.files, platform.waveIn,   m_clock,           platform.threads, platform.process,
        platform.ui,    platform.registry, platform.contacts, platform.waveOut, m_shell};
    std::u16string product = u"Voxtrel PE";
    std::u16string version = u"v3.0";
    m_page = std::make_unique<applet::AboutPage>(watched,
                                                 applet::AboutDetails{2000, 136, product, version});
    product = u"gone";  // The page has copies.
    version = u"gone";
    m_dialog =
        std::make_unique<headless::HeadlessDialog>(resources::kAboutDialog, *m_page, nullptr);
  }

  [[nodiscard]] std::vector<Point> PaintedAt(int picture) {
    std::vector<Point> places;
    for (const PaintedStroke& stroke : m_dialog->Paint()) {
      if (stroke.kind == Kind::kPicture && stroke.picture == picture) {
        places.push_back({stroke.area.left, stroke.area.top});
      }
    }
    return places;
  }

  support::WatchedClock m_clock;
  WatchedShell m_shell{m_machine.shell};
  std::unique_ptr<applet::AboutPage> m_page;
  std::unique_ptr<headless::HeadlessDialog> m_dialog;
};

TEST_F(AboutPage, IsTheDialog135WithTheCaptionAbout) {
  EXPECT_EQ(m_page->GetTemplate().id, 135);
  EXPECT_EQ(m_page->GetTemplate().caption, u"About");
}

TEST_F(AboutPage, HasAYellowBrushAndMakesItsFontsWhenItIsSetUp) {
  EXPECT_EQ(m_page->GetBackgroundBrush(), (Color{255, 255, 0}));
  EXPECT_FALSE(m_page->GetTitleFont());
  EXPECT_FALSE(m_page->GetTextFont());
  EXPECT_TRUE(m_page->OnInitDialog());
  EXPECT_EQ(m_page->GetTitleFont(), (Font{u"Tahoma", 13, 600}));
  EXPECT_EQ(m_page->GetTextFont(), (Font{u"Tahoma", 13, 400}));
}

TEST_F(AboutPage, PaintsFrameProductMakerAndWebSiteInThisOrder) {
  m_page->OnInitDialog();
  const std::vector<PaintedStroke> strokes = m_dialog->Paint();
  ASSERT_EQ(strokes.size(), 9U);

  const std::vector<Rect> frame = {
      {8, 54, 8, 156}, {8, 156, 232, 156}, {232, 156, 232, 54}, {232, 54, 8, 54}};
  for (std::size_t i = 0; i < frame.size(); ++i) {
    EXPECT_EQ(strokes[i].kind, Kind::kLine);
    EXPECT_EQ(strokes[i].area, frame[i]) << i;
  }
  const auto expectPicture = [&](std::size_t i, int picture, Point at) {
    EXPECT_EQ(strokes[i].kind, Kind::kPicture);
    EXPECT_EQ(strokes[i].picture, picture);
    EXPECT_EQ((Point{strokes[i].area.left, strokes[i].area.top}), at);
  };
  expectPicture(4, 136, {158, 210});
  expectPicture(5, 2000, {8, 15});

  EXPECT_EQ(strokes[6].text, u"Voxtrel PE v3.0");
  EXPECT_EQ(strokes[6].area, (Rect{46, 13, 230, 30}));
  EXPECT_EQ(strokes[6].font, kLineFont);
  EXPECT_EQ(strokes[6].color, (Color{164, 34, 76}));

  EXPECT_EQ(strokes[7].text, applet::kMakerLine);
  EXPECT_EQ((Point{strokes[7].area.left, strokes[7].area.top}), (Point{46, 34}));
  EXPECT_EQ(strokes[7].area.right, 220);
  EXPECT_EQ(strokes[7].font, kLineFont);
  EXPECT_EQ(strokes[7].color, (Color{0, 0, 0}));

  expectPicture(8, 143, {55, 160});
}

TEST_F(AboutPage, AClickOnThePictureMovesItForAMomentThenOpensTheSite) {
  std::vector<Point> meanwhile;
  int paintedBefore = 0;
  m_clock.SetListener([&](std::uint32_t) {
    paintedBefore = m_dialog->CountInvalidations();
    meanwhile = PaintedAt(143);
    EXPECT_TRUE(m_machine.shell.GetRequests().empty());
  });
  m_dialog->ClickAt({60, 165});
  EXPECT_EQ(m_clock.GetSleeps(), std::vector<std::uint32_t>{200});
  EXPECT_EQ(meanwhile, (std::vector<Point>{{55, 160}, {56, 158}}));
  EXPECT_EQ(paintedBefore, 1);
  EXPECT_EQ(m_dialog->CountInvalidations(), 2);
  EXPECT_EQ(PaintedAt(143), (std::vector<Point>{{55, 160}}));
  const std::vector<headless::ShellRequest> expected = {
      {u"open", u"iexplore.exe", std::u16string(applet::kWebSite)}};
  EXPECT_EQ(m_machine.shell.GetRequests(), expected);
}

TEST_F(AboutPage, ThePictureIsBackInItsPlaceBeforeTheSiteIsOpened) {
  std::vector<Point> then;
  m_shell.m_watch = [&] {
    EXPECT_EQ(m_dialog->CountInvalidations(), 2);
    then = PaintedAt(143);
  };
  m_dialog->ClickAt({60, 165});
  EXPECT_EQ(then, (std::vector<Point>{{55, 160}}));
}

TEST_F(AboutPage, TheLinkEndsBeforeItsRightAndBottomEdge) {
  const std::vector<Point> outside = {{202, 165}, {60, 173}, {202, 173}, {54, 165},
                                      {60, 159},  {0, 0},    {160, 215}};
  for (const Point point : outside) {
    m_dialog->ClickAt(point);
    EXPECT_TRUE(m_machine.shell.GetRequests().empty()) << point.x << "," << point.y;
  }
  EXPECT_TRUE(m_clock.GetSleeps().empty());
  EXPECT_EQ(m_dialog->CountInvalidations(), 0);

  const std::vector<Point> inside = {{55, 160}, {201, 172}, {55, 172}, {201, 160}};
  for (const Point point : inside) {
    m_dialog->ClickAt(point);
  }
  EXPECT_EQ(m_machine.shell.GetRequests().size(), inside.size());
}

TEST_F(AboutPage, TheSiteIsOfAReservedDomain) {
  const std::u16string site(applet::kWebSite);
  EXPECT_TRUE(site.starts_with(u"https://"));
  EXPECT_TRUE(site.ends_with(u".example/"));
}

}  // namespace
