#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "backends/qt/qt_ui.h"
#include "backends/qt/ui_thread.h"
#include "framework/dialog.h"
#include "language/language_table.h"
#include "tags/page_one.h"

#include "tests/support/headless_platform.h"

namespace support {

/// Pictures for tests: number 1 is an SVG of 20 by 10 pixels in one blue, 2 a PNG of 4 by 4, and
/// the others are the program's own.
[[nodiscard]] qt::PictureSource TestPictures();

/// A page that paints what pages paint: a header, lines, a picture.
class PaintedPage final : public framework::CPropertyPage {
 public:
  explicit PaintedPage(platform::Ui& ui);

  bool OnInitDialog() override;
  void OnPaint(platform::Canvas& canvas) override;
  void OnLButtonDown(platform::Point point) override { lastPress = point; }
  void OnOK() override { ++okCount; }

  int initCount = 0;
  int okCount = 0;
  std::optional<platform::Point> lastPress;
};

/// The Learning page in a real sheet on Qt, and nothing else real: contacts Ann and Bob, a
/// microphone that hears speech, and a clock that does not wait.
class PageMachine {
 public:
  PageMachine();

  [[nodiscard]] platform::Platform GetPlatform();
  /// The bytes of a language file.
  void LoadLanguage(const std::vector<std::byte>& file);
  /// Makes the page and runs the sheet until the user has closed it. Returns true if the user
  /// pressed OK.
  bool RunSheet();

  HeadlessPlatform machine{1000};
  qt::UiThread thread;
  framework::ServedClock clock{thread, machine.simulation};
  framework::ServedThreads threads{thread, machine.simulation};
  qt::QtUi ui{thread, u"Zedra Voxtrel", TestPictures()};
  language::LanguageTable table;
  language::Texts texts;
};

}  // namespace support
