#include "host/panel/newcomer.h"

#include <QDir>
#include <QFile>
#include <QHBoxLayout>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QPushButton>
#include <QStandardPaths>
#include <QStyle>
#include <QToolButton>
#include <array>
#include <utility>

#include "backends/qt/strings.h"
#include "host/panel/places.h"
#include "resources/desktop_strings.h"
#include "resources/panel_strings.h"

// What a user sees who has no contacts or no microphone yet. The panel asks the command line, as
// any program could, and so reads no address book itself.
namespace panel {
namespace {

/// Returns the file that contacts are read from if the user has chosen none.
QString DefaultContacts() {
  const QString root = qEnvironmentVariable("VOXTREL_ROOT");
  return (root.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                               QStringLiteral("/voxtrel")
                         : root) +
         QStringLiteral("/contacts.vcf");
}

/// Returns what the applet takes from the environment in the form in which the command line takes
/// it. So both look at the same machine.
QStringList StatusArguments() {
  QStringList arguments{QStringLiteral("--json")};
  constexpr std::array<std::pair<const char*, const char*>, 3> kOptions{
      {{"VOXTREL_ROOT", "--root"},
       {"VOXTREL_CONTACTS", "--contacts"},
       {"VOXTREL_MICROPHONE", "--microphone"}}};
  for (const auto& [variable, option] : kOptions) {
    const QString value = qEnvironmentVariable(variable);
    if (!value.isEmpty()) {
      arguments.append({QLatin1String(option), value});
    }
  }
  return arguments << QStringLiteral("status");
}

}  // namespace

std::optional<Equipment> ParseEquipment(const QByteArray& json) {
  const QJsonObject object = QJsonDocument::fromJson(json).object();
  const QJsonObject contacts = object[QStringLiteral("contacts")].toObject();
  const QJsonValue count = contacts[QStringLiteral("count")];
  const QJsonValue microphones = object[QStringLiteral("microphones")];
  // Another version of the command line, or none at all.
  if (!count.isDouble() || !microphones.isDouble()) {
    return std::nullopt;
  }
  // The problem ends with what helps on the command line, and the reason does not.
  const QString reason = contacts[QStringLiteral("reason")].toString();
  return Equipment{count.toInt(),
                   reason.isEmpty() ? contacts[QStringLiteral("problem")].toString() : reason,
                   microphones.toInt()};
}

// A newcomer has chosen nothing, so the text says where to put contacts. If the user has
// chosen an address book, the text says what is wrong with it.
QString DescribeMissing(const Equipment& equipment) {
  QStringList lines;
  // "There are no ..." is a new machine. Any other problem comes from a choice that the user made.
  const bool isChoiceAtFault = !equipment.contactsProblem.isEmpty() &&
                               !equipment.contactsProblem.startsWith(QLatin1String("there are no"));
  if (equipment.contacts == 0 && isChoiceAtFault) {
    lines.append(qt::Say(resources::kNoContactsRead).arg(equipment.contactsProblem));
  } else if (equipment.contacts == 0) {
    lines.append(qt::Say(resources::kNoContacts).arg(DefaultContacts()));
  }
  if (equipment.microphones == 0) {
    lines.append(qt::Say(resources::kNoMicrophone));
  }
  return lines.join(QLatin1Char('\n'));
}

// The command line has exit code 0 also if something is missing. So the output alone counts, and
// anything that is no answer leaves the bar hidden.
EquipmentCheck::EquipmentCheck(const QString& commandLine,
                               std::function<void(const Equipment& equipment)> answer) {
  QObject::connect(&m_process, &QProcess::finished, &m_process,
                   [this, answer = std::move(answer)](int, QProcess::ExitStatus) {
                     if (const auto equipment = ParseEquipment(m_process.readAllStandardOutput())) {
                       answer(*equipment);
                     }
                   });
  if (!commandLine.isEmpty()) {
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.start(commandLine, StatusArguments());
  }
}

EquipmentCheck::~EquipmentCheck() {
  // No answer after this: the window that wanted it is going.
  m_process.disconnect();
  if (m_process.state() != QProcess::NotRunning) {
    m_process.kill();
    m_process.waitForFinished();
  }
}

NoticeBar::NoticeBar(QWidget* parent)
    : QFrame(parent), m_text(new QLabel(this)), m_button(new QPushButton(this)) {
  setFrameShape(QFrame::StyledPanel);
  setAccessibleName(qt::Say(resources::kMissingLabel));
  m_text->setWordWrap(true);
  m_text->setTextFormat(Qt::PlainText);
  m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  m_text->setObjectName(QStringLiteral("noticeText"));
  m_button->setObjectName(QStringLiteral("noticeAction"));
  auto* const close = new QToolButton(this);
  close->setAutoRaise(true);
  close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
  close->setAccessibleName(qt::Say(resources::kHideLabel));
  close->setToolTip(qt::Say(resources::kHideLabel));
  connect(close, &QToolButton::clicked, this, &QWidget::hide);

  auto* const layout = new QHBoxLayout(this);
  layout->addWidget(m_text, 1);
  layout->addWidget(m_button);
  layout->addWidget(close, 0, Qt::AlignTop);
  hide();
}

void NoticeBar::Show(const QString& text, const QString& button,
                     const std::function<void()>& action) {
  m_text->setText(text);
  // The bar is shown again and again with other actions, and one press must do one of them.
  m_button->disconnect(this);
  m_button->setVisible(action != nullptr);
  m_button->setText(button);
  if (action) {
    connect(m_button, &QPushButton::clicked, this, action);
  }
  setVisible(!text.isEmpty());
}

std::vector<Sample> FindSamples() {
  std::vector<Sample> samples;
  const QDir folder(FindData(QStringLiteral("samples")));
  const QString ending = QStringLiteral("_1.wav");  // The first of three recordings of a name.
  if (FindData(QStringLiteral("samples")).isEmpty()) {
    return samples;
  }
  for (const QString& file : folder.entryList({u'*' + ending}, QDir::Files, QDir::Name)) {
    QString name = file.chopped(ending.size());
    name.replace(0, 1, name.at(0).toUpper());
    samples.push_back({name, folder.absoluteFilePath(file)});
  }
  return samples;
}

// The samples have a root folder of their own in the cache. To empty the cache costs the user no
// voice tag of their own.
QStringList SampleEnvironment(const QString& recording) {
  const QString root = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
                       QStringLiteral("/voxtrel/samples");
  static_cast<void>(QDir().mkpath(root));
  // A copy, at a place that stays the same if the program is moved: tags know their contacts by it.
  const QString copy = root + QStringLiteral("/contacts.vcf");
  static_cast<void>(QFile::remove(copy));
  static_cast<void>(QFile::copy(FindData(QStringLiteral("samples/contacts.vcf")), copy));
  return {QStringLiteral("VOXTREL_ROOT=") + root, QStringLiteral("VOXTREL_CONTACTS=\\contacts.vcf"),
          QStringLiteral("VOXTREL_MICROPHONE=") + recording};
}

}  // namespace panel
