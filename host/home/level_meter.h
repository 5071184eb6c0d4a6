#pragma once

#include <QWidget>

namespace home {

/// A bar that shows how loud the microphone hears. Its zones are marked: too soft, good, too loud.
/// A mark stays at the highest level. Colours are those of the desktop.
class LevelMeter : public QWidget {
 public:
  explicit LevelMeter(QWidget* parent);

  /// Shows a level in decibels of full scale.
  void SetLevel(double decibels);
  /// Shows silence, and forgets the highest level.
  void Clear();

  [[nodiscard]] double GetLevel() const { return m_level; }
  [[nodiscard]] double GetHighest() const { return m_highest; }

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] int ToX(double decibels) const;
  void Describe();

  double m_level;
  double m_highest;
};

}  // namespace home
