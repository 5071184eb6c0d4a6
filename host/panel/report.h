#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

namespace panel {

/// What the panel shows of one applet.
struct AppletReport {
  QString name;     ///< Empty where the applet gave none.
  QByteArray icon;  ///< SVG; empty: the plain icon.
};

/// What the process that asked a library tells the panel.
struct LibraryReport {
  QString problem;  ///< Empty where the applets can be used.
  std::vector<AppletReport> applets;
};

[[nodiscard]] QByteArray ToBytes(const LibraryReport& report);

/// Nothing where the bytes are no report, since the process had ended early or wrote something
/// else. Control characters in texts become blanks.
[[nodiscard]] std::optional<LibraryReport> FromBytes(const QByteArray& bytes);

}  // namespace panel
