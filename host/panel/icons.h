#pragma once

#include <QByteArray>
#include <QIcon>

namespace panel {

/// The icon of an applet's SVG in every size that is shown, or the plain icon where the bytes are
/// no picture.
[[nodiscard]] QIcon IconOf(const QByteArray& svg);

/// For applets that have none.
[[nodiscard]] QIcon PlainIcon();

/// The panel's own.
[[nodiscard]] QIcon PanelIcon();

}  // namespace panel
