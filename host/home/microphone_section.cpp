#include "host/home/microphone_section.h"

#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QSignalBlocker>
#include <algorithm>

#include "host/home/level_meter.h"
#include "host/home/say.h"
#include "host/home/sizes.h"
#include "resources/setup_strings.h"
#include "storage/microphone_choice.h"

namespace home {
namespace {

using platform::WaveInput;

std::u16string ReadChoice(const machine::Options& options) {
  machine::Backends backends(options);
  backends.ChangeNothing();
  return backends.HasRoot() ? storage::ReadMicrophone(backends.GetRegistry()) : std::u16string();
}

bool KeepChoice(const machine::Options& options, const std::u16string& name) {
  machine::Backends backends(options);
  if (!backends.HasRoot()) {
    return false;
  }
  backends.MakeRoot();
  return storage::ChooseMicrophone(backends.GetRegistry(), name).has_value();
}

}  // namespace

MicrophoneSection::MicrophoneSection(const SetupTools& tools, QWidget* parent)
    : SetupSection(resources::kMicrophone, parent),
      m_tools(tools),
      m_recorder(tools.sound),
      m_label(AddText(Say(resources::kInputToUse))),
      m_inputs(new ChoiceBox(this)),
      m_meter(new LevelMeter(this)) {
  m_label->setTextInteractionFlags(Qt::NoTextInteraction);
  m_label->setBuddy(m_inputs);
  m_inputs->setObjectName(QStringLiteral("inputs"));
  m_inputs->setMinimumHeight(kLeastTarget);
  m_meter->setObjectName(QStringLiteral("level"));
  // A long name of a device does not widen the window.
  m_inputs->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  m_inputs->setAccessibleName(Say(resources::kInputToUse).remove(u'&'));
  AddControl(m_inputs);
  AddControl(m_meter);
  m_news = AddNews();
  m_news->setObjectName(QStringLiteral("inputNews"));
  if (!m_tools.options.microphone.empty()) {
    m_label->hide();
    m_inputs->hide();
    AddText(Say(resources::kInputIsFile)
                .arg(QFile::decodeName(QByteArray::fromStdString(m_tools.options.microphone))));
  } else {
    AddText(Say(resources::kInputRule));
  }
  connect(m_inputs, &QComboBox::activated, this,
          [this](int index) { Choose(qt::ToText(m_inputs->itemData(index).toString())); });
}

void MicrophoneSection::OnShown() {
  m_isShown = true;
  // The watch calls on a thread of its own. Tell takes the call to the event loop.
  m_watch = m_tools.inputs.StartWatch([this] { m_errands.Tell([this] { Look(); }); });
  Look();
  Listen();
}

void MicrophoneSection::OnLeft() {
  m_isShown = false;
  m_watch.reset();
  m_recorder.Stop();
  m_meter->Clear();
}

void MicrophoneSection::Look() {
  m_errands.Do(
      [&tools = m_tools] {
        return Found{tools.inputs.List().value_or(std::vector<WaveInput>()),
                     ReadChoice(tools.options)};
      },
      [this](const Found& found) { Show(found); });
}

// The first item leaves the choice to the desktop. A chosen input that is not connected stays in
// the list, so that it is chosen when it comes back.
void MicrophoneSection::Show(const Found& found) {
  m_found = found;
  const QSignalBlocker blocker(m_inputs);
  m_inputs->clear();
  const auto used = std::ranges::find(found.inputs, true, &WaveInput::isUsed);
  const auto chosen = std::ranges::find(found.inputs, found.chosen, &WaveInput::name);
  const bool isServers = found.chosen.empty() && used != found.inputs.end();
  m_inputs->addItem(isServers
                        ? Say(resources::kServersInputIs).arg(qt::ToQString(used->description))
                        : Say(resources::kServersInput),
                    QString());
  for (const WaveInput& input : found.inputs) {
    m_inputs->addItem(qt::ToQString(input.description), qt::ToQString(input.name));
  }
  if (!found.chosen.empty() && chosen == found.inputs.end()) {
    const QString name = qt::ToQString(found.chosen);
    m_inputs->addItem(Say(resources::kInputAway).arg(name), name);
  }
  m_inputs->setCurrentIndex(std::max(0, m_inputs->findData(qt::ToQString(found.chosen))));
  // On a narrow window the field shows the beginning only.
  m_inputs->setToolTip(qt::AsToolTip(m_inputs->currentText()));
}

void MicrophoneSection::Choose(const std::u16string& name) {
  m_errands.Do([&options = m_tools.options, name] { return KeepChoice(options, name); },
               [this](bool isKept) {
                 if (!isKept) {
                   ShowNews(*m_news, Say(resources::kInputNotKept));
                 }
                 Look();
                 if (m_isShown) {
                   Listen();
                 }
               });
}

void MicrophoneSection::Listen() {
  m_meter->Clear();
  m_recorder.Listen([this](const TakeProgress& progress) {
    const bool isHeard = progress.stage == TakeProgress::Stage::kSpeak;
    if (isHeard) {
      m_meter->SetLevel(progress.levelDb);
    } else {
      m_meter->Clear();
    }
    const QString text = progress.stage == TakeProgress::Stage::kNoMicrophone
                             ? Say(resources::kNoInput)
                         : isHeard ? Say(resources::kSaySomething)
                                   : m_news->text();
    if (text != m_news->text()) {
      ShowNews(*m_news, text);
    }
  });
}

}  // namespace home
