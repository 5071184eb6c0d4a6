#include "backends/qt/look.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFile>
#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleOption>
#include <array>
#include <cmath>

#include "backends/qt/message_dialog.h"
#include "backends/qt/strings.h"

// How all windows look: one style, one palette, one scale. The dialogs were drawn for a small
// screen, in pixels, so every size here is a factor of those.
namespace qt {
namespace {

/// Whether all windows but message boxes look dead (DrawAsBusy). The style is one object for the
/// whole process, so this stands here. User-interface thread only.
bool g_isBusy = false;

/// Makes the style draw a control of a window that takes no input now as a disabled one.
template <typename Option>
[[nodiscard]] Option AsItAnswers(const Option& option, const QWidget* widget) {
  Option shown = option;
  if (g_isBusy && widget != nullptr &&
      dynamic_cast<const MessageDialog*>(widget->window()) == nullptr) {
    shown.state &= ~QStyle::State_Enabled;
    shown.palette.setCurrentColorGroup(QPalette::Disabled);
  }
  return shown;
}

/// Makes the style mark the focus even if it came by the mouse. The user always sees which control
/// gets the keys.
template <typename Option>
[[nodiscard]] Option WithFocusMarked(const Option& option) {
  Option marked = option;
  if (marked.state.testFlag(QStyle::State_HasFocus)) {
    marked.state |= QStyle::State_KeyboardFocusChange;
  }
  return marked;
}

/// Returns the style's own colour of edges.
[[nodiscard]] QColor EdgeColor(const QPalette& palette) {
  return palette.color(QPalette::Window).darker(140);
}

/// Draws the outermost line within `area`. The style itself puts the line on the border of the
/// area. At a scale that is no whole number, half of that line is cut off, and some sides vanish.
void DrawEdge(QPainter& painter, const QRect& area, const QColor& color) {
  const QSize upright(1, area.height());
  const QSize level(area.width(), 1);
  for (const QRect& side : {QRect(area.topLeft(), upright), QRect(area.topLeft(), level),
                            QRect(area.topRight(), upright), QRect(area.bottomLeft(), level)}) {
    painter.fillRect(side, color);
  }
}

/// The look of all windows: the library's own style Fusion, with the few corrections that the
/// dialogs need. It is the same on every desktop, since the dialogs have fixed sizes that were
/// drawn for one style.
class Look final : public QProxyStyle {
 public:
  Look() : QProxyStyle(QStringLiteral("fusion")) {}

  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* returned) const override {
    switch (hint) {
      case SH_UnderlineShortcut:
        return 1;
      // The list of a combo box opens under it and not over it, so the chosen item stays in sight.
      case SH_DialogButtonBox_ButtonsHaveIcons:
      case SH_ComboBox_Popup:
        return 0;
      default:
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
  }

  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                          QPainter* painter, const QWidget* widget) const override {
    if (const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option)) {
      const auto marked = AsItAnswers(WithFocusMarked(*combo), widget);
      QProxyStyle::drawComplexControl(control, &marked, painter, widget);
      return;
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
  }

  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override {
    if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option)) {
      const auto marked = AsItAnswers(WithFocusMarked(*button), widget);
      QProxyStyle::drawControl(element, &marked, painter, widget);
      return;
    }
    if (const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(option)) {
      const auto shown = AsItAnswers(*tab, widget);
      QProxyStyle::drawControl(element, &shown, painter, widget);
      return;
    }
    if (const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option)) {
      const auto shown = AsItAnswers(*combo, widget);
      QProxyStyle::drawControl(element, &shown, painter, widget);
      return;
    }
    const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
    if (element == CE_ShapedFrame && frame != nullptr && frame->frameShape == QFrame::StyledPanel &&
        dynamic_cast<const QAbstractItemView*>(widget) != nullptr) {
      const bool hasFocus = option->state.testFlag(State_HasFocus);
      DrawEdge(*painter, option->rect,
               hasFocus ? option->palette.color(QPalette::Highlight)
                        : EdgeColor(option->palette).lighter(108));
      return;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
  }

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
    if (element == PE_FrameTabWidget) {
      DrawPane(*option, *painter, widget);
      return;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
  }

 private:
  void DrawPane(const QStyleOption& option, QPainter& painter, const QWidget* widget) const {
    const QRect pane = option.rect.adjusted(0, 0, 0, -1);
    QStyleOption within(option);
    within.rect =
        pane.adjusted(-3, -3, 3, 3);  // The edge that the style draws falls outside and is cut off.
    painter.save();
    painter.setClipRect(pane, Qt::IntersectClip);
    QProxyStyle::drawPrimitive(PE_FrameTabWidget, &within, &painter, widget);
    painter.restore();
    constexpr QColor kShadow(0, 0, 0, 15);
    painter.fillRect(QRect(pane.left(), option.rect.bottom(), pane.width(), 1), kShadow);
    DrawEdge(painter, pane, EdgeColor(option.palette));
  }
};

/// Returns how light a colour is to the eye, from 0 to 1.
[[nodiscard]] double Lightness(const QColor& color) {
  constexpr auto kLinear = [](double part) {
    return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  // The weights of red, green and blue in the sRGB colour space: the eye sees green best.
  return 0.2126 * kLinear(color.redF()) + 0.7152 * kLinear(color.greenF()) +
         0.0722 * kLinear(color.blueF());
}

[[nodiscard]] double Contrast(const QColor& a, const QColor& b) {
  const double lighter = std::max(Lightness(a), Lightness(b));
  const double darker = std::min(Lightness(a), Lightness(b));
  // The contrast ratio of the Web Content Accessibility Guidelines: 1 is none, 21 is black on
  // white. 0.05 stands for the light that every screen reflects.
  return (lighter + 0.05) / (darker + 0.05);
}

}  // namespace

namespace {

// Desktop pixels for one pixel of the device, whose screen was much coarser.
constexpr double kUsualScale = 1.5;
double g_scale = kUsualScale;

/// Letters of every desktop's default have at most this size.
constexpr double kUsualPoints = 11;
constexpr double kLargestScale = 3;

/// In quarters, so that lines and edges stay sharp.
double ScaleFor(double points) {
  // If the user has chosen larger letters for the desktop, dialogs are larger in the same
  // proportion.
  const double quarters = std::round(4 * kUsualScale * points / kUsualPoints);
  return std::clamp(quarters / 4, kUsualScale, kLargestScale);
}

}  // namespace

double Scale() { return g_scale; }

void ApplyLook() {
  // Asked each time, since the user may change the letters while the process runs. The style is set
  // once: setting it again would lay out every window again.
  g_scale = ScaleFor(QFontInfo(QApplication::font()).pointSizeF());
  static bool isApplied = false;
  if (!isApplied) {
    isApplied = true;
    QApplication::setStyle(new Look);
  }
}

void DrawAsBusy(bool isBusy) {
  g_isBusy = isBusy;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (dynamic_cast<MessageDialog*>(window) != nullptr) {
      continue;
    }
    if (isBusy) {
      window->setCursor(Qt::BusyCursor);
    } else {
      window->unsetCursor();
    }
    window->update();
  }
}

QPalette DialogPalette() {
  // A light palette whatever the desktop's theme is: the pages paint black text and pictures for a
  // light surface.
  const QColor surface(0xF6, 0xF7, 0xF9);
  const QColor ink(0x1B, 0x1F, 0x27);
  const QColor faint(0x8A, 0x90, 0x9B);
  QPalette palette(QColor(0xEE, 0xF0, 0xF3), surface);
  palette.setColor(QPalette::Base, Qt::white);
  palette.setColor(QPalette::AlternateBase, surface);
  palette.setColor(QPalette::ToolTipBase, Qt::white);
  for (const auto role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
    palette.setColor(role, ink);
    palette.setColor(QPalette::Disabled, role, faint);
  }
  palette.setColor(QPalette::PlaceholderText, faint);
  // The user's own colour, if it differs enough from the surface and white text on it can be read.
  constexpr double kLeastContrast = 3;
  const QPalette users = QApplication::palette();
  const QColor chosen = users.color(QPalette::Active, QPalette::Highlight);
  const bool isFit = Contrast(chosen, Qt::white) >= kLeastContrast;
  palette.setColor(QPalette::Highlight, isFit ? chosen : QColor(0x2F, 0x48, 0xAD));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Disabled, QPalette::Highlight, faint);
  return palette;
}

namespace {

/// The files of the free Tahoma in its package. Only some distributions also put it into the
/// system's list of fonts.
constexpr std::array<const char*, 2> kFontFiles{"/usr/share/wine/fonts/tahoma.ttf",
                                                "/usr/share/fonts/truetype/wine/tahoma.ttf"};

void LoadTahoma() {
  if (QFontDatabase::hasFamily(QStringLiteral("Tahoma"))) {
    return;
  }
  // The bold file is left out: its outlines are no bolder, only wider apart. Without it the library
  // makes the regular outlines bold.
  for (const char* file : kFontFiles) {
    const QString path = QString::fromLatin1(file);
    if (QFile::exists(path)) {
      QFontDatabase::addApplicationFont(path);
    }
  }
}

}  // namespace

QFont MakeFont(const platform::Font& font) {
  [[maybe_unused]] static const bool kIsLoaded = (LoadTahoma(), true);
  QFont made(ToQString(font.face));
  made.setStyleHint(QFont::SansSerif);
  made.setWeight(static_cast<QFont::Weight>(font.weight));
  // The height is that of a line, but a font is chosen by the size of its letters.
  constexpr int kProbe = 100;
  // Measured at a large size, since the library rounds what it says of small letters.
  made.setPixelSize(kProbe);
  const QFontMetricsF metrics(made);
  const double line = metrics.ascent() + metrics.descent();
  const double size = font.height * Scale() * kProbe / line;
  made.setPixelSize(std::max(1, static_cast<int>(std::lround(size))));
  return made;
}

}  // namespace qt
