#include "applet/pr_shit.h"

#include <string>

#include "resources/strings.h"
#include "storage/device_paths.h"

namespace applet {
namespace {

constexpr std::u16string_view kHelpViewer = u"peghelp.exe";
/// What stands before a page on the help viewer's command line.
constexpr std::u16string_view kHelpPrefix = u"file:";

constexpr std::size_t kLearningTabIndex = 0;
constexpr std::size_t kAboutTabIndex = 1;

}  // namespace

bool PrShit::OnInitDialog() {
  const bool result = CPropertySheet::OnInitDialog();
  if (m_texts.IsLanguageFileLoaded()) {
    // Without a language file the tabs keep the captions of their pages.
    GetWindow().SetTabText(kLearningTabIndex, m_texts(resources::kLearningTab));
    GetWindow().SetTabText(kAboutTabIndex, m_texts(resources::kAboutTab));
  }
  return result;
}

void PrShit::OnHelp() {
  std::u16string commandLine(kHelpPrefix);
  commandLine += storage::kHelpFile;
  m_shell.StartProgram(kHelpViewer, commandLine);
  CPropertySheet::OnHelp();
}

}  // namespace applet
