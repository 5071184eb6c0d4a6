#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/dialog.h"
#include "platform/platform.h"

namespace applet {

/// Opened by a click on the picture of the web site.
inline constexpr std::u16string_view kWebSite = u"https://voxtrel.example/";
inline constexpr std::u16string_view kMakerLine = u"Zedra Tech.";

/// What the About page is made with.
struct AboutDetails {
  int topPicture = 0;
  int secondPicture = 0;
  std::u16string_view product;  ///< Copied, as is the version.
  std::u16string_view version;
  /// Whether anybody can see the site. If not, its picture is offered to nobody as a link: a press
  /// of the mouse does what it always did, and the shell says that the site cannot be opened.
  bool isSiteReachable = false;
};

/// The About page: the product, its version and maker, and a picture that opens the maker's web
/// site. It has no controls and paints itself.
class AboutPage final : public framework::CPropertyPage {
 public:
  AboutPage(const platform::Platform& platform, const AboutDetails& details);

  bool OnInitDialog() override;
  void OnPaint(platform::Canvas& canvas) override;
  [[nodiscard]] std::vector<platform::PaintedLink> GetLinks() const override;
  void OnLButtonDown(platform::Point point) override;

  // The brush and the fonts belong to the page and nothing is painted with them: the page has the
  // background of every dialog, and its lines have a font of their own.
  [[nodiscard]] platform::Color GetBackgroundBrush() const { return m_backgroundBrush; }
  [[nodiscard]] const std::optional<platform::Font>& GetTitleFont() const { return m_titleFont; }
  [[nodiscard]] const std::optional<platform::Font>& GetTextFont() const { return m_textFont; }

 private:
  void PaintFrame(platform::Canvas& canvas) const;
  void PaintProduct(platform::Canvas& canvas) const;
  void PaintMaker(platform::Canvas& canvas) const;
  void PaintWebSite(platform::Canvas& canvas) const;
  void ShowLink(bool isShifted);

  platform::Clock& m_clock;
  platform::Shell& m_shell;
  const int m_topPicture;
  const int m_secondPicture;
  const std::u16string m_product;
  const std::u16string m_version;
  const platform::Color m_backgroundBrush;
  const platform::Rect m_link;
  const bool m_isSiteReachable;
  std::optional<platform::Font> m_titleFont;  ///< Made when the dialog is set up, as is the next.
  std::optional<platform::Font> m_textFont;
  bool m_isLinkShifted = false;
};

}  // namespace applet
