#pragma once

#include <QColor>
#include <QFont>
#include <QRect>
#include <QString>

class QPainter;
class QStyleOptionViewItem;

namespace home {

// What the lists of the window have in common that paint their items themselves. Places are those
// of a window that is read from left to right; in another one they are mirrored within the item.

/// Shares of the colour of texts.
inline constexpr float kQuietShare = 0.75F;   ///< For a text that matters less.
inline constexpr float kThinShare = 0.15F;    ///< For a line between two items.
inline constexpr float kGroundShare = 0.18F;  ///< For a ground below letters.

/// Returns the colour as transparent as its share says.
[[nodiscard]] QColor WithShare(QColor colour, float share);

/// Returns the colour of a text of the item. A text of a selected item is never quiet: it would be
/// hard to read on the colour of the selection.
[[nodiscard]] QColor ColourOf(const QStyleOptionViewItem& option, bool isQuiet = false);

/// Paints what the style has below the texts of the item.
void PaintGround(QPainter& painter, const QStyleOptionViewItem& option);

/// A line of text in an item. What is too long is elided.
struct ItemLine {
  QRect place;
  QString text;
  QFont font;
  Qt::Alignment edge = Qt::AlignLeading;  ///< Leading is the edge at which reading begins.
  Qt::TextElideMode elided = Qt::ElideRight;
  bool isQuiet = false;
};

/// Writes the line. It begins at the edge at which the window begins, whatever direction its text
/// has, so names of both directions stand at one edge.
void WriteLine(QPainter& painter, const QStyleOptionViewItem& option, const ItemLine& line);

}  // namespace home
