#pragma once

#include <vector>

#include "host/home/page.h"
#include "host/home/setup_section.h"
#include "host/home/setup_tools.h"

class QScrollArea;

namespace home {

class AddressBookSection;

/// The set-up page: what the voice tags rest on. One section for each story, one below the other.
class SetupPage final : public Page {
 public:
  explicit SetupPage(SetupTools tools);
  ~SetupPage() override;

  void OnShown(const std::u16string& tag) override;
  void OnLeft() override;
  void OnFilesDropped(const QStringList& paths) override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  /// Fits the column to the width of the page and to the font.
  void FitColumn();

  const SetupTools m_tools;
  // Owned by the page.
  QScrollArea* m_scroll;
  AddressBookSection* m_addressBook;
  std::vector<SetupSection*> m_sections;
  /// Last, so that no errand goes on while the sections are destroyed.
  Errands m_errands;
};

}  // namespace home
