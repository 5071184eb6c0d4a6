#pragma once

#include <QStringList>

#include "host/home/address_book.h"
#include "host/home/setup_section.h"
#include "host/home/setup_tools.h"

namespace home {

/// The address book: which one is used, what it gave, and the choice of another one.
class AddressBookSection final : public SetupSection {
 public:
  /// Both outlive this.
  AddressBookSection(const SetupTools& tools, Errands& errands, QWidget* parent);

  void OnShown() override;
  /// Chooses what was dropped, if it is one file or folder. Otherwise says why not.
  void OnFilesDropped(const QStringList& paths);

 private:
  void Choose(const std::string& contacts);
  void Show(const AddressBook& book);
  void ShowChoice(const BookChoice& choice);
  void ShowRemarks();
  void SetBusy(bool isBusy);

  const SetupTools& m_tools;
  Errands& m_errands;
  bool m_isBusy = false;
  std::vector<std::string> m_places;  ///< Lines about what could not be read.
  bool m_areAllPlacesShown = false;
  // Owned by the widget.
  QLabel* m_source;
  QLabel* m_people;
  QLabel* m_remarks;
  LiveLabel* m_news;
  QPushButton* m_desktop;
  QPushButton* m_file;
  QPushButton* m_allPlaces;  ///< Shows all lines, or the first ones again.
};

}  // namespace home
