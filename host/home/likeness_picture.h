#pragma once

#include <QPainterPath>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "host/home/likeness.h"

namespace home {

/// A picture of which names are alike. The names stand around a circle, those that are alike close
/// to each other, and each pair is a curve: a thick one if it is too alike. If there is no room for
/// all names, those of the current pair come first, and then those that are too alike.
class LikenessPicture : public QWidget {
 public:
  /// `choose` is called if a pair is clicked.
  LikenessPicture(std::function<void(std::size_t pair)> choose, QWidget* parent);

  /// `names` are those of the tags. `describe` returns what the tool tip of a pair says.
  void Show(QStringList names, std::vector<AlikePair> pairs,
            std::function<QString(std::size_t pair)> describe);
  void SetCurrent(std::optional<std::size_t> pair);

  /// Returns the curve of a pair.
  [[nodiscard]] QPainterPath CurveOf(std::size_t pair) const;
  /// Returns the pair whose curve is nearest to a point. Returns nothing if none is near.
  [[nodiscard]] std::optional<std::size_t> FindPair(const QPoint& at) const;

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  bool event(QEvent* event) override;

 private:
  [[nodiscard]] double Radius() const;
  [[nodiscard]] double AngleOf(double place) const;
  [[nodiscard]] QPointF PointAt(double angle, double radius) const;
  [[nodiscard]] std::vector<std::size_t> PlacesByWeight() const;
  [[nodiscard]] bool IsOfCurrent(std::size_t tag) const;
  void PaintCurves(QPainter& painter) const;
  void PaintNames(QPainter& painter) const;
  [[nodiscard]] double NamePlaceOf(std::size_t place, double span) const;
  void PaintName(QPainter& painter, std::size_t tag, double place) const;

  std::function<void(std::size_t pair)> m_choose;
  std::function<QString(std::size_t pair)> m_describe;
  QStringList m_names;
  std::vector<AlikePair> m_pairs;
  std::vector<std::size_t> m_order;   ///< Tags by their places on the circle.
  std::vector<std::size_t> m_places;  ///< The other way round.
  std::optional<std::size_t> m_current;
};

}  // namespace home
