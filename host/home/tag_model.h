#pragma once

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/home/search.h"
#include "host/home/shelf.h"

namespace home {

enum Column : std::uint8_t {
  kName,
  kNumber,
  kKind,
  kTaught,
  kLength,
  kQuality,
  kNearest,
  kColumnCount
};

/// How good a tag is, for a symbol. A symbol of each has its own form.
enum class Grade : std::uint8_t { kGood, kWarning, kUnknown };

[[nodiscard]] Grade GradeOf(const Tag& tag);

/// The tags of a shelf, one in each row, in the order of the store.
class TagModel : public QAbstractTableModel {
 public:
  using QAbstractTableModel::QAbstractTableModel;

  void Show(std::shared_ptr<const Shelf> shelf);
  [[nodiscard]] const Tag& TagAt(int row) const {
    return m_shelf->tags[static_cast<std::size_t>(row)];
  }
  [[nodiscard]] const SearchLine& LineAt(int row) const {
    return m_lines[static_cast<std::size_t>(row)];
  }

  /// Marks the tag that is playing. An empty name marks none.
  void ShowPlaying(const std::u16string& tag);
  [[nodiscard]] const std::u16string& GetPlaying() const { return m_playing; }

  /// Returns all that is known of the tag, one sentence or fact on each line.
  [[nodiscard]] QString Describe(int row) const;
  /// Returns whether the quality of the tags is known yet.
  [[nodiscard]] bool AreJudged() const { return m_shelf->areJudged; }
  /// Returns what is wrong with the tag, or that it is good. Returns nothing if that is not known
  /// yet.
  [[nodiscard]] QStringList DescribeQuality(int row) const;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                    int role) const override;

 private:
  [[nodiscard]] QString TextOf(const Tag& tag, int column) const;

  std::shared_ptr<const Shelf> m_shelf = std::make_shared<const Shelf>();
  std::vector<SearchLine> m_lines;  ///< One for each row.
  std::u16string m_playing;
};

/// The rows in the order that the user chose, and only those that the search finds. What is not
/// known comes last in either order.
class TagOrder : public QSortFilterProxyModel {
 public:
  explicit TagOrder(TagModel& model, QObject* parent = nullptr);

  void Search(const QString& typed);

 protected:
  [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex& parent) const override;
  [[nodiscard]] bool lessThan(const QModelIndex& a, const QModelIndex& b) const override;

 private:
  TagModel& m_model;
  SearchWords m_words{QString()};
};

}  // namespace home
