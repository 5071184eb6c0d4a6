#include "host/panel/places.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace panel {
namespace {

QStringList FromProgram(std::initializer_list<const char*> relatives) {
  const QDir program(QCoreApplication::applicationDirPath());
  QStringList paths;
  for (const char* relative : relatives) {
    paths.append(QDir::cleanPath(program.absoluteFilePath(QLatin1String(relative))));
  }
  return paths;
}

QString FirstThatIsThere(const QStringList& paths) {
  for (const QString& path : paths) {
    if (QFileInfo::exists(path)) {
      return path;
    }
  }
  return {};
}

}  // namespace

QStringList AppletFolders() { return FromProgram({"../lib/voxtrel", "../../applet"}); }

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
  if (!name.contains(QLatin1Char('/'))) {
    for (const QString& folder : AppletFolders()) {
      QString path = QDir(folder).absoluteFilePath(name);
      if (QFileInfo::exists(path)) {
        return path;
      }
    }
  }
  return QFileInfo(name).absoluteFilePath();
}

QString FindData(const QString& name) {
  QStringList paths = FromProgram({"../share/voxtrel/", "../../share/voxtrel/"});
  for (QString& path : paths) {
    path += QLatin1Char('/') + name;
  }
  return FirstThatIsThere(paths);
}

QString FindCommandLine() { return FirstThatIsThere(FromProgram({"voxtrel", "../cli/voxtrel"})); }

}  // namespace panel
