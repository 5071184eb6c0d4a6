#include "host/home/people_model.h"

#include <cstdint>
#include <set>
#include <string>
#include <utility>

#include "host/home/numbers.h"
#include "host/home/say.h"
#include "resources/teaching_strings.h"

// Each number is a row, since a number is what is taught. The words of all rows are folded once,
// when the shelf comes, so that a letter of the search only compares texts.
namespace home {

void PeopleModel::SetShelf(std::shared_ptr<const Shelf> shelf) {
  std::set<std::pair<std::int32_t, std::u16string>> taught;
  for (const Tag& tag : shelf->tags) {
    if (tag.oid) {
      taught.emplace(*tag.oid, tag.kind);
    }
  }
  beginResetModel();
  m_shelf = std::move(shelf);
  m_lines.clear();
  for (std::size_t i = 0; i < m_shelf->people.size(); ++i) {
    const Person& person = m_shelf->people[i];
    for (std::size_t j = 0; j < person.numbers.size(); ++j) {
      const Number& number = person.numbers[j];
      m_lines.push_back({i, j, taught.contains({person.oid, number.kind}),
                         SearchLine({qt::ToQString(person.name), qt::ToQString(person.company),
                                     NameKind(number.kind)},
                                    {qt::ToQString(number.text)})});
    }
  }
  Filter();
  endResetModel();
}

void PeopleModel::Search(const QString& typed) {
  // Rows come and go all over the list. One reset costs less than a signal for each of thousands.
  beginResetModel();
  m_typed = typed;
  Filter();
  endResetModel();
}

void PeopleModel::Filter() {
  const SearchWords words(m_typed);
  m_shown.clear();
  for (std::size_t i = 0; i < m_lines.size(); ++i) {
    if (m_lines[i].words.Matches(words)) {
      m_shown.push_back(i);
    }
  }
}

const PeopleModel::Line& PeopleModel::LineAt(int row) const {
  return m_lines[m_shown[static_cast<std::size_t>(row)]];
}

const Person& PeopleModel::PersonAt(int row) const { return m_shelf->people[LineAt(row).person]; }

const Number& PeopleModel::NumberAt(int row) const {
  return PersonAt(row).numbers[LineAt(row).number];
}

bool PeopleModel::IsTaught(int row) const { return LineAt(row).isTaught; }

bool PeopleModel::IsFirstOfPerson(int row) const {
  return row == 0 || LineAt(row - 1).person != LineAt(row).person;
}

int PeopleModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_shown.size());
}

QString PeopleModel::Describe(int row) const {
  const Person& person = PersonAt(row);
  QStringList parts{qt::ToQString(person.name), qt::ToQString(person.company),
                    NameKind(NumberAt(row).kind), ShowNumber(NumberAt(row).text),
                    IsTaught(row) ? Say(resources::kIsTaught) : QString()};
  parts.removeAll(QString());
  return parts.join(QStringLiteral(", "));
}

QVariant PeopleModel::data(const QModelIndex& index, int role) const {
  switch (role) {
    case Qt::DisplayRole:
      return qt::ToQString(PersonAt(index.row()).name);
    case Qt::AccessibleTextRole:
      return Describe(index.row());
    case Qt::ToolTipRole:
      return qt::AsToolTip(Describe(index.row()));
    default:
      return {};
  }
}

}  // namespace home
