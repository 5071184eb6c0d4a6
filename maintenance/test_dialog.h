#pragma once

#include <vector>

#include "framework/dialog.h"
#include "language/texts.h"
#include "maintenance/maintenance_dialog.h"
#include "maintenance/test_results.h"
#include "platform/platform.h"

namespace maintenance {

/// The Test dialog: lists every tag with the one that it is most easily taken for. Compares all
/// tags whenever it opens, before it is shown, and keeps nothing for the next time. If that takes
/// more than a second, a box with a bar and Cancel appears. After Cancel the list stays empty.
class TestDialog final : public framework::CDialog {
 public:
  /// What `platform` refers to must outlive the dialog.
  TestDialog(const platform::Platform& platform, language::Texts texts);

  /// Sets the page whose tags are compared. The page must outlive the dialog, and must be set
  /// before the dialog opens.
  void set_Pageone_point(TagSession* page) { m_page = page; }

  bool OnInitDialog() override;
  void OnCommand(int id, platform::CommandEvent event) override;
  void OnPaint(platform::Canvas& canvas) override;
  /// Opens the help at the place that explains the test.
  bool OnHelp() override;

  /// Returns what the list shows, or showed when the dialog was last open.
  [[nodiscard]] const std::vector<TestLine>& GetLines() const { return m_lines; }

  /// Returns whether every tag was compared when the dialog was last opened.
  [[nodiscard]] bool IsComplete() const { return m_isComplete; }

 private:
  /// Fills the list. Returns what to say to the user about tags that are missing in it; an empty
  /// text if none are.
  [[nodiscard]] std::u16string Compare();
  void ShowLines();

  platform::Platform m_platform;
  language::Texts m_texts;
  TagSession* m_page = nullptr;
  std::vector<TestLine> m_lines;
  bool m_isComplete = true;
};

}  // namespace maintenance
