#include "host/panel/inquiry.h"

#include <QDataStream>
#include <QIODevice>
#include <utility>

#include "backends/qt/strings.h"
#include "resources/desktop_strings.h"

// What the asking process writes and the panel reads. The panel waits for it with a limit, and
// takes whatever comes for bytes from a stranger.
namespace panel {
namespace {

// The bytes of a report: the signature, the problem ("" if there is none), the count of applets,
// and the name and icon of each. The panel starts its own program, so both sides know the same
// version.
constexpr quint32 kSignature = 0x56504E31;
constexpr quint32 kMostReported = 64;
constexpr QDataStream::Version kVersion = QDataStream::Qt_6_0;

/// The library's own code runs in the process that writes a report, so the panel trusts no text.
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
  const std::vector<AppletReport> applets = report.value_or(std::vector<AppletReport>());
  QByteArray bytes;
  QDataStream stream(&bytes, QIODevice::WriteOnly);
  stream.setVersion(kVersion);
  stream << kSignature << (report ? QStringLiteral("") : report.error())
         << static_cast<quint32>(applets.size());
  for (const AppletReport& applet : applets) {
    stream << applet.name << applet.icon;
  }
  return bytes;
}

platform::Result<LibraryReport, ReportError> FromBytes(const QByteArray& bytes) {
  const auto fail = [](ReportError error) { return platform::Failure(error); };
  QDataStream stream(bytes);
  stream.setVersion(kVersion);
  quint32 signature = 0;
  quint32 count = 0;
  QString problem;
  stream >> signature;
  if (stream.status() == QDataStream::Ok && signature != kSignature) {
    return fail(ReportError::kForeign);
  }
  stream >> problem >> count;
  if (count > kMostReported) {
    return fail(ReportError::kForeign);
  }
  std::vector<AppletReport> applets;
  for (quint32 i = 0; i < count; ++i) {
    AppletReport applet;
    stream >> applet.name >> applet.icon;
    applet.name = Printable(applet.name);
    applets.push_back(std::move(applet));
  }
  if (stream.status() != QDataStream::Ok) {
    return fail(ReportError::kCutShort);
  }
  if (!stream.atEnd()) {
    return fail(ReportError::kForeign);
  }
  problem = Printable(problem);
  return problem.isEmpty() ? LibraryReport(std::move(applets)) : platform::Failure(problem);
}

Inquiry::Inquiry(const QString& program, const QString& library, std::chrono::milliseconds limit,
                 Answer answer)
    : m_answer(std::move(answer)) {
  m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  m_process.setStandardInputFile(QProcess::nullDevice());
  QObject::connect(&m_process, &QProcess::finished, &m_process,
                   [this](int, QProcess::ExitStatus status) {
                     Finish(qt::Say(status == QProcess::CrashExit ? resources::kCrashesWhenAsked
                                                                  : resources::kEndsWhenAsked));
                   });
  QObject::connect(&m_process, &QProcess::errorOccurred, &m_process,
                   [this](QProcess::ProcessError error) {
                     if (error == QProcess::FailedToStart) {
                       Finish(qt::Say(resources::kCannotBeAsked).arg(m_process.errorString()));
                     }
                   });
  // A library can hang while it is loaded. Then the limit ends the wait, and the destructor the
  // process.
  m_limit.setSingleShot(true);
  QObject::connect(&m_limit, &QTimer::timeout, &m_limit,
                   [this] { Finish(qt::Say(resources::kGivesNoAnswer)); });
  m_limit.start(limit);
  m_process.start(program, {QStringLiteral("--inquire"), library});
}

Inquiry::~Inquiry() {
  m_answer = nullptr;
  m_process.disconnect();
  if (m_process.state() != QProcess::NotRunning) {
    m_process.kill();
    m_process.waitForFinished();
  }
}

/// `problem` counts only if no report has arrived: a process that reported all and then crashed on
/// its way out has still reported all.
void Inquiry::Finish(const QString& problem) {
  if (!m_answer) {
    return;
  }
  m_limit.stop();
  const Answer answer = std::exchange(m_answer, nullptr);
  answer(FromBytes(m_process.readAllStandardOutput())
             .value_or(LibraryReport(platform::Failure(problem))));
}

}  // namespace panel
