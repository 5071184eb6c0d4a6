#include "host/home/tag_model.h"

#include <QDateTime>
#include <QLocale>
#include <compare>
#include <unordered_map>
#include <utility>

#include "backends/text/collation.h"
#include "host/home/numbers.h"
#include "host/home/quality_words.h"
#include "host/home/say.h"
#include "resources/tags_window_strings.h"

namespace home {
namespace {

constexpr std::array kTitles = {resources::kNameColumn,   resources::kNumberColumn,
                                resources::kKindColumn,   resources::kTaughtColumn,
                                resources::kLengthColumn, resources::kQualityColumn,
                                resources::kNearestColumn};
static_assert(kTitles.size() == kColumnCount);

QDateTime ToTime(std::int64_t time) { return QDateTime::fromSecsSinceEpoch(time); }

QString ShowSeconds(double seconds) {
  return FromLeftToRight(Say(resources::kSeconds).arg(QLocale().toString(seconds, 'f', 1)));
}

/// Returns the companies of the people. A name that several people have gives none.
std::unordered_map<std::u16string, QString> FindCompanies(const std::vector<Person>& people) {
  std::unordered_map<std::u16string, QString> companies;
  for (const Person& person : people) {
    const auto [place, isNew] = companies.try_emplace(person.name, qt::ToQString(person.company));
    if (!isNew) {
      place->second.clear();
    }
  }
  return companies;
}

}  // namespace

Grade GradeOf(const Tag& tag) {
  if ((tag.quality.take && !tag.quality.take->verdicts.empty()) || !tag.quality.tooAlike.empty()) {
    return Grade::kWarning;
  }
  return IsJudged(tag.quality) ? Grade::kGood : Grade::kUnknown;
}

void TagModel::Show(std::shared_ptr<const Shelf> shelf) {
  beginResetModel();
  m_shelf = std::move(shelf);
  m_lines.clear();
  m_lines.reserve(m_shelf->tags.size());
  const auto companies = FindCompanies(m_shelf->people);
  for (const Tag& tag : m_shelf->tags) {
    const auto company = companies.find(tag.contact);
    m_lines.emplace_back(
        QStringList{qt::ToQString(tag.contact), NameKind(tag.kind), TextOf(tag, kQuality),
                    company == companies.end() ? QString() : company->second},
        QStringList(qt::ToQString(tag.number)));
  }
  endResetModel();
}

void TagModel::ShowPlaying(const std::u16string& tag) {
  m_playing = tag;
  // All rows: the mark goes from one to another.
  if (rowCount() > 0) {
    emit dataChanged(index(0, 0), index(rowCount() - 1, kColumnCount - 1));
  }
}

int TagModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_shelf->tags.size());
}

int TagModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumnCount;
}

QString TagModel::TextOf(const Tag& tag, int column) const {
  switch (column) {
    case kName:
      return qt::ToQString(tag.contact);
    case kNumber:
      return ShowNumber(tag.number);
    case kKind:
      return NameKind(tag.kind);
    case kTaught:
      return tag.taughtAt ? FromLeftToRight(QLocale().toString(ToTime(*tag.taughtAt).date(),
                                                               QLocale::ShortFormat))
                          : QString();
    case kLength:
      return tag.seconds ? ShowSeconds(*tag.seconds) : QString();
    case kQuality:
      return m_shelf->areJudged ? NameQuality(tag.quality) : QString();
    default:
      return tag.quality.nearest ? qt::ToQString(m_shelf->tags[tag.quality.nearest->index].contact)
                                 : QString();
  }
}

QStringList TagModel::DescribeQuality(int row) const {
  const Tag& tag = TagAt(row);
  QStringList lines;
  if (!tag.problem.empty()) {
    lines.append(qt::ToQString(tag.problem));
  } else if (tag.isStale) {
    lines.append(Say(resources::kContactIsGone));
  }
  return m_shelf->areJudged ? lines + home::DescribeQuality(tag, m_shelf->tags) : lines;
}

QString TagModel::Describe(int row) const {
  const Tag& tag = TagAt(row);
  QStringList lines{qt::ToQString(tag.contact)};
  if (tag.name == m_playing) {
    lines.append(Say(resources::kIsPlaying));
  }
  if (!tag.number.empty()) {
    lines.append(ShowNumber(tag.number) + QStringLiteral(" · ") + NameKind(tag.kind));
  }
  if (tag.taughtAt) {
    lines.append(Say(resources::kTaughtOn)
                     .arg(QLocale().toString(ToTime(*tag.taughtAt), QLocale::LongFormat)));
  }
  lines += DescribeQuality(row);
  if (tag.quality.nearest) {
    lines.append(Say(resources::kMostAlike)
                     .arg(InSentence(m_shelf->tags[tag.quality.nearest->index].contact),
                          QLocale().toString(tag.quality.nearest->distance, 'f', 2)));
  }
  return lines.join(u'\n');
}

QVariant TagModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) {
    return {};
  }
  switch (role) {
    case Qt::DisplayRole:
      return TextOf(TagAt(index.row()), index.column());
    case Qt::ToolTipRole:
      return qt::AsToolTip(Describe(index.row()));
    case Qt::AccessibleDescriptionRole:
      // A screen reader reads each column of the row, and the whole only once.
      return index.column() == kName ? Describe(index.row()) : QString();
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(Qt::AlignVCenter | Qt::AlignLeading);
    default:
      return {};
  }
}

QVariant TagModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= kColumnCount) {
    return {};
  }
  switch (role) {
    case Qt::DisplayRole:
      return Say(kTitles[static_cast<std::size_t>(section)]);
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(Qt::AlignVCenter | Qt::AlignLeading);
    default:
      return {};
  }
}

TagOrder::TagOrder(TagModel& model, QObject* parent)
    : QSortFilterProxyModel(parent), m_model(model) {
  setSourceModel(&model);
}

void TagOrder::Search(const QString& typed) {
  m_words = SearchWords(typed);
  invalidateFilter();
}

bool TagOrder::filterAcceptsRow(int row, const QModelIndex& /*parent*/) const {
  return m_model.LineAt(row).Matches(m_words);
}

namespace {

/// Whether the tag has something in a column. What it has not is the last in either order.
bool IsKnown(const Tag& tag, int column) {
  switch (column) {
    case kNumber:
    case kKind:
      return !tag.number.empty();
    case kTaught:
      return tag.taughtAt.has_value();
    case kLength:
      return tag.seconds.has_value();
    case kNearest:
      return tag.quality.nearest.has_value();
    default:
      return true;
  }
}

/// The most urgent is the least, and tags with the same verdict are equal.
int UrgencyOf(const Tag& tag) {
  constexpr int kNone = 1000;
  if (GradeOf(tag) != Grade::kWarning) {
    return GradeOf(tag) == Grade::kUnknown ? kNone : kNone + 1;
  }
  return tag.quality.take && !tag.quality.take->verdicts.empty()
             ? static_cast<int>(tag.quality.take->verdicts.front())
             : static_cast<int>(voicemath::Verdict::kTooAlike);
}

/// Compares what both tags are known to have in a column.
std::partial_ordering Compare(const Tag& a, const Tag& b, int column) {
  switch (column) {
    case kNumber:
      return text::CompareForDisplay(a.number, b.number);
    case kKind:
      return text::CompareForDisplay(qt::ToText(NameKind(a.kind)), qt::ToText(NameKind(b.kind)));
    case kTaught:
      return *a.taughtAt <=> *b.taughtAt;
    case kLength:
      return *a.seconds <=> *b.seconds;
    case kQuality:
      return UrgencyOf(a) <=> UrgencyOf(b);
    case kNearest:
      return a.quality.nearest->distance <=> b.quality.nearest->distance;
    default:
      return text::CompareForDisplay(a.contact, b.contact);
  }
}

}  // namespace

bool TagOrder::lessThan(const QModelIndex& a, const QModelIndex& b) const {
  const Tag& left = m_model.TagAt(a.row());
  const Tag& right = m_model.TagAt(b.row());
  const int column = a.column();
  const bool isLeftKnown = IsKnown(left, column);
  if (isLeftKnown != IsKnown(right, column)) {
    // The base class turns the answer round for the other order.
    return isLeftKnown == (sortOrder() == Qt::AscendingOrder);
  }
  if (isLeftKnown) {
    if (const auto order = Compare(left, right, column); std::is_neq(order)) {
      return std::is_lt(order);
    }
  }
  // Equal tags are in the order of their names, and those of one name in that of the store,
  // whichever column was sorted by before.
  const auto order = text::CompareForDisplay(left.contact, right.contact);
  return std::is_neq(order) ? std::is_lt(order) : a.row() < b.row();
}

}  // namespace home
