// Has the panel read what a process that holds a foreign library may write: any bytes for the
// report on its applets, any bytes on the standard error of an opened applet.

#include <QByteArray>
#include <QString>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/panel/inquiry.h"
#include "host/panel/opened_applet.h"
#include "tests/fuzz/require.h"

namespace {

bool IsShown(const QString& text) {
  return std::ranges::all_of(text, [](QChar c) { return c.isPrint() || c.isSurrogate(); });
}

void ReadReport(const QByteArray& bytes) {
  const auto report = panel::FromBytes(bytes);
  if (!report) {
    return;
  }
  const QString problem = report->has_value() ? QString() : report->error();
  const auto applets = report->value_or(std::vector<panel::AppletReport>());
  Require(IsShown(problem), "a problem is on one line");
  qsizetype told = problem.size();
  for (const panel::AppletReport& applet : applets) {
    Require(IsShown(applet.name), "a name is on one line");
    told += applet.name.size() + applet.icon.size();
  }
  Require(told <= bytes.size(), "a report holds no more than was written");
  const auto again = panel::FromBytes(panel::ToBytes(*report));
  Require(again && again->has_value() == report->has_value() &&
              (*again ? (**again).size() == applets.size() : again->error() == problem),
          "what was read can be written and read");
}

struct Heard {
  std::vector<QByteArray> passedOn;
  QString message;

  friend bool operator==(const Heard&, const Heard&) = default;
};

Heard Hear(const QByteArray& bytes, qsizetype piece) {
  Heard heard;
  panel::ErrorLines lines("applet.cpl: ",
                          [&heard](const QByteArray& line) { heard.passedOn.push_back(line); });
  for (qsizetype at = 0; at < bytes.size(); at += piece) {
    lines.Take(bytes.mid(at, piece));
  }
  lines.End();
  heard.message = lines.GetMessage();
  return heard;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  ReadReport(bytes);
  const Heard whole = Hear(bytes, std::max<qsizetype>(bytes.size(), 1));
  Require(Hear(bytes, 1 + bytes.size() % 7) == whole, "lines do not depend on the pieces");
  Require(std::ranges::none_of(whole.passedOn,
                               [](const QByteArray& line) {
                                 return line.contains('\n') || line.startsWith("applet.cpl: ");
                               }),
          "what is meant for the user is not passed on");
  return 0;
}
