#pragma once

#include <QString>
#include <QStringList>

namespace panel {

// All are found from where the program lies, so that an installation can be moved as a whole; the
// build tree has its places beside it as well. Needs the QCoreApplication.

/// The folders that hold the installed applets, the first one first.
[[nodiscard]] QStringList AppletFolders();

/// The applets that `places` are or hold, each once; those of a folder by name.
[[nodiscard]] QStringList FindApplets(const QStringList& places);

/// The file that `--open` means: a name without a slash is one of the installed applets where there
/// is one.
[[nodiscard]] QString FindApplet(const QString& name);

/// A file or folder of share/voxtrel, or empty where it is not there.
[[nodiscard]] QString FindData(const QString& name);

/// The command line that belongs to this panel, or empty.
[[nodiscard]] QString FindCommandLine();

}  // namespace panel
