#pragma once

#include <vector>

#include "framework/dialog.h"
#include "language/texts.h"
#include "maintenance/tag_session.h"
#include "maintenance/test_results.h"
#include "platform/platform.h"

namespace maintenance {

/// The Test dialog: lists every tag with the one that it is most easily taken for. Compares all
/// tags whenever it opens, before it is shown, and keeps nothing for the next time. If that takes
/// more than a second, a box with a bar and Cancel appears; once cancelled the list stays empty.
class TestDialog final : public framework::CDialog {
 public:
  /// What `platform` refers to outlives the dialog.
  TestDialog(const platform::Platform& platform, language::Texts texts);

  /// The page whose tags are compared, which outlives the dialog. Must be set before it opens.
  void set_Pageone_point(TagSession* page) { m_page = page; }

  bool OnInitDialog() override;
  void OnCommand(int id, platform::CommandEvent event) override;
  void OnPaint(platform::Canvas& canvas) override;

  /// What the list shows, or showed when the dialog was last open.
  [[nodiscard]] const std::vector<TestLine>& GetLines() const { return m_lines; }

  /// Whether every tag was compared when the dialog was last opened.
  [[nodiscard]] bool IsComplete() const { return m_isComplete; }

 private:
  /// Returns what the user is to be told about tags that are missing.
  [[nodiscard]] std::u16string Compare();
  void ShowLines();

  platform::Platform m_platform;
  language::Texts m_texts;
  TagSession* m_page = nullptr;
  std::vector<TestLine> m_lines;
  bool m_isComplete = true;
};

}  // namespace maintenance
