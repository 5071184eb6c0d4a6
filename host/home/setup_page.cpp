#include "host/home/setup_page.h"

#include <QEvent>
#include <QFrame>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "host/home/address_book_section.h"
#include "host/home/backup_section.h"
#include "host/home/calls_section.h"
#include "host/home/check_section.h"
#include "host/home/language_section.h"
#include "host/home/microphone_section.h"
#include "host/home/say.h"
#include "host/home/serial_port_section.h"
#include "resources/setup_strings.h"

namespace home {
namespace {

/// Longer lines are hard to read. In widths of a letter.
constexpr int kMostLetters = 90;
constexpr int kMargin = 12;  ///< In pixels of the desktop.

}  // namespace

SetupPage::SetupPage(SetupTools tools)
    : m_tools(std::move(tools)), m_scroll(new QScrollArea(this)) {
  setWindowTitle(Say(resources::kSetupTitle));
  auto* const column = new QWidget;
  m_addressBook = new AddressBookSection(m_tools, m_errands, column);
  m_sections = {m_addressBook,
                new MicrophoneSection(m_tools, column),
                new LanguageSection(m_tools, m_errands, column),
                new CheckSection(m_tools, m_errands, column),
                new CallsSection(m_tools, m_errands, column),
                new SerialPortSection(m_tools, m_errands, column),
                new BackupSection(m_tools, m_errands, column)};
  auto* const lines = new QVBoxLayout(column);
  for (SetupSection* const section : m_sections) {
    if (section != m_sections.front()) {
      auto* const line = new QFrame(column);
      line->setFrameShape(QFrame::HLine);
      line->setFrameShadow(QFrame::Sunken);
      lines->addWidget(line);
    }
    lines->addWidget(section);
  }
  lines->addStretch(1);
  m_scroll->setWidget(column);
  m_scroll->setWidgetResizable(true);
  m_scroll->setFrameShape(QFrame::NoFrame);
  m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  m_scroll->setFocusPolicy(Qt::NoFocus);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_scroll);
}

SetupPage::~SetupPage() = default;

void SetupPage::OnShown(const std::u16string& /*tag*/) {
  for (SetupSection* const section : m_sections) {
    section->OnShown();
  }
}

void SetupPage::OnLeft() {
  for (SetupSection* const section : m_sections) {
    section->OnLeft();
  }
}

void SetupPage::OnFilesDropped(const QStringList& paths) {
  // A file that is dropped is an address book; the page may have been scrolled away from it.
  m_scroll->ensureWidgetVisible(m_addressBook);
  m_addressBook->OnFilesDropped(paths);
}

void SetupPage::resizeEvent(QResizeEvent* event) {
  Page::resizeEvent(event);
  FitColumn();
}

void SetupPage::changeEvent(QEvent* event) {
  Page::changeEvent(event);
  if (event->type() == QEvent::FontChange) {
    FitColumn();
  }
}

// The column stands in the middle of a wide window.
void SetupPage::FitColumn() {
  const int most = fontMetrics().averageCharWidth() * kMostLetters;
  const int side = std::max(0, (width() - most) / 2);
  const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  for (SetupSection* const section : m_sections) {
    section->FitButtons(width() - 2 * (side + kMargin) - bar);
  }
  m_scroll->widget()->layout()->setContentsMargins(side + kMargin, kMargin, side + kMargin,
                                                   2 * kMargin);
}

}  // namespace home
