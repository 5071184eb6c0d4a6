#include "host/home/level_meter.h"

#include <QPainter>
#include <QStyle>
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "host/home/access.h"
#include "host/home/say.h"
#include "resources/teaching_strings.h"
#include "voicemath/take_quality.h"

namespace home {
namespace {

using voicemath::kLowestPeakDb;

// The verdicts are given below and at these levels: "soft" and, nearly, "clipped".
constexpr double kSoftDb = -40;
constexpr double kLoudDb = -1;
constexpr double kQuietestDb = -66;  ///< Where the bar begins.

}  // namespace

LevelMeter::LevelMeter(QWidget* parent)
    : QWidget(parent), m_level(kLowestPeakDb), m_highest(kLowestPeakDb) {
  // Of the roles that Qt hands on to screen readers none is nearer.
  SetAccessibleRole(*this, QAccessible::Graphic);
  setAccessibleName(Say(resources::kLevelMeter));
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  Describe();
}

void LevelMeter::SetLevel(double decibels) {
  m_level = std::clamp(decibels, kLowestPeakDb, 0.0);
  m_highest = std::max(m_highest, m_level);
  Describe();
  update();
}

void LevelMeter::Clear() {
  m_level = m_highest = kLowestPeakDb;
  Describe();
  update();
}

/// The description changes from zone to zone only, since screen readers hear of each change.
void LevelMeter::Describe() {
  const std::u16string_view zone = m_highest <= kQuietestDb ? resources::kLevelNothing
                                   : m_highest < kSoftDb    ? resources::kLevelSoft
                                   : m_highest < kLoudDb    ? resources::kLevelGood
                                                            : resources::kLevelLoud;
  setAccessibleDescription(Say(zone));
}

QSize LevelMeter::sizeHint() const {
  return {fontMetrics().height() * 12, minimumSizeHint().height()};
}

QSize LevelMeter::minimumSizeHint() const {
  return {fontMetrics().height() * 6, fontMetrics().height() * 2};
}

int LevelMeter::ToX(double decibels) const {
  const double share = std::clamp((decibels - kQuietestDb) / -kQuietestDb, 0.0, 1.0);
  return static_cast<int>(std::lround(share * (width() - 1)));
}

// The bar is drawn from the leading end. What is reached is filled in the colour of selections;
// above the loudest good level a pattern says the same as the colour.
void LevelMeter::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const QPalette& colours = palette();
  const int textHeight = fontMetrics().height();
  const auto place = [&](int from, int to) {
    const QRect rect(from, 0, std::max(to - from, 0), height() - textHeight);
    return QStyle::visualRect(layoutDirection(), this->rect(), rect);
  };
  painter.fillRect(place(0, width()), colours.color(QPalette::Base));
  painter.fillRect(place(0, ToX(m_level)), colours.color(QPalette::Highlight));
  if (m_level >= kLoudDb) {
    painter.fillRect(place(ToX(kLoudDb), width()),
                     QBrush(colours.color(QPalette::HighlightedText), Qt::Dense4Pattern));
  }
  if (m_highest > kQuietestDb) {
    painter.fillRect(place(ToX(m_highest) - 1, ToX(m_highest) + 1),
                     colours.color(QPalette::WindowText));
  }
  painter.setPen(colours.color(QPalette::Mid));
  painter.drawRect(place(0, width()).adjusted(0, 0, -1, -1));
  painter.drawLine(place(ToX(kSoftDb), ToX(kSoftDb) + 1).topLeft(),
                   place(ToX(kSoftDb), ToX(kSoftDb) + 1).bottomLeft());

  QFont small = font();
  small.setPointSizeF(std::max(small.pointSizeF() * 0.85, 8.0));
  painter.setFont(small);
  painter.setPen(colours.color(QPalette::WindowText));
  const auto write = [&](int from, int to, std::u16string_view text, Qt::Alignment alignment) {
    const QRect rect(from, height() - textHeight, to - from, textHeight);
    painter.drawText(QStyle::visualRect(layoutDirection(), this->rect(), rect),
                     static_cast<int>(QStyle::visualAlignment(layoutDirection(), alignment)),
                     Say(text));
  };
  write(0, ToX(kSoftDb), resources::kLevelSoft, Qt::AlignHCenter);
  write(ToX(kSoftDb), width(), m_highest < kLoudDb ? resources::kLevelGood : resources::kLevelLoud,
        Qt::AlignHCenter);
}

}  // namespace home
