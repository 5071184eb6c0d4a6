#include "host/panel/places.h"

#include <QDir>
#include <QFileInfo>
#include <filesystem>

#include "backends/posix/library.h"
#include "host/machine/places.h"

// Where the panel finds applets, data, and the command line: all of it from its own place.
namespace panel {
namespace {

machine::Places OfThisProgram() { return machine::Places(posix::FindOwnFile()); }

QString ToQString(const std::filesystem::path& path) {
  return QString::fromStdString(path.native());
}

/// Returns an empty text if there is no such file.
QString IfThere(const std::filesystem::path& path) {
  const QString text = ToQString(path);
  return QFileInfo::exists(text) ? text : QString();
}

}  // namespace

QString AppletFolder() { return ToQString(OfThisProgram().GetAppletFolder()); }

QStringList FindApplets(const QStringList& places) {
  QStringList applets;
  for (const QString& place : places) {
    const QFileInfo info(place);
    if (!info.isDir()) {
      if (info.exists()) {
        applets.append(info.absoluteFilePath());
      }
      continue;
    }
    const QDir folder(place);
    for (const QString& name :
         folder.entryList({QStringLiteral("*.cpl")}, QDir::Files, QDir::Name)) {
      applets.append(folder.absoluteFilePath(name));
    }
  }
  applets.removeDuplicates();
  return applets;
}

QString FindApplet(const QString& name) {
  return name.startsWith(QLatin1Char('/')) ? name : AppletFolder() + QLatin1Char('/') + name;
}

QString FindData(const QString& name) {
  return IfThere(OfThisProgram().GetDataFolder() / name.toStdString());
}

QString FindCommandLine() { return IfThere(OfThisProgram().GetProgram(machine::kCommandLine)); }

}  // namespace panel
