#include "host/panel/panel_window.h"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QStackedWidget>
#include <QStatusBar>
#include <QVBoxLayout>
#include <utility>

#include "backends/qt/icons.h"
#include "backends/qt/strings.h"
#include "host/panel/places.h"
#include "resources/desktop_strings.h"
#include "resources/panel_strings.h"

// The window with the icons. It knows nothing about any applet but a file name, until that applet
// has answered.
namespace panel {
namespace {

// What an item of the list knows.
constexpr int kLibraryRole = Qt::UserRole;
constexpr int kNumberRole = Qt::UserRole + 1;
constexpr int kDescriptionRole = Qt::UserRole + 2;

constexpr int kIconSize = 48;
constexpr QSize kGrid(136, 104);

/// The samples are made for this applet.
const QLatin1String kDialerApplet("voxtrel.cpl");
/// All samples have their tags in one folder.
const QLatin1String kSampleGroup("samples");

}  // namespace

PanelWindow::PanelWindow(Settings settings)
    : m_settings(std::move(settings)),
      m_applets(*this, {m_settings.program, m_settings.patience},
                {[this](const QString& text) { m_status->setText(text); },
                 [this](const QString& text) {
                   // Only if it is still there: another applet may have said something since.
                   if (m_status->text() == text) {
                     m_status->clear();
                   }
                 },
                 [this] {
                   // The panel was closed before. It has only waited for this.
                   if (!isVisible()) {
                     QCoreApplication::quit();
                   }
                 }}) {
  setWindowTitle(qt::Say(resources::kPanelTitle));
  setWindowIcon(qt::OwnIcon());
  resize(600, 380);
  m_status = new QLabel(this);
  m_status->setTextFormat(Qt::PlainText);
  m_status->setObjectName(QStringLiteral("status"));
  statusBar()->addWidget(m_status, 1);
  BuildCentre();
  BuildMenus();
  Refresh();
}

PanelWindow::~PanelWindow() = default;

void PanelWindow::BuildCentre() {
  m_list = new QListWidget(this);
  m_list->setAccessibleName(qt::Say(resources::kPanelApplets));
  m_list->setViewMode(QListView::IconMode);
  m_list->setMovement(QListView::Static);
  m_list->setResizeMode(QListView::Adjust);
  m_list->setIconSize(QSize(kIconSize, kIconSize));
  m_list->setGridSize(kGrid);
  m_list->setWordWrap(true);
  m_list->setFrameShape(QFrame::NoFrame);
  m_list->setSpacing(4);
  // The room around the icons has their background: they would touch the edge of it otherwise.
  m_list->setStyleSheet(
      QStringLiteral("QListWidget { padding: 12px 8px; background: palette(base); }"));
  connect(m_list, &QListWidget::itemActivated, this, &PanelWindow::OpenCurrent);
  connect(m_list, &QListWidget::currentItemChanged, this, &PanelWindow::DescribeCurrent);

  m_empty = new QLabel(this);
  m_empty->setAlignment(Qt::AlignCenter);
  m_empty->setWordWrap(true);
  m_empty->setTextFormat(Qt::PlainText);
  m_empty->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  m_empty->setMargin(24);

  m_centre = new QStackedWidget(this);
  m_centre->addWidget(m_list);
  m_centre->addWidget(m_empty);
  m_notice = new NoticeBar(this);
  auto* const page = new QWidget(this);
  auto* const layout = new QVBoxLayout(page);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_centre, 1);
  layout->addWidget(m_notice);
  setCentralWidget(page);
}

void PanelWindow::BuildMenus() {
  QMenu* const applet = menuBar()->addMenu(qt::Say(resources::kPanelAppletMenu));
  m_open = applet->addAction(qt::Say(resources::kPanelOpen), this, &PanelWindow::OpenCurrent);
  m_list->addAction(m_open);
  m_list->setContextMenuPolicy(Qt::ActionsContextMenu);
  BuildSampleMenu();
  applet->addMenu(m_samples);
  applet->addSeparator();
  QAction* const refresh =
      applet->addAction(qt::Say(resources::kPanelRefresh), this, &PanelWindow::Refresh);
  refresh->setShortcut(QKeySequence::Refresh);
  QAction* const quit = applet->addAction(qt::Say(resources::kPanelClose), this, &QWidget::close);
  quit->setShortcut(QKeySequence::Quit);

  QMenu* const help = menuBar()->addMenu(qt::Say(resources::kPanelHelpMenu));
  QAction* const contents =
      help->addAction(qt::Say(resources::kPanelHelp), this, [this] { OpenHelp(); });
  contents->setShortcut(QKeySequence::HelpContents);
  help->addAction(qt::Say(resources::kPanelAbout), this, [this] {
    QMessageBox::about(this, qt::Say(resources::kPanelTitle),
                       qt::Say(resources::kPanelAboutText).arg(QStringLiteral(VOXTREL_VERSION)));
  });
}

// The applet's own shell opens the page, so F1 does the same here as in the sheet. It reports on a
// thread of its own.
void PanelWindow::OpenHelp() {
  const QString folder = FindData(QStringLiteral("help"));
  if (folder.isEmpty()) {
    m_status->setText(qt::Say(resources::kHelpNotInstalled));
    return;
  }
  if (!m_shell) {
    desktop::DesktopShell::Options options;
    options.environment = desktop::ReadEnvironment();
    options.helpFolders = {folder.toStdString()};
    options.report = [this](std::u16string_view text) {
      QMetaObject::invokeMethod(
          this, [this, shown = qt::ToQString(text)] { m_status->setText(shown); },
          Qt::QueuedConnection);
    };
    m_shell = std::make_unique<desktop::DesktopShell>(m_threads, std::move(options));
  }
  m_shell->StartProgram(u"peghelp.exe", u"file:ZedraVoxtrelPE_help.htm");
}

void PanelWindow::BuildSampleMenu() {
  m_samples = new QMenu(qt::Say(resources::kPanelSamples), this);
  for (const Sample& sample : FindSamples()) {
    m_samples->addAction(qt::Say(resources::kPanelSample).arg(qt::WithoutMnemonic(sample.name)),
                         this, [this, sample] { OpenSample(sample); });
  }
}

void PanelWindow::Refresh() {
  m_missing.clear();
  LookForEquipment();
  // Answers to the earlier questions would change items that are gone.
  m_inquiries.clear();
  m_list->clear();
  const QStringList libraries = FindApplets(m_settings.places);
  for (const QString& library : libraries) {
    QListWidgetItem* const item = AddItem(library, 0, QFileInfo(library).completeBaseName());
    // All libraries are asked at the same time, each by a process of its own. The list is there at
    // once, and a slow one delays nobody.
    item->setData(kDescriptionRole, qt::Say(resources::kIsBeingAsked).arg(library));
    m_inquiries.push_back(std::make_unique<Inquiry>(
        m_settings.program, library, m_settings.inquiryLimit,
        [this, library](const LibraryReport& report) { ShowApplets(library, report); }));
  }
  if (m_list->count() > 0) {
    m_list->setCurrentRow(0);
  }
  m_empty->setText(qt::Say(resources::kNoApplets).arg(m_settings.places.join(QLatin1Char('\n'))));
  m_centre->setCurrentIndex(libraries.isEmpty() ? 1 : 0);
  m_open->setEnabled(!libraries.isEmpty());
  m_samples->menuAction()->setVisible(!m_samples->isEmpty() &&
                                      libraries.join(u'\n').contains(kDialerApplet));
  DescribeCurrent();
}

QListWidgetItem* PanelWindow::AddItem(const QString& library, int number, const QString& name) {
  auto* const item = new QListWidgetItem(qt::PlainIcon(), name, m_list);
  item->setData(kLibraryRole, library);
  item->setData(kNumberRole, number);
  item->setTextAlignment(Qt::AlignHCenter | Qt::AlignTop);
  return item;
}

/// Until its library has answered, an applet has one item, which bears the file's name. The answer
/// changes that item into the first applet, and adds an item for each other applet at the end of
/// the list.
void PanelWindow::ShowApplets(const QString& library, const LibraryReport& report) {
  QListWidgetItem* first = nullptr;
  for (int row = 0; row < m_list->count() && first == nullptr; ++row) {
    if (m_list->item(row)->data(kLibraryRole).toString() == library) {
      first = m_list->item(row);
    }
  }
  const auto describe = [](QListWidgetItem* item, const QString& text) {
    item->setData(kDescriptionRole, text);
    item->setToolTip(qt::AsToolTip(text));
    item->setData(Qt::AccessibleDescriptionRole, text);
  };
  if (!report) {
    describe(first, qt::Say(resources::kAppletProblem).arg(report.error(), library));
    DescribeCurrent();
    return;
  }
  for (std::size_t i = 0; i < report->size(); ++i) {
    const AppletReport& applet = (*report)[i];
    const int number = static_cast<int>(i);
    QListWidgetItem* const item = i == 0 ? first : AddItem(library, number, first->text());
    if (applet.name.isEmpty()) {
      describe(item, qt::Say(resources::kAppletGivesNoName).arg(library));
    } else {
      item->setText(applet.name);
      describe(item, library);
    }
    item->setIcon(qt::IconOf(applet.icon));
  }
  DescribeCurrent();
}

void PanelWindow::DescribeCurrent() {
  const QListWidgetItem* const item = m_list->currentItem();
  m_status->setText(item == nullptr ? QString() : item->data(kDescriptionRole).toString());
}

void PanelWindow::OpenCurrent() {
  const QListWidgetItem* const item = m_list->currentItem();
  if (item != nullptr) {
    AppletChoice choice{
        item->data(kLibraryRole).toString(), item->data(kNumberRole).toInt(), item->text(), {}};
    // What the bar says, no applet needs to say once more.
    choice.isNewcomerWelcomed = m_lacksContacts && m_notice->isVisible();
    m_applets.Open(choice);
  }
}

void PanelWindow::OpenSample(const Sample& sample) {
  for (int row = 0; row < m_list->count(); ++row) {
    const QListWidgetItem* const item = m_list->item(row);
    const QString library = item->data(kLibraryRole).toString();
    if (QFileInfo(library).fileName() == kDialerApplet) {
      m_applets.Open({library, 0, item->text(), SampleEnvironment(sample.path),
                      qt::Say(resources::kSamplesMark).arg(sample.name), kSampleGroup});
      return;
    }
  }
}

void PanelWindow::LookForEquipment() {
  m_equipment = std::make_unique<EquipmentCheck>(
      m_settings.commandLine, [this](const Equipment& equipment) { OnEquipment(equipment); });
}

void PanelWindow::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  // The user may have added contacts meanwhile.
  if (event->type() == QEvent::ActivationChange && isActiveWindow() && !m_missing.isEmpty()) {
    LookForEquipment();
  }
}

void PanelWindow::OnEquipment(const Equipment& equipment) {
  if (equipment.microphones > 0) {
    // The watch is for a machine without a microphone, to which one is plugged in.
    m_watch.reset();
  } else if (m_watch == nullptr && m_settings.watchInputs) {
    m_watch = m_settings.watchInputs([this] {
      QMetaObject::invokeMethod(
          this, [this] { LookForEquipment(); }, Qt::QueuedConnection);
    });
  }
  m_lacksContacts = equipment.contacts == 0;
  const QString missing = DescribeMissing(equipment);
  if (std::exchange(m_missing, missing) == missing && !missing.isEmpty()) {
    return;  // The user may have hidden the bar.
  }
  const std::vector<Sample> samples = FindSamples();
  if (missing.isEmpty() || !m_samples->menuAction()->isVisible() || samples.empty()) {
    m_notice->Show(missing, {}, nullptr);
    return;
  }
  // A newcomer who lacks something is offered the one thing that needs neither.
  const Sample& sample = samples.front();
  m_notice->Show(missing + QLatin1Char('\n') + qt::Say(resources::kUntilThen).arg(sample.name),
                 qt::Say(resources::kTryNow), [this, sample] { OpenSample(sample); });
}

void PanelWindow::closeEvent(QCloseEvent* event) {
  // Applets that are open stay open, and the panel ends with the last of them.
  if (!m_applets.IsAnyOpen()) {
    QCoreApplication::quit();
  }
  event->accept();
}

}  // namespace panel
