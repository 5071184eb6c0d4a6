#include "host/home/tags_window.h"

#include <QAction>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QScreen>
#include <QShortcut>
#include <QStackedWidget>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>
#include <utility>

#include "host/home/access.h"
#include "host/home/button.h"
#include "host/home/message_bar.h"
#include "host/home/say.h"
#include "host/home/symbols.h"
#include "host/home/tags_page.h"
#include "resources/tags_window_strings.h"

namespace home {
namespace {

// What is remembered.
const QLatin1String kGeometry("geometry");
const QLatin1String kSortColumn("sortColumn");
const QLatin1String kSortOrder("sortOrder");

constexpr QSize kFirstSize(900, 600);
constexpr double kTitleGrowth = 1.2;

/// A title that gives way if the window is narrow. Its whole text is in the tool tip.
class TitleLabel final : public QLabel {
 public:
  using QLabel::QLabel;
  [[nodiscard]] QSize minimumSizeHint() const override {
    return {0, QLabel::minimumSizeHint().height()};
  }
};

void DressHeaderButton(QToolButton& button, Symbol symbol, std::u16string_view name) {
  button.setIcon(IconOf(symbol));
  button.setAutoRaise(true);
  button.setAccessibleName(Say(name));
  button.setToolTip(Say(name));
  button.setFocusPolicy(Qt::StrongFocus);
  MakeTouchable(button);
}

/// Returns the paths of the files of this machine that are dragged.
QStringList FilesOf(const QMimeData& dragged) {
  QStringList paths;
  for (const QUrl& url : dragged.urls()) {
    if (url.isLocalFile()) {
      paths.append(url.toLocalFile());
    }
  }
  return paths;
}

}  // namespace

TagsWindow::TagsWindow(Work& work, QSettings& remembered, Settings settings)
    : m_work(work), m_remembered(remembered), m_settings(std::move(settings)) {
  SetAccessibleRole(*this, QAccessible::Window);
  setWindowTitle(Say(resources::kTagsTitle));
  // The store is read while the window is made. The answer waits for the event loop.
  m_work.OnLoaded([this](std::shared_ptr<const Shelf> shelf) { OnShelf(std::move(shelf)); });
  m_work.Load();
  QWidget* const header = MakeHeader();
  m_bar = new MessageBar(this);
  m_tags = new TagsPage(work, *this, *m_bar,
                        {.canTeach = m_settings.pages.contains(PageId::kTeaching),
                         .canSetUp = m_settings.pages.contains(PageId::kSetup),
                         .canDial = m_settings.pages.contains(PageId::kDial)},
                        this);
  m_stack = new QStackedWidget(this);
  m_stack->addWidget(m_tags);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(header);
  layout->addWidget(m_stack, 1);
  layout->addWidget(m_bar);
  setAcceptDrops(m_settings.pages.contains(PageId::kSetup));
  FillMenu();
  ShowHeader(windowTitle(), false);
  const auto focusSearch = [this] { m_tags->FocusSearch(); };
  for (const QKeySequence& keys : {QKeySequence(QKeySequence::Find), QKeySequence(Qt::Key_Slash)}) {
    connect(new QShortcut(keys, m_tags, nullptr, nullptr, Qt::WidgetWithChildrenShortcut),
            &QShortcut::activated, this, focusSearch);
  }
  connect(new QShortcut(QKeySequence::Back, this), &QShortcut::activated, this,
          [this] { ShowTags(); });

  if (!restoreGeometry(m_remembered.value(kGeometry).toByteArray())) {
    resize(kFirstSize.boundedTo(screen()->availableSize()));
  }
  bool isNumber = false;
  const int column = m_remembered.value(kSortColumn).toInt(&isNumber);
  if (isNumber && column >= 0 && column < kColumnCount) {
    m_tags->Sort(static_cast<Column>(column), m_remembered.value(kSortOrder).toInt() == 0
                                                  ? Qt::AscendingOrder
                                                  : Qt::DescendingOrder);
  }
}

TagsWindow::~TagsWindow() {
  m_work.OnLoaded(nullptr);
  m_bar->OnToggled(nullptr);
  // The pages go before what they were given.
  for (const auto& [id, page] : std::exchange(m_pages, {})) {
    delete page;
  }
}

QWidget* TagsWindow::MakeHeader() {
  auto* const header = new QWidget(this);
  m_back = new QToolButton(header);
  DressHeaderButton(*m_back, Symbol::kBack, resources::kBack);
  m_back->setObjectName(QStringLiteral("back"));
  connect(m_back, &QToolButton::clicked, this, [this] { ShowTags(); });
  m_title = new TitleLabel(header);
  m_title->setObjectName(QStringLiteral("title"));
  m_title->setTextFormat(Qt::PlainText);
  SetTitleFont();
  auto* const menu = new QToolButton(header);
  menu->setObjectName(QStringLiteral("menu"));
  menu->setShortcut(Qt::Key_F10);
  m_menu = new QMenu(menu);
  GiveMenu(*menu, *m_menu);
  DressHeaderButton(*menu, Symbol::kMenu, resources::kMenu);
  auto* const layout = new QHBoxLayout(header);
  layout->setContentsMargins(layout->contentsMargins().left(), 0, layout->contentsMargins().right(),
                             0);
  layout->addWidget(m_back);
  layout->addWidget(m_title, 1);
  layout->addWidget(menu);
  return header;
}

void TagsWindow::SetTitleFont() {
  QFont large = font();
  large.setPointSizeF(large.pointSizeF() * kTitleGrowth);
  large.setBold(true);
  m_title->setFont(large);
}

void TagsWindow::AddPageItem(QMenu& menu, std::u16string_view text, PageId page) {
  if (m_settings.pages.contains(page)) {
    menu.addAction(Say(text), this, [this, page] { ShowPage(page, {}); });
  }
}

void TagsWindow::AddProgramItem(QMenu& menu, std::u16string_view text,
                                const machine::Program& program, const QStringList& arguments) {
  menu.addAction(Say(text), this, [this, &program, arguments] {
    if (!m_settings.start(program, arguments)) {
      m_bar->Show(Say(resources::kNotStarted).arg(QLatin1String(program.name)));
    }
  });
}

void TagsWindow::FillMenu() {
  m_menu->addAction(&m_tags->GetDialAction());
  m_menu->addAction(&m_tags->GetTeachAction());
  AddPageItem(*m_menu, resources::kLikenessItem, PageId::kLikeness);
  AddPageItem(*m_menu, resources::kTrashItem, PageId::kTrash);
  AddPageItem(*m_menu, resources::kSetupItem, PageId::kSetup);
  m_menu->addSeparator();
  m_menu->addAction(&m_tags->GetUndoAction());
  m_menu->addAction(&m_tags->GetSelectAllAction());
  m_menu->addAction(&m_tags->GetSelectSeveralAction());
  m_menu->addMenu(&m_tags->GetSortMenu());
  m_menu->addAction(Say(resources::kReload), QKeySequence::Refresh, this,
                    [this] { m_work.Load(); });
  m_menu->addSeparator();
  AddProgramItem(*m_menu, resources::kControlPanelItem, machine::kPanel, {});
  AddProgramItem(*m_menu, resources::kSheetItem, machine::kPanel,
                 {QStringLiteral("--open"), QStringLiteral("voxtrel.cpl")});
  m_menu->addSeparator();
  m_menu->addAction(Say(resources::kHelpItem), QKeySequence::HelpContents, this,
                    m_settings.openHelp);
  m_menu->addAction(Say(resources::kAboutItem), this, [this] { ShowAbout(); });
  m_menu->addAction(Say(resources::kCloseItem), QKeySequence::Close, this, [this] { close(); });
  // The keys work also while the menu is closed.
  addActions(m_menu->actions());
}

void TagsWindow::ShowAbout() {
  QMessageBox::about(this, Say(resources::kTagsTitle),
                     Say(resources::kAboutText).arg(QStringLiteral(VOXTREL_VERSION)));
}

void TagsWindow::ShowHeader(const QString& title, bool isPage) {
  m_title->setText(title);
  m_title->setToolTip(qt::AsToolTip(title));
  m_back->setVisible(isPage);
}

Page* TagsWindow::GetShownPage() const {
  return m_stack->currentWidget() == m_tags ? nullptr
                                            : static_cast<Page*>(m_stack->currentWidget());
}

void TagsWindow::OnShelf(std::shared_ptr<const Shelf> shelf) {
  // Reported once: each change of the store brings a shelf with the same problem.
  const std::u16string before = m_shelf ? m_shelf->peopleProblem : std::u16string();
  m_shelf = std::move(shelf);
  // If there is no tag, the page itself says so.
  if (m_shelf->peopleProblem != before && !m_shelf->peopleProblem.empty() &&
      !m_shelf->tags.empty()) {
    const bool canSetUp = m_settings.pages.contains(PageId::kSetup);
    m_bar->Show(qt::ToQString(m_shelf->peopleProblem), Say(resources::kOpenSetup),
                canSetUp ? [this] { ShowPage(PageId::kSetup, {}); } : std::function<void()>());
  }
  m_tags->Show(m_shelf);
  for (const auto& [id, page] : m_pages) {
    GiveShelf(*page);
  }
}

void TagsWindow::GiveShelf(Page& page) const {
  // The first shelf of a start has names only. The page of the tags shows it. The other pages wait
  // for the whole one, which has people and verdicts.
  if (m_shelf && m_shelf->areJudged) {
    page.OnShelf(m_shelf);
  }
}

void TagsWindow::ShowPage(PageId page, const std::u16string& tag) {
  const auto maker = m_settings.pages.find(page);
  if (maker == m_settings.pages.end()) {
    return;
  }
  // A page is made when it is first shown: most users never open most of them.
  Page*& shown = m_pages[page];
  if (shown == nullptr) {
    shown = maker->second(*this).release();
    m_stack->addWidget(shown);
    GiveShelf(*shown);
  }
  if (Page* const before = GetShownPage(); before != nullptr) {
    if (before == shown && tag.empty()) {
      return;  // Nobody who is there already wants to begin again.
    }
    before->OnLeft();
  }
  m_bar->Clear();
  shown->OnShown(tag);
  m_stack->setCurrentWidget(shown);
  ShowHeader(shown->windowTitle(), true);
  // The page may have chosen where typing goes.
  if (focusWidget() == nullptr || !shown->isAncestorOf(focusWidget())) {
    shown->setFocus(Qt::OtherFocusReason);
  }
}

void TagsWindow::ShowTags() {
  if (Page* const shown = GetShownPage(); shown != nullptr) {
    shown->OnLeft();
    m_stack->setCurrentWidget(m_tags);
    ShowHeader(windowTitle(), false);
    m_tags->FocusList();
  }
}

void TagsWindow::Report(const Outcome& outcome) {
  if (!outcome.message.empty()) {
    m_bar->Show(qt::ToQString(outcome.message));
  }
}

void TagsWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Escape) {
    QWidget::keyPressEvent(event);
  } else if (GetShownPage() != nullptr) {
    ShowTags();
  } else if (!m_tags->ClearSearch()) {
    m_bar->Clear();
  }
}

void TagsWindow::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange && m_title != nullptr) {
    SetTitleFont();
  } else if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
    m_work.LoadIfChanged();
  }
}

void TagsWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (!FilesOf(*event->mimeData()).isEmpty()) {
    event->acceptProposedAction();
  }
}

void TagsWindow::dropEvent(QDropEvent* event) {
  ShowPage(PageId::kSetup, {});
  m_pages.at(PageId::kSetup)->OnFilesDropped(FilesOf(*event->mimeData()));
  event->acceptProposedAction();
}

void TagsWindow::closeEvent(QCloseEvent* event) {
  if (Page* const shown = GetShownPage(); shown != nullptr) {
    shown->OnLeft();
  }
  m_work.StopPlaying();
  m_remembered.setValue(kGeometry, saveGeometry());
  m_remembered.setValue(kSortColumn, static_cast<int>(m_tags->GetSortColumn()));
  m_remembered.setValue(kSortOrder, m_tags->GetSortOrder() == Qt::AscendingOrder ? 0 : 1);
  QWidget::closeEvent(event);
}

}  // namespace home
