#include "host/panel/report.h"

#include <QDataStream>
#include <QIODevice>

namespace panel {
namespace {

constexpr quint32 kSignature = 0x56504E31;
constexpr quint32 kMostReported = 64;
constexpr QDataStream::Version kVersion = QDataStream::Qt_6_0;

QString Printable(QString text) {
  for (QChar& letter : text) {
    if (!letter.isPrint() && !letter.isSurrogate()) {
      letter = QLatin1Char(' ');
    }
  }
  return text.simplified();
}

}  // namespace

QByteArray ToBytes(const LibraryReport& report) {
  QByteArray bytes;
  QDataStream stream(&bytes, QIODevice::WriteOnly);
  stream.setVersion(kVersion);
  stream << kSignature << report.problem << static_cast<quint32>(report.applets.size());
  for (const AppletReport& applet : report.applets) {
    stream << applet.name << applet.icon;
  }
  return bytes;
}

std::optional<LibraryReport> FromBytes(const QByteArray& bytes) {
  QDataStream stream(bytes);
  stream.setVersion(kVersion);
  quint32 signature = 0;
  quint32 count = 0;
  LibraryReport report;
  stream >> signature >> report.problem >> count;
  if (stream.status() != QDataStream::Ok || signature != kSignature || count > kMostReported) {
    return std::nullopt;
  }
  report.problem = Printable(report.problem);
  for (quint32 i = 0; i < count; ++i) {
    AppletReport applet;
    stream >> applet.name >> applet.icon;
    applet.name = Printable(applet.name);
    report.applets.push_back(std::move(applet));
  }
  if (stream.status() != QDataStream::Ok || !stream.atEnd()) {
    return std::nullopt;
  }
  return report;
}

}  // namespace panel
