#pragma once

#include <QWidget>
#include <cstdint>
#include <vector>

#include "voicemath/endpoint_detector.h"

namespace home {

/// A picture of a recording. The part that is kept as the tag stands out from the rest. Time runs
/// from left to right in every language, as it does on players and recorders.
class WavePicture : public QWidget {
 public:
  explicit WavePicture(QWidget* parent);

  /// Shows a recording. There are samples, and `kept` lies within them.
  void SetWave(std::vector<std::int16_t> samples, const voicemath::Segment& kept);
  void Clear();

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void PaintWave(QPainter& painter, const QRect& area) const;
  void PaintSeconds(QPainter& painter, const QRect& area) const;
  [[nodiscard]] int ToX(std::size_t sample) const;

  std::vector<std::int16_t> m_samples;
  voicemath::Segment m_kept;
};

}  // namespace home
