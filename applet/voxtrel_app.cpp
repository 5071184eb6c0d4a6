#include "applet/voxtrel_app.h"

#include <array>
#include <new>
#include <string>
#include <utility>

#include "resources/pictures.h"
#include "resources/strings.h"
#include "storage/device_paths.h"

namespace applet {
namespace {

constexpr std::u16string_view kProduct = u"Voxtrel PE";
constexpr std::u16string_view kVersion = u"v3.0";

/// The number of the one applet that the library holds, and the answer to a message for another
/// one.
constexpr std::intptr_t kOwnNumber = 0;
constexpr std::int32_t kNotOfThisApplet = 1;

/// Characters of the record's name, with the NUL.
constexpr std::size_t kMaxName = std::tuple_size_v<decltype(NewCplInfo::szName)>;

constexpr std::u16string_view kHelpViewer = u"peghelp.exe";
/// What stands before a page on the help viewer's command line.
constexpr std::u16string_view kHelpPrefix = u"file:";

constexpr std::size_t kLearningTabIndex = 0;
constexpr std::size_t kAboutTabIndex = 1;

/// Raises a flag for as long as it lives, so that it falls too if a library throws.
class Raised {
 public:
  explicit Raised(bool& flag) : m_flag(flag) { m_flag = true; }
  Raised(const Raised&) = delete;
  Raised& operator=(const Raised&) = delete;
  ~Raised() { m_flag = false; }

 private:
  bool& m_flag;
};

/// Returns null if there is no memory for the object. Start-up goes on without it.
template <typename T, typename... Arguments>
std::unique_ptr<T> MakeOrNull(Arguments&&... arguments) {
  try {
    return std::make_unique<T>(std::forward<Arguments>(arguments)...);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

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

bool VoxtrelApp::InitInstance() {
  // The texts come before the pages that show them. If there is no memory for one of the objects,
  // the others are made all the same.
  m_module = &m_ownModule;
  m_texts = language::LoadTexts(m_platform.files, storage::kLanguageFile, m_platform.clock);
  m_learningPage = MakeOrNull<tags::Page_one>(m_platform, m_texts);
  m_aboutPage = MakeOrNull<AboutPage>(
      m_platform,
      AboutDetails{resources::kProductPicture, resources::kMakerPicture, kProduct, kVersion});
  m_sheet = MakeOrNull<PrShit>(m_texts(resources::kSheetCaption), m_platform, m_texts);
  return CWinApp::InitInstance();
}

std::int32_t VoxtrelApp::Answer(std::uint32_t message, std::intptr_t lParam1,
                                std::intptr_t lParam2) {
  switch (static_cast<CplMessage>(message)) {
    case CplMessage::kInit:
    case CplMessage::kGetCount:
      return 1;
    case CplMessage::kDblClk:
      return OnDoubleClick(lParam1);
    case CplMessage::kStop:
      return OnStop(lParam1);
    case CplMessage::kNewInquire:
      OnNewInquire(lParam2);
      return 0;
    default:
      return 0;
  }
}

std::int32_t VoxtrelApp::OnDoubleClick(std::intptr_t lParam1) {
  if (m_isOpen) {
    // Answered as an opening that was dealt with. The icon lives until the sheet was closed.
    return lParam1 == kOwnNumber ? 0 : kNotOfThisApplet;
  }
  if (m_sheet) {
    // A page that the sheet has from an earlier opening stays in its place.
    if (m_learningPage) {
      m_sheet->AddPage(*m_learningPage);
    }
    if (m_aboutPage) {
      m_sheet->AddPage(*m_aboutPage);
    }
    const Raised open(m_isOpen);
    m_sheet->DoModal();
  }
  // On purpose the end of the sheet is the end of the applet's turn: the icon has lived from the
  // inquiry until the sheet was shown and closed once.
  return OnStop(lParam1);
}

std::int32_t VoxtrelApp::OnStop(std::intptr_t lParam1) {
  if (lParam1 != kOwnNumber) {
    return kNotOfThisApplet;
  }
  if (m_module != nullptr) {
    m_module->DestroyIcon(m_icon);
  }
  m_icon = platform::kNoIcon;
  return 0;
}

void VoxtrelApp::OnNewInquire(std::intptr_t record) {
  if (m_module == nullptr || record == 0) {
    return;
  }
  m_icon = m_module->LoadIcon(resources::kAppletIcon);
  std::array<char16_t, kMaxName> name{};
  const int length = m_module->LoadString(resources::kAppletNameString, name);
  m_writeRecord(record,
                {resources::kAppletIcon, m_icon, {name.data(), static_cast<std::size_t>(length)}});
}

}  // namespace applet
