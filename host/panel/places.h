#pragma once

#include <QString>
#include <QStringList>

namespace panel {

// All are found from the place of this program, in an installation or in a build. So an
// installation can be moved. The current folder never counts.

/// Returns the folder that holds the installed applets.
[[nodiscard]] QString AppletFolder();

/// Returns the applets that `places` are or hold, each once. Those of a folder are in the order of
/// their names.
[[nodiscard]] QStringList FindApplets(const QStringList& places);

/// Returns the file that `--open` means: that of a full path, else an installed applet.
[[nodiscard]] QString FindApplet(const QString& name);

/// Returns the path of a file or folder of share/voxtrel. Returns an empty text if it is not there.
[[nodiscard]] QString FindData(const QString& name);

/// Returns the command line that belongs to this panel. Returns an empty text if there is none.
[[nodiscard]] QString FindCommandLine();

}  // namespace panel
