#include "host/home/wave_picture.h"

#include <QLocale>
#include <QPainter>
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "host/home/access.h"
#include "host/home/say.h"
#include "resources/tags_window_strings.h"
#include "resources/teaching_strings.h"
#include "voicemath/constants.h"

namespace home {
namespace {

using voicemath::kSamplesPerSecond;

/// A peak of at least this share of full scale fills the picture. So a usual voice is well seen,
/// and a soft one looks soft.
constexpr int kFullHeight = 32768 / 8;

QString ToSeconds(std::size_t samples) {
  return QLocale().toString(static_cast<double>(samples) / kSamplesPerSecond, 'f', 1);
}

}  // namespace

WavePicture::WavePicture(QWidget* parent) : QWidget(parent) {
  SetAccessibleRole(*this, QAccessible::Graphic);
  setAccessibleName(Say(resources::kWavePicture));
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void WavePicture::SetWave(std::vector<std::int16_t> samples, const voicemath::Segment& kept) {
  m_samples = std::move(samples);
  m_kept = kept;
  const QString description = Say(resources::kKeptPart)
                                  .arg(ToSeconds(m_kept.last - m_kept.first + 1),
                                       ToSeconds(m_samples.size()), ToSeconds(m_kept.first));
  setAccessibleDescription(description);
  setToolTip(qt::AsToolTip(description));
  update();
}

void WavePicture::Clear() {
  m_samples.clear();
  setAccessibleDescription({});
  setToolTip({});
  update();
}

QSize WavePicture::sizeHint() const {
  return {fontMetrics().height() * 20, fontMetrics().height() * 4};
}

QSize WavePicture::minimumSizeHint() const {
  return {fontMetrics().height() * 8, fontMetrics().height() * 4};
}

int WavePicture::ToX(std::size_t sample) const {
  return static_cast<int>(sample * static_cast<std::size_t>(width()) / m_samples.size());
}

void WavePicture::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const QRect area = rect().adjusted(0, 0, 0, -fontMetrics().height());
  painter.fillRect(area, palette().color(QPalette::Base));
  if (!m_samples.empty()) {
    const QRect kept(QPoint(ToX(m_kept.first), area.top()),
                     QPoint(ToX(m_kept.last), area.bottom()));
    QColor ground = palette().color(QPalette::Highlight);
    ground.setAlphaF(0.15F);
    painter.fillRect(kept, ground);
    PaintWave(painter, area);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawLine(kept.topLeft(), kept.bottomLeft());
    painter.drawLine(kept.topRight(), kept.bottomRight());
    PaintSeconds(painter, rect());
  }
  painter.setPen(palette().color(QPalette::Mid));
  painter.drawRect(area.adjusted(0, 0, -1, -1));
}

/// Draws for each column of pixels the lowest and the highest sample in it.
void WavePicture::PaintWave(QPainter& painter, const QRect& area) const {
  int peak = kFullHeight;
  for (const std::int16_t sample : m_samples) {
    peak = std::max(peak, std::abs(int{sample}));
  }
  const auto columns = static_cast<std::size_t>(area.width());
  const auto toY = [&](int sample) {
    return area.center().y() - sample * (area.height() / 2 - 2) / peak;
  };
  for (std::size_t x = 0; x < columns; ++x) {
    const std::size_t from = std::min(x * m_samples.size() / columns, m_samples.size() - 1);
    const std::size_t to = std::max(from + 1, (x + 1) * m_samples.size() / columns);
    const auto [lowest, highest] =
        std::minmax_element(m_samples.begin() + static_cast<std::ptrdiff_t>(from),
                            m_samples.begin() + static_cast<std::ptrdiff_t>(to));
    const bool isKept = from >= m_kept.first && from <= m_kept.last;
    painter.setPen(palette().color(isKept ? QPalette::Highlight : QPalette::PlaceholderText));
    painter.drawLine(static_cast<int>(x), toY(*highest), static_cast<int>(x), toY(*lowest));
  }
}

void WavePicture::PaintSeconds(QPainter& painter, const QRect& area) const {
  constexpr int kTick = 4;
  painter.setPen(palette().color(QPalette::WindowText));
  painter.setLayoutDirection(Qt::LeftToRight);
  const int height = fontMetrics().height();
  for (std::size_t second = 1; second * kSamplesPerSecond < m_samples.size(); ++second) {
    const int x = ToX(second * kSamplesPerSecond);
    painter.drawLine(x, area.bottom() - height - kTick, x, area.bottom() - height);
    painter.drawText(QRect(x - 2 * height, area.bottom() - height + 1, 4 * height, height),
                     Qt::AlignCenter, Say(resources::kSeconds).arg(QLocale().toString(second)));
  }
}

}  // namespace home
