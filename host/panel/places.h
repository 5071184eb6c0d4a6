#pragma once

#include <QString>
#include <QStringList>

namespace panel {

// All are found from where the program is installed, so that the whole can be moved, or in the
// build that it is part of; never from the current folder.

/// The folder that holds the installed applets.
[[nodiscard]] QString AppletFolder();

/// The applets that `places` are or hold, each once; those of a folder by name.
[[nodiscard]] QStringList FindApplets(const QStringList& places);

/// The file that `--open` means: that of a full path, else an installed applet.
[[nodiscard]] QString FindApplet(const QString& name);

/// A file or folder of share/voxtrel, or empty if it is not there.
[[nodiscard]] QString FindData(const QString& name);

/// The command line that belongs to this panel, or empty.
[[nodiscard]] QString FindCommandLine();

}  // namespace panel
