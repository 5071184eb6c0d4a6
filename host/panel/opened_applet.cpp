#include "host/panel/opened_applet.h"

#include <QFileInfo>
#include <QProcessEnvironment>
#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include "backends/text/printable.h"

// One applet that is open, as the panel sees it: a process, its signs of life, and the last line
// that it meant for the user.
namespace panel {
namespace {

/// A limit for the memory that a line without an end can take. No user has to read more.
constexpr qsizetype kLongestLine = 4096;

QProcessEnvironment EnvironmentWith(const QStringList& additions) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const QString& addition : additions) {
    environment.insert(addition.section(QLatin1Char('='), 0, 0),
                       addition.section(QLatin1Char('='), 1));
  }
  return environment;
}

}  // namespace

ErrorLines::ErrorLines(QByteArray prefix, PassOn passOn)
    : m_prefix(std::move(prefix)), m_passOn(std::move(passOn)) {}

// Bytes arrive in pieces that begin and end anywhere. What has come of a line waits for its end, up
// to the limit. The rest of a line that is too long is dropped, and the next line is whole again.
void ErrorLines::Take(const QByteArray& bytes) {
  for (qsizetype begin = 0; begin < bytes.size();) {
    const qsizetype end = bytes.indexOf('\n', begin);
    const qsizetype length = (end < 0 ? bytes.size() : end) - begin;
    m_begun += bytes.mid(begin, std::min(length, kLongestLine - m_begun.size()));
    begin += length;
    if (end >= 0) {
      TakeLine(std::exchange(m_begun, {}));
      ++begin;
    }
  }
}

void ErrorLines::End() {
  if (!m_begun.isEmpty()) {
    TakeLine(std::exchange(m_begun, {}));
  }
}

void ErrorLines::TakeLine(const QByteArray& line) {
  if (line.startsWith(m_prefix)) {
    m_message = QString::fromUtf8(line.mid(m_prefix.size()));
  } else {
    m_passOn(line);
  }
}

// An applet is watched by its signs of life: each one starts the timer again, and the timer runs
// out if none comes in time. That is no end: a slow applet may answer again. The events come from
// the event loop only, never from within this constructor.
OpenedApplet::OpenedApplet(const Start& start, Events events)
    : m_events(std::move(events)),
      // If standard error does not take a line, nothing changes.
      m_errors(QFileInfo(start.library).fileName().toUtf8() + ": ", [](const QByteArray& line) {
        const std::string shown =
            text::Printable({line.constData(), static_cast<std::size_t>(line.size())}) + '\n';
        static_cast<void>(std::fputs(shown.c_str(), stderr));
      }) {
  QObject::connect(&m_process, &QProcess::readyReadStandardOutput, &m_process,
                   [this] { TakeSignsOfLife(); });
  QObject::connect(&m_process, &QProcess::readyReadStandardError, &m_process,
                   [this] { m_errors.Take(m_process.readAllStandardError()); });
  QObject::connect(&m_process, &QProcess::finished, &m_process,
                   [this](int code, QProcess::ExitStatus status) {
                     OnEnd(m_isStopped                     ? Ending::kStopped
                           : status == QProcess::CrashExit ? Ending::kCrashed
                           : code == 0                     ? Ending::kClosed
                                                           : Ending::kFailed);
                   });
  QObject::connect(&m_process, &QProcess::errorOccurred, &m_process,
                   [this](QProcess::ProcessError error) {
                     if (error == QProcess::FailedToStart) {
                       m_silence.stop();
                       m_events.ended(Ending::kNotStarted, m_process.errorString());
                     }
                   });
  m_silence.setSingleShot(true);
  m_silence.setInterval(start.patience);
  QObject::connect(&m_silence, &QTimer::timeout, &m_silence, [this] { OnSilence(); });

  m_process.setProcessEnvironment(EnvironmentWith(start.environment));
  QStringList arguments{QStringLiteral("--open"), start.library, QStringLiteral("--number"),
                        QString::number(start.number), QStringLiteral("--watched")};
  if (!start.remark.isEmpty()) {
    arguments.append({QStringLiteral("--remark"), start.remark});
  }
  m_process.start(start.program, arguments);
  m_silence.start();
}

OpenedApplet::~OpenedApplet() {
  m_process.disconnect();  // Nobody waits for the events of a process that goes with its object.
  if (m_process.state() != QProcess::NotRunning) {
    m_process.kill();
    m_process.waitForFinished();
  }
}

void OpenedApplet::Raise() { m_process.write(&kRaiseRequest, 1); }

void OpenedApplet::Stop() {
  m_isStopped = true;
  m_process.kill();
}

void OpenedApplet::TakeSignsOfLife() {
  const QByteArray signs = m_process.readAllStandardOutput();
  if (signs.isEmpty()) {
    return;
  }
  m_silence.start();
  if (std::exchange(m_isSilent, false)) {
    m_events.aliveAgain();
  }
  if (!m_isShown && signs.contains(kSignOfWindow)) {
    m_isShown = true;
    m_events.shown();
  }
}

void OpenedApplet::OnSilence() {
  m_isSilent = true;
  m_events.silent();
}

void OpenedApplet::OnEnd(Ending ending) {
  m_silence.stop();
  // Qt may report the end before the last bytes.
  m_errors.Take(m_process.readAllStandardError());
  m_errors.End();
  m_events.ended(ending, m_errors.GetMessage());
}

}  // namespace panel
