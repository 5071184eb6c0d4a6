#include "applet/voxtrel_app.h"

#include <new>
#include <utility>

#include "resources/pictures.h"
#include "resources/string_table.h"
#include "resources/strings.h"
#include "storage/device_paths.h"

namespace applet {
namespace {

constexpr std::u16string_view kProduct = u"Voxtrel PE";
constexpr std::u16string_view kVersion = u"v3.0";

static_assert(kNoIcon == platform::kNoIcon);

/// The object, or null where there is no memory for it: start-up goes on without it.
template <typename T, typename... Arguments>
std::unique_ptr<T> MakeOrNull(Arguments&&... arguments) {
  try {
    return std::make_unique<T>(std::forward<Arguments>(arguments)...);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace

bool VoxtrelApp::InitInstance() {
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
      if (lParam2 != 0) {
        // A message carries its record as a number.
        OnNewInquire(*reinterpret_cast<NewCplInfo*>(lParam2));
      }
      return 0;
    default:
      return 0;
  }
}

std::int32_t VoxtrelApp::OnDoubleClick(std::intptr_t lParam1) {
  if (m_sheet) {
    if (m_learningPage) {
      m_sheet->AddPage(*m_learningPage);
    }
    if (m_aboutPage) {
      m_sheet->AddPage(*m_aboutPage);
    }
    m_sheet->DoModal();
  }
  // On purpose the end of the sheet is the end of the applet's turn: the icon has lived from the
  // inquiry until the sheet was shown and closed once.
  return OnStop(lParam1);
}

std::int32_t VoxtrelApp::OnStop(std::intptr_t lParam1) {
  if (lParam1 != 0) {
    return 1;  // Not of this applet, whose number is 0.
  }
  if (m_module != nullptr) {
    m_module->DestroyIcon(m_icon);
  }
  m_icon = platform::kNoIcon;
  return 0;
}

void VoxtrelApp::OnNewInquire(NewCplInfo& info) {
  if (m_module == nullptr) {
    return;
  }
  // The flags, the help and the comment are the caller's and stay as they are.
  info.dwSize = kNewCplInfoSize;
  info.lData = resources::kAppletIcon;
  m_icon = m_module->LoadIcon(resources::kAppletIcon);
  info.hIcon = m_icon;
  m_module->LoadString(resources::kAppletNameString, info.szName);
}

}  // namespace applet
