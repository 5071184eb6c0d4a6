#include "host/home/likeness_page.h"

#include <QBoxLayout>
#include <QEvent>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedLayout>
#include <QStyledItemDelegate>
#include <algorithm>
#include <utility>

#include "host/home/button_row.h"
#include "host/home/empty_notice.h"
#include "host/home/likeness_picture.h"
#include "host/home/list_painting.h"
#include "host/home/numbers.h"
#include "host/home/say.h"
#include "host/home/sizes.h"
#include "host/home/symbols.h"
#include "maintenance/test_results.h"
#include "resources/tags_window_strings.h"
#include "resources/teaching_strings.h"

namespace home {
namespace {

constexpr int kPairPadding = 6;
constexpr int kListLines = 5;         ///< Of the list of pairs, at least.
constexpr int kHighPageLines = 28;    ///< A narrow page that is lower has no picture.
constexpr int kWidePageLetters = 90;  ///< From this width on picture and list stand side by side.

// What an item of the list knows. Its text has a line for each of the two names.
constexpr int kScoreRole = Qt::UserRole;
constexpr int kTooAlikeRole = Qt::UserRole + 1;

/// Paints a pair: a name below the other one, and how alike they are at the end.
class PairDelegate final : public QStyledItemDelegate {
 public:
  explicit PairDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

  void paint(QPainter* painter, const QStyleOptionViewItem& given,
             const QModelIndex& index) const override {
    QStyleOptionViewItem option(given);
    initStyleOption(&option, index);
    PaintGround(*painter, option);
    const QRect area = option.rect.adjusted(kPairPadding, kPairPadding, -kPairPadding, 0);
    const QStringList lines = index.data().toString().split(u'\n');
    const QString score = index.data(kScoreRole).toString();
    const int line = option.fontMetrics.lineSpacing();
    const int taken = option.fontMetrics.horizontalAdvance(score) + line + 2 * kPairPadding;
    painter->save();
    for (int i = 0; i < lines.size(); ++i) {
      const QRect place(area.left(), area.top() + i * line, std::max(area.width() - taken, 0),
                        line);
      WriteLine(*painter, option, {place, lines[i], option.font});
    }
    WriteLine(*painter, option,
              {QRect(area.right() + 1 - taken, area.top(), taken, line), score, option.font,
               Qt::AlignTrailing});
    if (index.data(kTooAlikeRole).toBool()) {
      const QRect place(area.right() + 1 - line, area.top() + line, line, line);
      DrawSymbol(*painter, QStyle::visualRect(option.direction, option.rect, place),
                 Symbol::kWarning, ColourOf(option));
    }
    painter->restore();
  }

  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                               const QModelIndex& /*index*/) const override {
    return {0, std::max(2 * option.fontMetrics.lineSpacing() + 2 * kPairPadding, kLeastTarget)};
  }
};

}  // namespace

LikenessPage::LikenessPage(Work& work, Frame& frame)
    : m_work(work),
      m_frame(frame),
      m_summary(new QLabel(this)),
      m_picture(new LikenessPicture(
          [this](std::size_t pair) { m_list->setCurrentRow(static_cast<int>(pair)); }, this)),
      m_notice(new EmptyNotice(this)),
      m_centre(new QStackedLayout) {
  setWindowTitle(Say(resources::kLikenessTitle));
  m_summary->setObjectName(QStringLiteral("likenessSummary"));
  m_summary->setWordWrap(true);
  m_picture->setObjectName(QStringLiteral("likenessPicture"));
  auto* const scrolled = new QWidget;
  m_halves = new QBoxLayout(QBoxLayout::LeftToRight);
  m_halves->addWidget(m_picture, 3);
  m_halves->addWidget(MakePairs(), 2);
  auto* const column = new QVBoxLayout(scrolled);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(m_summary);
  column->addLayout(m_halves, 1);
  auto* const area = new QScrollArea(this);  // For a phone with large letters.
  area->setFrameShape(QFrame::NoFrame);
  area->setWidgetResizable(true);
  area->setFocusPolicy(Qt::NoFocus);  // The focus scrolls: everything below has it.
  area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area->setWidget(scrolled);
  auto* const content = new QWidget(this);
  auto* const rows = new QVBoxLayout(content);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->addWidget(area, 1);
  rows->addWidget(MakeButtons());
  m_centre->addWidget(content);
  m_centre->addWidget(m_notice);
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(m_centre);
}

LikenessPage::~LikenessPage() = default;

QWidget* LikenessPage::MakePairs() {
  auto* const side = new QWidget(this);
  m_list = new QListWidget(side);
  m_list->setObjectName(QStringLiteral("pairs"));
  m_list->setAccessibleName(Say(resources::kPairs));
  m_list->setItemDelegate(new PairDelegate(m_list));
  m_list->setUniformItemSizes(true);
  m_list->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
  m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  connect(m_list, &QListWidget::currentRowChanged, this, [this] { ShowCurrent(); });
  connect(m_list, &QListWidget::itemActivated, this, [this] { Play(); });
  auto* const layout = new QVBoxLayout(side);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_list, 1);
  for (QLabel*& name : m_names) {
    name = new QLabel(side);
    name->setTextFormat(Qt::PlainText);
    name->setWordWrap(true);
    name->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(name);
  }
  m_names[0]->setObjectName(QStringLiteral("firstName"));
  m_names[1]->setObjectName(QStringLiteral("secondName"));
  return side;
}

QWidget* LikenessPage::MakeButtons() {
  m_buttons = new ButtonRow(this);
  m_play = m_buttons->Add(Say(resources::kPlayBoth));
  m_play->setObjectName(QStringLiteral("playBoth"));
  connect(m_play, &QPushButton::clicked, this, [this] { Play(); });
  m_teach = {m_buttons->Add(Say(resources::kTeachFirst)),
             m_buttons->Add(Say(resources::kTeachSecond))};
  for (std::size_t i = 0; i < m_teach.size(); ++i) {
    m_teach[i]->setObjectName(i == 0 ? QStringLiteral("teachFirst")
                                     : QStringLiteral("teachSecond"));
    connect(m_teach[i], &QPushButton::clicked, this, [this, i] { TeachAgain(i); });
  }
  m_buttons->ShowOnly({m_play, m_teach[0], m_teach[1]});
  return m_buttons;
}

void LikenessPage::OnShelf(const std::shared_ptr<const Shelf>& shelf) {
  StopPlaying();
  m_shelf = shelf;
  m_pairs = FindAlikePairs(shelf->tags);
  ShowPairs();
}

void LikenessPage::OnShown(const std::u16string& tag) {
  const auto found = std::ranges::find_if(m_pairs, [&](const AlikePair& pair) {
    return m_shelf->tags[pair.first].name == tag || m_shelf->tags[pair.second].name == tag;
  });
  if (found != m_pairs.end()) {
    m_list->setCurrentRow(static_cast<int>(found - m_pairs.begin()));
  }
  m_list->setFocus();
}

void LikenessPage::OnLeft() { StopPlaying(); }

/// A person can have several tags; then the kind of the number says which one it is.
QString LikenessPage::NameOf(std::size_t index) const {
  const Tag& tag = m_shelf->tags[index];
  const auto count = std::ranges::count(m_shelf->tags, tag.contact, &Tag::contact);
  return count > 1 ? InSentence(tag.contact) + QStringLiteral(" · ") + NameKind(tag.kind)
                   : qt::ToQString(tag.contact);
}

QString LikenessPage::Describe(std::size_t index) const {
  const AlikePair& pair = m_pairs[index];
  return Say(pair.isTooAlike ? resources::kPairIsTooAlike : resources::kPairIsAlike)
      .arg(InSentence(NameOf(pair.first)), InSentence(NameOf(pair.second)),
           locale().toString(maintenance::ToScore(pair.distance)));
}

void LikenessPage::ShowPairs() {
  if (m_pairs.empty()) {
    m_notice->Show(Say(resources::kNothingToCompare),
                   m_shelf->tagsProblem.empty() ? Say(resources::kNothingToCompareAdvice)
                                                : qt::ToQString(m_shelf->tagsProblem),
                   {}, nullptr);
    m_centre->setCurrentWidget(m_notice);
    return;
  }
  const auto bad = std::ranges::count(m_pairs, true, &AlikePair::isTooAlike);
  m_summary->setText(bad == 0   ? Say(resources::kNoneTooAlike)
                     : bad == 1 ? Say(resources::kOneTooAlike)
                                : Say(resources::kManyTooAlike).arg(locale().toString(bad)));
  QStringList names;
  for (std::size_t i = 0; i < m_shelf->tags.size(); ++i) {
    names.append(NameOf(i));
  }
  m_picture->Show(names, m_pairs, [this](std::size_t pair) { return Describe(pair); });
  m_picture->setAccessibleDescription(m_summary->text());
  // The place in the list stays, since the pair that was there may have gone: a tag was taught
  // again.
  const int row = std::max(m_list->currentRow(), 0);
  m_list->clear();
  for (std::size_t i = 0; i < m_pairs.size(); ++i) {
    auto* const item =
        new QListWidgetItem(NameOf(m_pairs[i].first) + u'\n' + NameOf(m_pairs[i].second), m_list);
    const int score = maintenance::ToScore(m_pairs[i].distance);
    item->setData(kScoreRole,
                  ShowNumber(qt::ToText(Say(resources::kPercent).arg(locale().toString(score)))));
    item->setData(kTooAlikeRole, m_pairs[i].isTooAlike);
    item->setData(Qt::AccessibleTextRole, Describe(i));
    item->setToolTip(qt::AsToolTip(Describe(i)));
  }
  m_centre->setCurrentIndex(0);
  m_list->setCurrentRow(std::min(row, m_list->count() - 1));
}

const AlikePair* LikenessPage::GetCurrent() const {
  const int row = m_list->currentRow();
  return row < 0 ? nullptr : &m_pairs[static_cast<std::size_t>(row)];
}

void LikenessPage::ShowCurrent() {
  const AlikePair* const pair = GetCurrent();
  StopPlaying();
  if (pair == nullptr) {
    m_picture->SetCurrent(std::nullopt);
    return;
  }
  m_picture->SetCurrent(static_cast<std::size_t>(m_list->currentRow()));
  const std::array tags{pair->first, pair->second};
  for (std::size_t i = 0; i < tags.size(); ++i) {
    const Tag& tag = m_shelf->tags[tags[i]];
    QStringList parts{InSentence(tag.contact), NameKind(tag.kind), ShowNumber(tag.number)};
    parts.removeAll(QString());
    m_names[i]->setText(parts.join(QStringLiteral(" · ")));
    m_teach[i]->setAccessibleName(Say(resources::kTeachNameAgain).arg(InSentence(NameOf(tags[i]))));
    m_teach[i]->setToolTip(qt::AsToolTip(m_teach[i]->accessibleName()));
  }
}

/// Plays the one and then the other. If something is playing, it ends.
void LikenessPage::Play() {
  if (m_isPlaying) {
    StopPlaying();
    return;
  }
  const AlikePair* const pair = GetCurrent();
  if (pair == nullptr) {
    return;
  }
  m_isPlaying = true;
  m_play->setText(Say(resources::kStopHearing));
  const std::u16string second = m_shelf->tags[pair->second].name;
  m_work.Play(m_shelf->tags[pair->first].name, [self = QPointer<LikenessPage>(this),
                                                turn = ++m_turn, second](const Outcome& outcome) {
    if (self && outcome.isDone) {
      self->PlaySecond(turn, second);
    } else if (self) {
      self->OnPlayed(turn, outcome);
    }
  });
}

// A turn is one press of the button. If the user has stopped or pressed again meanwhile, the turn
// is another one, and the second name is not played.
void LikenessPage::PlaySecond(int turn, const std::u16string& tag) {
  if (turn == m_turn) {
    m_work.Play(tag, [self = QPointer<LikenessPage>(this), turn](const Outcome& outcome) {
      if (self) {
        self->OnPlayed(turn, outcome);
      }
    });
  }
}

void LikenessPage::OnPlayed(int turn, const Outcome& outcome) {
  if (turn == m_turn) {
    m_isPlaying = false;
    m_play->setText(Say(resources::kPlayBoth));
    m_frame.Report(outcome);
  }
}

void LikenessPage::StopPlaying() {
  if (std::exchange(m_isPlaying, false)) {
    ++m_turn;
    m_work.StopPlaying();
    m_play->setText(Say(resources::kPlayBoth));
  }
}

void LikenessPage::TeachAgain(std::size_t side) {
  if (const AlikePair* const pair = GetCurrent()) {
    const std::u16string tag = m_shelf->tags[side == 0 ? pair->first : pair->second].name;
    m_frame.ShowPage(PageId::kTeaching, tag);
  }
}

void LikenessPage::resizeEvent(QResizeEvent* event) {
  Page::resizeEvent(event);
  Arrange();
}

void LikenessPage::changeEvent(QEvent* event) {
  Page::changeEvent(event);
  if (event->type() == QEvent::FontChange) {
    Arrange();
  }
}

// On a small screen with large letters the picture would have no room for names. The list says the
// same.
void LikenessPage::Arrange() {
  const bool isWide = width() >= kWidePageLetters * fontMetrics().averageCharWidth();
  m_halves->setDirection(isWide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
  m_picture->setVisible(isWide || height() >= kHighPageLines * fontMetrics().lineSpacing());
  m_list->setMinimumHeight(m_list->fontMetrics().lineSpacing() * kListLines);
}

}  // namespace home
