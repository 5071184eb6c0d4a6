#include "host/panel/inquiry.h"

#include <utility>

#include "host/panel/message.h"
#include "resources/desktop_strings.h"

namespace panel {

Inquiry::Inquiry(const QString& program, const QString& library, std::chrono::milliseconds limit,
                 Answer answer)
    : m_answer(std::move(answer)) {
  m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  m_process.setStandardInputFile(QProcess::nullDevice());
  QObject::connect(&m_process, &QProcess::finished, &m_process,
                   [this](int, QProcess::ExitStatus status) {
                     Finish(status == QProcess::CrashExit ? Message(resources::kCrashesWhenAsked)
                                                          : Message(resources::kEndsWhenAsked));
                   });
  QObject::connect(&m_process, &QProcess::errorOccurred, &m_process,
                   [this](QProcess::ProcessError error) {
                     if (error == QProcess::FailedToStart) {
                       Finish(Message(resources::kCannotBeAsked).arg(m_process.errorString()));
                     }
                   });
  m_limit.setSingleShot(true);
  QObject::connect(&m_limit, &QTimer::timeout, &m_limit,
                   [this] { Finish(Message(resources::kGivesNoAnswer)); });
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

void Inquiry::Finish(const QString& problem) {
  if (!m_answer) {
    return;
  }
  m_limit.stop();
  const Answer answer = std::exchange(m_answer, nullptr);
  // Whoever told all and then fell over on its way out has still told all.
  if (const auto report = FromBytes(m_process.readAllStandardOutput())) {
    answer(*report);
  } else {
    answer({problem, {}});
  }
}

}  // namespace panel
