#pragma once

#include <QColor>
#include <QIcon>
#include <QPainter>
#include <QRectF>
#include <cstdint>

namespace home {

/// The pictures on buttons and in lists. Each is drawn in one colour, so that it fits a light and a
/// dark desktop.
enum class Symbol : std::uint8_t {
  kBack,  ///< Points to where reading begins.
  kMenu,
  kSort,
  kClose,
  kPlay,
  kStop,
  kRecord,
  kCall,
  kDelete,
  kGood,
  kWarning,
  kUnknown,
};

/// Draws the symbol as large as it fits into the middle of `area`.
void DrawSymbol(QPainter& painter, const QRectF& area, Symbol symbol, const QColor& colour);

/// Returns an icon in the colour of the texts of buttons, in every size and state.
[[nodiscard]] QIcon IconOf(Symbol symbol);

}  // namespace home
