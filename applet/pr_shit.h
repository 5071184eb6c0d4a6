#pragma once

#include <string_view>

#include "framework/dialog.h"
#include "language/texts.h"
#include "platform/platform.h"

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

}  // namespace applet
