#include "host/panel/open_applets.h"

#include <QMessageBox>
#include <QPushButton>
#include <algorithm>
#include <utility>

#include "backends/qt/strings.h"
#include "resources/desktop_strings.h"
#include "resources/panel_strings.h"

// All applets that are open, and what the user is asked or told about them. The panel itself never
// waits for one.
namespace panel {
namespace {

/// The same applet in other surroundings is another one: it may be open twice.
QString KeyOf(const AppletChoice& choice) {
  return choice.library + QLatin1Char('\n') + QString::number(choice.number) + QLatin1Char('\n') +
         choice.environment.join(QLatin1Char('\n'));
}

QMessageBox* MakeBox(QWidget& window, QMessageBox::Icon icon, const QString& title,
                     const QString& text) {
  auto* const box = new QMessageBox(icon, title, text, QMessageBox::NoButton, &window);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setTextFormat(Qt::PlainText);
  box->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  // A modal box would keep the user from the other applets.
  box->setModal(false);
  return box;
}

}  // namespace

// Boxes and applets live longer than the calls that make them, and any of them may go first: the
// user closes a box while the applet answers again, or the applet ends while its box is open. So
// each event finds its applet by the key again, and a box that goes takes its name out of the
// entry.
OpenApplets::OpenApplets(QWidget& window, Settings settings, Events events)
    : m_window(window), m_settings(std::move(settings)), m_events(std::move(events)) {}

OpenApplets::~OpenApplets() = default;

void OpenApplets::Open(const AppletChoice& choice) {
  const QString key = KeyOf(choice);
  const auto found = m_open.find(key);
  if (found != m_open.end()) {
    found->second.applet->Raise();
    m_events.status(qt::Say(resources::kIsOpenAlready).arg(choice.name));
    return;
  }
  // The applet is opened when the other one has ended.
  if (TakesTurn(choice)) {
    return;
  }
  const QString opening = qt::Say(resources::kOpening).arg(choice.name);
  m_events.status(opening);
  OpenedApplet::Events events;
  events.ended = [this, key](Ending ending, const QString& message) {
    OnEnd(key, ending, message);
  };
  events.silent = [this, key] { OnSilence(key); };
  events.aliveAgain = [this, key] { OnAliveAgain(key); };
  events.shown = [this, opening] { m_events.shown(opening); };
  Entry& entry = m_open[key];
  entry.choice = choice;
  QStringList environment = choice.environment;
  if (choice.isNewcomerWelcomed) {
    environment.append(QStringLiteral("VOXTREL_WELCOMED=1"));
  }
  entry.applet = std::make_unique<OpenedApplet>(
      OpenedApplet::Start{m_settings.program, choice.library, choice.number, environment,
                          m_settings.patience, choice.remark},
      std::move(events));
}

// Two instances on the same tags are not possible: the second one would only bring forward the
// window of the first. What the first has not stored is a recording that has just begun.
bool OpenApplets::TakesTurn(const AppletChoice& choice) {
  const auto found = std::ranges::find_if(m_open, [&](const auto& open) {
    return !choice.group.isEmpty() && open.second.choice.group == choice.group;
  });
  if (found == m_open.end()) {
    return false;
  }
  found->second.next = choice;
  found->second.applet->Stop();
  return true;
}

void OpenApplets::OnEnd(const QString& key, Ending ending, const QString& message) {
  // This is an event of the object, so the object is released when the event is over.
  const auto finish = [this, key, ending, message] {
    const auto found = m_open.find(key);
    // Nobody has to answer whether to wait for an applet that has ended.
    if (found->second.question != nullptr) {
      found->second.question->close();
    }
    const AppletChoice choice = found->second.choice;
    const std::optional<AppletChoice> next = found->second.next;
    // The entry goes first: opening the next one may take its place.
    m_open.erase(found);
    if (next) {
      Open(*next);
      return;
    }
    ReportEnd(choice, ending, message);
    if (m_open.empty()) {
      m_events.allClosed();
    }
  };
  QMetaObject::invokeMethod(&m_context, finish, Qt::QueuedConnection);
}

void OpenApplets::ReportEnd(const AppletChoice& choice, Ending ending, const QString& message) {
  switch (ending) {
    case Ending::kClosed:
      m_events.status(message);
      break;
    case Ending::kFailed:
      // An applet that leaves no message has shown its own before it ended.
      m_events.status(message.isEmpty() ? qt::Say(resources::kHasEndedEarly).arg(choice.name)
                                        : message);
      if (!message.isEmpty()) {
        ShowProblem(choice.name, message);
      }
      break;
    case Ending::kCrashed:
      m_events.status(qt::Say(resources::kHasCrashed).arg(choice.name));
      ShowProblem(choice.name, qt::Say(resources::kHasCrashedAndWasClosed).arg(choice.name));
      break;
    case Ending::kStopped:
      m_events.status(qt::Say(resources::kWasClosed).arg(choice.name));
      break;
    case Ending::kNotStarted:
      m_events.status(qt::Say(resources::kCannotBeOpened).arg(choice.name));
      ShowProblem(choice.name, qt::Say(resources::kCannotBeOpenedSince).arg(choice.name, message));
      break;
  }
}

void OpenApplets::ShowProblem(const QString& name, const QString& text) {
  QMessageBox* const box = MakeBox(m_window, QMessageBox::Warning, name, text);
  box->addButton(QMessageBox::Ok);
  box->show();
}

// The box does not block: the panel and its other applets go on. "Wait" is the answer to Enter and
// Escape, since "Close it" loses what the user did in the applet.
void OpenApplets::OnSilence(const QString& key) {
  Entry& entry = m_open[key];
  const QString& name = entry.choice.name;
  m_events.status(qt::Say(resources::kDoesNotAnswer).arg(name));
  QMessageBox* const box =
      MakeBox(m_window, QMessageBox::Question, name, qt::Say(resources::kWaitOrClose).arg(name));
  QPushButton* const wait =
      box->addButton(qt::Say(resources::kWaitButton), QMessageBox::RejectRole);
  QPushButton* const close =
      box->addButton(qt::Say(resources::kCloseButton), QMessageBox::DestructiveRole);
  box->setDefaultButton(wait);
  box->setEscapeButton(wait);
  QObject::connect(close, &QPushButton::clicked, &m_context, [this, key] {
    const auto found = m_open.find(key);
    if (found != m_open.end()) {
      found->second.applet->Stop();
    }
  });
  QObject::connect(box, &QObject::destroyed, &m_context, [this, key, box] {
    const auto found = m_open.find(key);
    if (found != m_open.end() && found->second.question == box) {
      found->second.question = nullptr;
    }
  });
  entry.question = box;
  box->show();
}

void OpenApplets::OnAliveAgain(const QString& key) {
  Entry& entry = m_open[key];
  m_events.status(qt::Say(resources::kAnswersAgain).arg(entry.choice.name));
  if (entry.question != nullptr) {
    entry.question->close();
  }
}

}  // namespace panel
