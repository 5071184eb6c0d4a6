#pragma once

#include <QByteArray>
#include <QIcon>

namespace qt {

/// Returns the icon of an applet's SVG in every size that is shown. Returns the plain icon if the
/// bytes are no picture.
[[nodiscard]] QIcon IconOf(const QByteArray& svg);

/// Returns the icon for applets that have none.
[[nodiscard]] QIcon PlainIcon();

/// Returns the icon of the system's own windows.
[[nodiscard]] QIcon OwnIcon();

}  // namespace qt
