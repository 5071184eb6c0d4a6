#include "host/home/likeness_picture.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

#include "host/home/access.h"
#include "host/home/say.h"
#include "resources/teaching_strings.h"

namespace home {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;
// The names have this share of half the picture, and more of it for large letters.
constexpr double kLeastNames = 0.42;
constexpr double kMostNames = 0.65;
constexpr int kNameLetters = 14;
constexpr double kDepth = 0.55;       ///< So far from the centre curves are drawn to.
constexpr double kDot = 3;            ///< Radius of the dot of a name.
constexpr double kNameGap = 6;        ///< Between dot and name.
constexpr double kLineShare = 0.85;   ///< So much of their height names need to be apart.
constexpr double kFingerRadius = 22;  ///< So far from a curve it can still be hit.
constexpr double kThick = 3;
constexpr float kFaint = 0.45F;

}  // namespace

LikenessPicture::LikenessPicture(std::function<void(std::size_t pair)> choose, QWidget* parent)
    : QWidget(parent), m_choose(std::move(choose)) {
  SetAccessibleRole(*this, QAccessible::Graphic);
  setAccessibleName(Say(resources::kLikenessPicture));
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void LikenessPicture::Show(QStringList names, std::vector<AlikePair> pairs,
                           std::function<QString(std::size_t pair)> describe) {
  m_names = std::move(names);
  m_pairs = std::move(pairs);
  m_describe = std::move(describe);
  m_order = OrderByLikeness(static_cast<std::size_t>(m_names.size()), m_pairs);
  m_places.resize(m_order.size());
  for (std::size_t place = 0; place < m_order.size(); ++place) {
    m_places[m_order[place]] = place;
  }
  m_current.reset();
  update();
}

void LikenessPicture::SetCurrent(std::optional<std::size_t> pair) {
  m_current = pair;
  update();
}

QSize LikenessPicture::sizeHint() const { return QSize(16, 10) * fontMetrics().lineSpacing(); }

QSize LikenessPicture::minimumSizeHint() const {
  return QSize(6, 10) * fontMetrics().lineSpacing();
}

double LikenessPicture::Radius() const {
  const double half = std::min(width(), height()) / 2.0;
  const double wanted = fontMetrics().averageCharWidth() * kNameLetters;
  return half - std::clamp(wanted, kLeastNames * half, kMostNames * half);
}

/// Returns the angle of a place, counted from the top in the direction of reading.
double LikenessPicture::AngleOf(double place) const {
  const double angle = kTurn * (place + 0.5) / static_cast<double>(m_order.size());
  return layoutDirection() == Qt::RightToLeft ? -angle : angle;
}

QPointF LikenessPicture::PointAt(double angle, double radius) const {
  return QRectF(rect()).center() + radius * QPointF(std::sin(angle), -std::cos(angle));
}

// A curve is drawn towards the centre. So curves between neighbours stay at the edge, and few of
// them cross.
QPainterPath LikenessPicture::CurveOf(std::size_t pair) const {
  const QPointF from =
      PointAt(AngleOf(static_cast<double>(m_places[m_pairs[pair].first])), Radius());
  const QPointF to =
      PointAt(AngleOf(static_cast<double>(m_places[m_pairs[pair].second])), Radius());
  const QPointF centre = QRectF(rect()).center();
  QPainterPath path(from);
  path.quadTo(centre + kDepth * ((from + to) / 2 - centre), to);
  return path;
}

std::optional<std::size_t> LikenessPicture::FindPair(const QPoint& at) const {
  constexpr int kSteps = 24;
  std::optional<std::size_t> nearest;
  double least = kFingerRadius;
  for (std::size_t i = 0; i < m_pairs.size(); ++i) {
    const QPainterPath curve = CurveOf(i);
    // A point for each few pixels of the curve is near enough for a finger.
    for (int step = 0; step <= kSteps; ++step) {
      const QPointF away = curve.pointAtPercent(static_cast<double>(step) / kSteps) - at;
      const double distance = std::hypot(away.x(), away.y());
      if (distance < least) {
        least = distance;
        nearest = i;
      }
    }
  }
  return nearest;
}

void LikenessPicture::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  PaintCurves(painter);
  PaintNames(painter);
}

void LikenessPicture::PaintCurves(QPainter& painter) const {
  QColor faint = palette().color(QPalette::WindowText);
  faint.setAlphaF(kFaint);
  // The most alike pairs last, since they lie above the others.
  for (std::size_t i = m_pairs.size(); i-- > 0;) {
    painter.setPen(m_pairs[i].isTooAlike ? QPen(palette().color(QPalette::Highlight), kThick)
                                         : QPen(faint, 1));
    painter.drawPath(CurveOf(i));
  }
  if (m_current) {
    painter.setPen(QPen(palette().color(QPalette::WindowText),
                        m_pairs[*m_current].isTooAlike ? 2 * kThick : 2));
    painter.drawPath(CurveOf(*m_current));
    if (m_pairs[*m_current].isTooAlike) {
      painter.setPen(QPen(palette().color(QPalette::Highlight), kThick));
      painter.drawPath(CurveOf(*m_current));
    }
  }
}

bool LikenessPicture::IsOfCurrent(std::size_t tag) const {
  return m_current && (m_pairs[*m_current].first == tag || m_pairs[*m_current].second == tag);
}

/// Returns the places in the order in which their names claim room.
std::vector<std::size_t> LikenessPicture::PlacesByWeight() const {
  std::vector<int> weights(m_order.size());  // Of tags.
  for (std::size_t i = 0; i < m_pairs.size(); ++i) {
    for (const std::size_t tag : {m_pairs[i].first, m_pairs[i].second}) {
      weights[tag] = std::max(weights[tag], m_pairs[i].isTooAlike ? 1 : 0);
    }
  }
  std::vector<std::size_t> places(m_order.size());
  for (std::size_t place = 0; place < places.size(); ++place) {
    places[place] = place;
    weights[m_order[place]] += IsOfCurrent(m_order[place]) ? 2 : 0;
  }
  std::ranges::stable_sort(places, std::ranges::greater(),
                           [&](std::size_t place) { return weights[m_order[place]]; });
  return places;
}

void LikenessPicture::PaintNames(QPainter& painter) const {
  painter.setPen(Qt::NoPen);
  painter.setBrush(palette().color(QPalette::WindowText));
  // Dots of neighbours do not touch.
  const double dot = std::min(kDot, kTurn * Radius() / static_cast<double>(m_order.size() + 1) / 3);
  for (std::size_t place = 0; place < m_order.size(); ++place) {
    painter.drawEllipse(PointAt(AngleOf(static_cast<double>(place)), Radius()), dot, dot);
  }
  // How many places a name takes.
  const double span = fontMetrics().height() * kLineShare * static_cast<double>(m_order.size()) /
                      (kTurn * (Radius() + kNameGap));
  std::vector<double> written;
  for (const std::size_t each : PlacesByWeight()) {
    const double place = NamePlaceOf(each, span);
    const bool hasRoom = std::ranges::none_of(written, [&](double other) {
      const double steps = std::abs(place - other);
      return std::min(steps, static_cast<double>(m_order.size()) - steps) < span;
    });
    // The names of the current pair stand there in any case: they are what the user looks for.
    if (hasRoom || IsOfCurrent(m_order[each])) {
      written.push_back(place);
      PaintName(painter, m_order[each], place);
    }
  }
}

/// Returns where a name stands: at its dot. If the two names of the current pair would not have
/// room next to each other, they make way.
double LikenessPicture::NamePlaceOf(std::size_t place, double span) const {
  if (!IsOfCurrent(m_order[place])) {
    return static_cast<double>(place);
  }
  const auto [first, last] =
      std::minmax(m_places[m_pairs[*m_current].first], m_places[m_pairs[*m_current].second]);
  const double missing = std::max(span - static_cast<double>(last - first), 0.0) / 2;
  return static_cast<double>(place) + (place == first ? -missing : missing);
}

/// Writes a name outwards from its place, and never upside down.
void LikenessPicture::PaintName(QPainter& painter, std::size_t tag, double place) const {
  const double angle = AngleOf(place);
  // The text is turned so that it leads away from the centre. On the left it is turned once more,
  // by half a turn, and ends at the dot.
  const bool isOnTheRight = std::sin(angle) >= 0;
  const double begin = Radius() + kDot + kNameGap;
  QFont font = painter.font();
  font.setBold(IsOfCurrent(tag));
  const QFontMetrics metrics(font);
  // As far as the edge of the picture in this direction.
  const double across = std::max(std::abs(std::sin(angle)), 1e-3);
  const double along = std::max(std::abs(std::cos(angle)), 1e-3);
  const double end = std::min((width() - along * metrics.height()) / 2 / across,
                              (height() - across * metrics.height()) / 2 / along);
  const int room = std::max(static_cast<int>(end - begin), 0);
  painter.save();
  painter.setFont(font);
  painter.setPen(palette().color(QPalette::WindowText));
  painter.translate(PointAt(angle, begin));
  painter.rotate(angle * 360 / kTurn + (isOnTheRight ? -90 : 90));
  painter.drawText(
      QRect(isOnTheRight ? 0 : -room, -metrics.height() / 2, room, metrics.height()),
      static_cast<int>(isOnTheRight ? Qt::AlignLeft : Qt::AlignRight) |
          static_cast<int>(Qt::AlignAbsolute | Qt::AlignVCenter) | Qt::TextSingleLine,
      metrics.elidedText(m_names.at(static_cast<qsizetype>(tag)), Qt::ElideRight, room));
  painter.restore();
}

void LikenessPicture::mousePressEvent(QMouseEvent* event) {
  if (const auto pair = FindPair(event->position().toPoint())) {
    m_choose(*pair);
  }
}

bool LikenessPicture::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip) {
    const auto* const help = static_cast<QHelpEvent*>(event);
    const auto pair = FindPair(help->pos());
    QToolTip::showText(help->globalPos(), pair ? qt::AsToolTip(m_describe(*pair)) : QString(),
                       this);
    return true;
  }
  return QWidget::event(event);
}

}  // namespace home
