#include "backends/qt/dialog_windows.h"

#include <QApplication>
#include <QComboBox>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QStyle>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "backends/qt/look.h"
#include "backends/qt/strings.h"
#include "platform/dialog.h"

namespace qt {
namespace {

// In pixels of the device.
constexpr double kSheetMargin = 6;
constexpr double kOkWidth = 56;
constexpr double kOkHeight = 21;
constexpr double kAroundTab = 12;  ///< Above and below its letters.
/// Of the desktop's own: a title bar.
constexpr QSize kChrome(0, 32);

/// Tabs take the size that an area would like to have, which is not the one that it is given.
class FixedScrollArea final : public QScrollArea {
 public:
  explicit FixedScrollArea(QWidget* parent) : QScrollArea(parent) {}
  [[nodiscard]] QSize sizeHint() const override { return maximumSize(); }
};

/// Returns `widget` if it fits into `room`. Otherwise returns an area of that size in which the
/// widget scrolls. The control with the focus is always in sight.
QWidget* FitInto(QSize room, QWidget& widget) {
  if (widget.width() <= room.width() && widget.height() <= room.height()) {
    return &widget;
  }
  auto* const area = new FixedScrollArea(widget.parentWidget());
  area->setObjectName(QStringLiteral("scrolled"));
  area->setFrameShape(QFrame::NoFrame);
  area->setFocusPolicy(Qt::NoFocus);
  area->setWidget(&widget);
  // A bar at one side takes some of the room at the other.
  const int bar = area->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  const bool isTooHigh = widget.height() > room.height();
  const bool isTooWide = widget.width() + (isTooHigh ? bar : 0) > room.width();
  area->setFixedSize(
      QSize(widget.width() + (isTooHigh ? bar : 0), widget.height() + (isTooWide ? bar : 0))
          .boundedTo(room));
  QObject::connect(qApp, &QApplication::focusChanged, area,
                   [area](const QWidget* /*from*/, QWidget* to) {
                     if (to != nullptr && area->widget()->isAncestorOf(to)) {
                       const QRect rect(to->mapTo(area->widget(), QPoint()), to->size());
                       area->ensureVisible(rect.center().x(), rect.center().y(),
                                           rect.width() / 2 + 1, rect.height() / 2 + 1);
                     }
                   });
  return area;
}

QSize GetRoom(const QWidget& window) {
  return window.screen()->availableGeometry().size() - kChrome;
}

/// Returns the library's own word for one of its buttons.
QString WordOfLibrary(const char* english) {
  return QCoreApplication::translate("QPlatformTheme", english);
}

}  // namespace

DialogFrame::DialogFrame(const resources::DialogTemplate& dialog, platform::DialogHandler& handler,
                         UiThread& thread, Pictures& pictures, QWidget* parent)
    : Frame(parent), m_dialog(dialog, handler, thread, pictures, this) {
  setWindowTitle(AsWindowTitle(ToQString(dialog.caption)));
  setPalette(DialogPalette());
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->setSizeConstraint(QLayout::SetFixedSize);
  layout->addWidget(FitInto(GetRoom(*this), m_dialog.GetSurface()));
  if (QPushButton* button = m_dialog.GetDefaultButton()) {
    button->setDefault(true);
  }
  QWidget* before = nullptr;
  for (QWidget* widget : m_dialog.GetTabChain()) {
    // The first control in the order of Tab has the focus, as in classic dialogs.
    if (before == nullptr) {
      widget->setFocus();
    } else {
      setTabOrder(before, widget);
    }
    before = widget;
  }
  m_dialog.SetEndListener([this] { End(); });
}

QtSheet::QtSheet(std::u16string_view caption, std::span<const platform::SheetPage> pages,
                 platform::SheetHandler& handler, UiThread& thread, Pictures& pictures,
                 QWidget* parent)
    : Frame(parent),
      m_pages(pages.begin(), pages.end()),
      m_handler(handler),
      m_thread(thread),
      m_pictures(pictures),
      m_shown(pages.size()) {
  setWindowTitle(AsWindowTitle(ToQString(caption)));
  setFont(DialogFont());
  setPalette(DialogPalette());
  setWindowFlag(Qt::WindowMinMaxButtonsHint, false);
  setWindowFlag(Qt::WindowMinimizeButtonHint, true);
  auto* layout = new QVBoxLayout(this);
  const int margin = ToDesktop(kSheetMargin);
  layout->setContentsMargins(margin, margin, margin, margin);
  layout->setSpacing(margin);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  MakeOkButton();
  MakeTabs();
  MakeTabKeys();
  layout->addWidget(m_tabs);
  m_buttons = new QHBoxLayout;
  m_buttons->setSpacing(margin);
  m_buttons->addStretch();
  m_buttons->addWidget(m_okButton);
  layout->addLayout(m_buttons);
}

void QtSheet::AddCancelButton() {
  m_cancelButton = new QPushButton(WordOfLibrary("Cancel"), this);
  m_cancelButton->setObjectName(QStringLiteral("cancel"));
  m_cancelButton->setFixedSize(std::max(m_okButton->width(), m_cancelButton->sizeHint().width()),
                               m_okButton->height());
  m_buttons->addWidget(m_cancelButton);
  connect(m_cancelButton, &QPushButton::clicked, this, [this] { OnCloseBox(); });
}

void QtSheet::MakeTabs() {
  m_tabs = new QTabWidget(this);
  m_tabs->setObjectName(QStringLiteral("tabs"));
  m_tabs->tabBar()->setElideMode(Qt::ElideRight);
  // Only the bar can have the focus. Screen readers would take the whole for one more control. The
  // first call means the bar as well.
  m_tabs->setFocusPolicy(Qt::NoFocus);
  m_tabs->tabBar()->setFocusPolicy(Qt::TabFocus);
  QSize largest;
  for (const platform::SheetPage& page : m_pages) {
    const auto client = platform::ToPixels({0, 0, page.dialog.width, page.dialog.height});
    // All pages get the size of the largest, so the sheet does not jump when the tabs are turned.
    largest = largest.expandedTo(ToDesktop(client).size());
  }
  // On a narrow screen the pages get the room of the margins.
  const int margin = ToDesktop(kSheetMargin);
  const int tabs = fontMetrics().height() + ToDesktop(kAroundTab);
  QSize room = GetRoom(*this) - QSize(0, tabs + m_okButton->height() + 3 * margin);
  const bool isNarrow = largest.width() + 2 * margin > room.width();
  if (isNarrow) {
    m_tabs->setDocumentMode(true);
    layout()->setContentsMargins(0, margin, 0, margin);
  } else {
    room.rwidth() -= 2 * margin;
  }
  for (const platform::SheetPage& page : m_pages) {
    auto* place = new QWidget;
    place->setFixedSize(largest);
    m_places.push_back(place);
    m_tabs->addTab(FitInto(room, *place), WithoutMnemonic(ToQString(page.dialog.caption)));
  }
}

void QtSheet::MakeOkButton() {
  m_okButton = new QPushButton(WordOfLibrary("OK"), this);
  m_okButton->setObjectName(QStringLiteral("ok"));
  m_okButton->setFixedSize(std::max(ToDesktop(kOkWidth), m_okButton->sizeHint().width()),
                           ToDesktop(kOkHeight));
  connect(m_okButton, &QPushButton::clicked, this, [this] { OnOk(); });
}

void QtSheet::AddRemark(int comboId, const std::function<QString(const QString&)>& remark) {
  auto* combo = findChild<QComboBox*>(QString::number(comboId));
  if (combo == nullptr) {
    return;
  }
  // The items of the list stay as the page made them. What is said of each is in its tool tip, and
  // screen readers read it after the item.
  for (int i = 0; i < combo->count(); ++i) {
    const QString said = remark(combo->itemText(i));
    combo->setItemData(i, AsToolTip(said), Qt::ToolTipRole);
    combo->setItemData(i, said, Qt::AccessibleDescriptionRole);
  }
  auto* label = new QLabel(remark(combo->currentText()), this);
  label->setObjectName(QStringLiteral("remark"));
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  static_cast<QVBoxLayout*>(layout())->insertWidget(1, label);
  connect(combo, &QComboBox::currentTextChanged, label,
          [label, remark](const QString& text) { label->setText(remark(text)); });
}

void QtSheet::MakeTabKeys() {
  // These are shortcuts because a shortcut comes before the control with the focus. The tabs get
  // only keys from the controls on them, and a combo box keeps some of those for itself.
  const struct {
    QKeyCombination key;
    int step;
  } keys[] = {{Qt::CTRL | Qt::Key_Tab, 1},
              {Qt::CTRL | Qt::SHIFT | Qt::Key_Tab, -1},
              {Qt::CTRL | Qt::Key_PageDown, 1},
              {Qt::CTRL | Qt::Key_PageUp, -1}};
  for (const auto& tabKey : keys) {
    auto* shortcut = new QShortcut(QKeySequence(tabKey.key), this);
    connect(shortcut, &QShortcut::activated, this, [this, step = tabKey.step] { TurnTabs(step); });
  }
}

void QtSheet::TurnTabs(int step) {
  const int count = m_tabs->count();
  if (count > 0) {
    m_tabs->setCurrentIndex((m_tabs->currentIndex() + step + count) % count);
  }
}

void QtSheet::Init() {
  // The sheet has its tabs now, and its handler may name them. The first page is set up after that.
  // Turning the tabs is heard from then on, so no page is set up before the user looks at it.
  m_handler.OnInitSheet(*this);
  if (!m_pages.empty()) {
    ShowPage(0);
  }
  connect(m_tabs, &QTabWidget::currentChanged, this, [this](int page) {
    if (page >= 0) {
      ShowPage(static_cast<std::size_t>(page));
    }
  });
}

// A page is set up when it is first shown and stays until the sheet closes. Setting it up can show
// message boxes, so its controls are in the order of Tab before.
void QtSheet::ShowPage(std::size_t page) {
  if (!m_shown[page]) {
    QWidget* place = m_places[page];
    m_shown[page] = std::make_unique<QtDialog>(m_pages[page].dialog, m_pages[page].handler,
                                               m_thread, m_pictures, place);
    OrderTabs();
    m_shown[page]->Init();
    m_shown[page]->GetSurface().show();
    const auto chain = m_shown[page]->GetTabChain();
    if (page == 0 && !chain.empty()) {
      chain.front()->setFocus();
    }
  }
  ChooseDefaultButton(page);
}

// Enter presses the default button of the page, or OK if the page has none.
void QtSheet::ChooseDefaultButton(std::size_t page) {
  QPushButton* ofPage = m_shown[page]->GetDefaultButton();
  // Only one button of a window can be the default one. The library takes the mark from the other.
  (ofPage == nullptr ? m_okButton : ofPage)->setDefault(true);
}

// Tab goes through the controls of the page, then to OK, then to the tabs.
void QtSheet::OrderTabs() {
  std::vector<QWidget*> chain;
  for (const auto& page : m_shown) {
    if (page) {
      const auto controls = page->GetTabChain();
      chain.insert(chain.end(), controls.begin(), controls.end());
    }
  }
  chain.push_back(m_okButton);
  if (m_cancelButton != nullptr) {
    chain.push_back(m_cancelButton);
  }
  chain.push_back(m_tabs->tabBar());
  for (std::size_t i = 1; i < chain.size(); ++i) {
    setTabOrder(chain[i - 1], chain[i]);
  }
}

// While a page waits, neither OK nor the close box may close the sheet: the page is in the middle
// of its work. The gate drops clicks, but a screen reader presses the button without one.
void QtSheet::OnOk() {
  if (m_thread.IsWaiting() || IsOver()) {
    return;
  }
  for (const auto& page : m_shown) {
    if (page) {
      page->TellOk();
    }
  }
  m_wasAccepted = true;
  End();
}

void QtSheet::OnCloseBox() {
  if (!m_thread.IsWaiting()) {
    End();
  }
}

// The page that is shown is asked first. The sheet's own help follows if the page has none.
void QtSheet::OnHelpKey() {
  const auto page = static_cast<std::size_t>(std::max(0, m_tabs->currentIndex()));
  if (page >= m_shown.size() || !m_shown[page] || !m_shown[page]->AskForHelp()) {
    m_handler.OnHelp();
  }
}

void QtSheet::SetTabText(std::size_t tab, std::u16string_view text) {
  if (tab < m_pages.size()) {
    m_tabs->setTabText(static_cast<int>(tab), WithoutMnemonic(ToQString(text)));
  }
}

}  // namespace qt
