#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "applet/about_page.h"
#include "applet/control_panel.h"
#include "framework/dialog.h"
#include "framework/object.h"
#include "language/texts.h"
#include "platform/module.h"
#include "platform/platform.h"
#include "tags/page_one.h"

namespace applet {

/// The applet's property sheet: labels its tabs in the language of the user, and opens the help
/// page.
class PrShit final : public framework::CPropertySheet {
 public:
  PrShit(std::u16string_view caption, const platform::Platform& platform,
         const language::Texts& texts)
      : CPropertySheet(caption, platform.ui), m_shell(platform.shell), m_texts(texts) {}

  bool OnInitDialog() override;
  void OnHelp() override;

 private:
  platform::Shell& m_shell;
  const language::Texts m_texts;
};

/// The applet object: one for each loaded library, for as long as that is loaded. Everything comes
/// on the user-interface thread.
class VoxtrelApp final : public framework::CWinApp {
 public:
  /// `module` is the applet's own library. It and what `platform` refers to outlive the applet.
  /// `writeRecord` writes the record of the system's control panels.
  VoxtrelApp(const platform::Platform& platform, platform::Module& module, RecordWriter writeRecord)
      : m_platform(platform), m_ownModule(module), m_writeRecord(writeRecord) {}

  /// Builds the language table, the pages and the sheet, once, before the first message.
  bool InitInstance() override;

  /// Returns whether the sheet is open, from the double-click that opened it until that is
  /// answered.
  [[nodiscard]] bool IsOpen() const { return m_isOpen; }

  /// Answers a message of the control panel. One that comes while the sheet is open, from the event
  /// loop that the sheet runs, opens no second one.
  [[nodiscard]] std::int32_t Answer(std::uint32_t message, std::intptr_t lParam1,
                                    std::intptr_t lParam2);

 private:
  [[nodiscard]] std::int32_t OnDoubleClick(std::intptr_t lParam1);
  [[nodiscard]] std::int32_t OnStop(std::intptr_t lParam1);
  void OnNewInquire(std::intptr_t record);

  const platform::Platform m_platform;
  platform::Module& m_ownModule;
  const RecordWriter m_writeRecord;

  platform::Module* m_module = nullptr;  ///< Known from start-up on.
  platform::IconHandle m_icon = platform::kNoIcon;
  language::Texts m_texts;

  // Null before start-up, or if memory ran out during it.
  std::unique_ptr<tags::Page_one> m_learningPage;
  std::unique_ptr<AboutPage> m_aboutPage;
  std::unique_ptr<PrShit> m_sheet;

  bool m_isOpen = false;
};

}  // namespace applet
