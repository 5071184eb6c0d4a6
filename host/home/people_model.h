#pragma once

#include <QAbstractListModel>
#include <QString>
#include <cstddef>
#include <memory>
#include <vector>

#include "host/home/search.h"
#include "host/home/shelf.h"

namespace home {

/// The numbers that can be taught, each a row, those of a person below each other. A search leaves
/// those that match.
class PeopleModel : public QAbstractListModel {
 public:
  using QAbstractListModel::QAbstractListModel;

  void SetShelf(std::shared_ptr<const Shelf> shelf);
  /// Looks for words in names, companies, kinds and numbers.
  void Search(const QString& typed);

  [[nodiscard]] const Person& PersonAt(int row) const;
  [[nodiscard]] const Number& NumberAt(int row) const;
  /// Returns whether the number has a voice tag.
  [[nodiscard]] bool IsTaught(int row) const;
  /// Returns whether the row above is of somebody else.
  [[nodiscard]] bool IsFirstOfPerson(int row) const;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

 private:
  struct Line {
    std::size_t person;
    std::size_t number;
    bool isTaught;
    SearchLine words;
  };

  [[nodiscard]] const Line& LineAt(int row) const;
  void Filter();
  [[nodiscard]] QString Describe(int row) const;

  std::shared_ptr<const Shelf> m_shelf;
  std::vector<Line> m_lines;         ///< Every number.
  std::vector<std::size_t> m_shown;  ///< Those of `m_lines` that match.
  QString m_typed;
};

}  // namespace home
