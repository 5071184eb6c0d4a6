#include "host/panel/places.h"

#include <QDir>
#include <QFileInfo>
#include <filesystem>

#include "backends/loading/loaded_library.h"

namespace panel {
namespace {

/// Of the build that this program is part of, or of the folder in which it is installed: its bin,
/// lib and share.
QString PathOf(const char* inBuild, const char* installed) {
  const std::filesystem::path own = loading::FindOwnFile();
  const std::filesystem::path build = loading::FindBuildFolder(own);
  return QString::fromStdString(
      (build.empty() ? own.parent_path().parent_path() / installed : build / inBuild).native());
}

QString IfThere(const QString& path) { return QFileInfo::exists(path) ? path : QString(); }

}  // namespace

QString AppletFolder() { return PathOf("applet", "lib/voxtrel"); }

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
  return IfThere(PathOf("share/voxtrel", "share/voxtrel") + QLatin1Char('/') + name);
}

QString FindCommandLine() { return IfThere(PathOf("host/cli/voxtrel", "bin/voxtrel")); }

}  // namespace panel
