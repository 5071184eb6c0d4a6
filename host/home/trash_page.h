#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/home/page.h"
#include "host/home/work.h"

class QLabel;
class QListWidget;
class QPushButton;
class QStackedLayout;

namespace home {

class ButtonRow;
class EmptyNotice;

/// Lists the tags in the trash, and puts back those that are chosen.
class TrashPage : public Page {
 public:
  /// Both outlive this.
  TrashPage(Work& work, Frame& frame);
  ~TrashPage() override;

  void OnShelf(const std::shared_ptr<const Shelf>& shelf) override;
  void OnShown(const std::u16string& tag) override;

 private:
  void Read();
  void OnRead(const Outcome& outcome, const std::vector<DeletedTag>& tags);
  void ShowTags();
  void ShowChosen();
  void Restore();
  void OnRestored(const Outcome& outcome, std::size_t count);
  [[nodiscard]] QString NameOf(const DeletedTag& tag) const;
  [[nodiscard]] QStringList Describe(const DeletedTag& tag) const;
  [[nodiscard]] std::vector<std::u16string> GetChosen() const;

  Work& m_work;
  Frame& m_frame;
  std::shared_ptr<const Shelf> m_shelf;  ///< Null until the store has been read.
  std::vector<DeletedTag> m_tags;
  int m_reading = 0;       ///< How often it was read. An answer to an earlier one is passed over.
  bool m_isShown = false;  ///< Whether the trash was read for somebody.
  bool m_isBusy = false;   ///< Tags are being put back.
  // Owned by the widgets.
  QListWidget* m_list;
  QLabel* m_obstacle;
  ButtonRow* m_buttons;
  QPushButton* m_restore;
  EmptyNotice* m_notice;
  QStackedLayout* m_centre;
};

}  // namespace home
