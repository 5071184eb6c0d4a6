#pragma once

#include <QPainter>
#include <QString>
#include <QWidget>

namespace home {

/// Returns the first letters of the first and the last word of a name, or of its only word, in
/// capitals. Returns an empty text if there is no letter and no digit.
[[nodiscard]] QString InitialsOf(const QString& name);

/// Draws a person's initials in a circle, as large as it fits into `area`.
void DrawAvatar(QPainter& painter, const QRect& area, const QString& name, const QColor& text,
                const QColor& ground);

/// The initials of the person whose name is its accessible name.
class Avatar final : public QWidget {
 public:
  /// As high as so many lines of text.
  Avatar(double lines, QWidget* parent);

  void SetPerson(const QString& name);
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const double m_lines;
};

}  // namespace home
