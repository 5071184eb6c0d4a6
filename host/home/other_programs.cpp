#include "host/home/other_programs.h"

#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <array>
#include <utility>

#include "backends/posix/library.h"
#include "backends/qt/strings.h"

namespace home {
namespace {

desktop::DesktopShell::Options ShellOptions(const machine::Places& places, QObject& context,
                                            std::function<void(const QString& text)> report) {
  desktop::DesktopShell::Options options;
  options.environment = desktop::ReadEnvironment();
  options.helpFolders = {(places.GetDataFolder() / "help").native()};
  // The shell reports on a thread of its own.
  options.report = [&context, report = std::move(report)](std::u16string_view text) {
    QMetaObject::invokeMethod(
        &context, [report, shown = qt::ToQString(text)] { report(shown); }, Qt::QueuedConnection);
  };
  return options;
}

}  // namespace

OtherPrograms::OtherPrograms(machine::Options options,
                             std::function<void(const QString& text)> report)
    : m_options(std::move(options)),
      m_places(posix::FindOwnFile()),
      m_shell(m_threads, ShellOptions(m_places, m_context, std::move(report))) {}

OtherPrograms::~OtherPrograms() = default;

bool OtherPrograms::Start(const machine::Program& program, const QStringList& arguments) const {
  // Handed over in the environment, since the control panel and what it opens have no such options.
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  const std::array<std::pair<const char*, const std::string&>, 4> variables{
      {{"VOXTREL_ROOT", m_options.root},
       {"VOXTREL_CONTACTS", m_options.contacts},
       {"VOXTREL_MICROPHONE", m_options.microphone},
       {"VOXTREL_SPEAKER", m_options.speaker}}};
  for (const auto& [name, value] : variables) {
    if (!value.empty()) {
      environment.insert(QLatin1String(name), QString::fromStdString(value));
    }
  }
  QProcess process;
  process.setProgram(QString::fromStdString(m_places.GetProgram(program).string()));
  process.setArguments(arguments);
  process.setProcessEnvironment(environment);
  process.setStandardInputFile(QProcess::nullDevice());
  // Without the look at the file, a missing program is noticed only by its child process.
  return QFileInfo(process.program()).isExecutable() && process.startDetached();
}

void OtherPrograms::OpenHelp() {
  m_shell.StartProgram(u"peghelp.exe", u"file:ZedraVoxtrelPE_help.htm");
}

}  // namespace home
