#include "backends/win32/win32_sheet.h"

#include <commctrl.h>
#include <prsht.h>

#include <algorithm>
#include <utility>

#include "backends/win32/dialog_resource.h"
#include "backends/win32/system_calls.h"

namespace win32 {
namespace {

/// The last hexadecimal digit of a system command is the system's own.
constexpr WPARAM kSystemCommands = 0xFFF0;

[[nodiscard]] bool IsClosing(UINT message, WPARAM wParam) {
  switch (message) {
    case WM_CLOSE:
      return true;
    case WM_SYSCOMMAND:
      return (wParam & kSystemCommands) == SC_CLOSE;
    case WM_COMMAND:
      return LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL;
    default:
      return false;
  }
}

[[nodiscard]] RECT PlaceOf(HWND child) {
  RECT place{};
  GetWindowRect(child, &place);
  MapWindowPoints(nullptr, GetParent(child), reinterpret_cast<POINT*>(&place), 2);
  return place;
}

}  // namespace

Win32Sheet::Win32Sheet(std::u16string_view caption, std::span<const platform::SheetPage> pages,
                       platform::SheetHandler& handler, UiThread& thread, Pictures& pictures)
    : m_caption(caption), m_handler(handler), m_thread(thread) {
  for (const platform::SheetPage& page : pages) {
    auto dialog = std::make_unique<Win32Dialog>(page.dialog, page.handler, thread, pictures);
    dialog->OnCreated([this](HWND window) { OnPageCreated(window); });
    m_pages.push_back({std::move(dialog), MakeDialogResource(page.dialog, DialogPlace::kPage),
                       std::u16string(page.dialog.caption)});
  }
}

bool Win32Sheet::Run(HWND owner, HICON icon) {
  std::vector<PROPSHEETPAGEW> pages;
  for (Page& page : m_pages) {
    PROPSHEETPAGEW record{};
    record.dwSize = sizeof(record);
    record.dwFlags = PSP_DLGINDIRECT | PSP_USETITLE;
    record.pResource = reinterpret_cast<DLGTEMPLATE*>(page.resource.data());
    record.pszTitle = ToWide(page.title);
    record.pfnDlgProc = &Win32Dialog::Procedure;
    record.lParam = reinterpret_cast<LPARAM>(page.dialog.get());
    pages.push_back(record);
  }
  m_icon = icon;
  PROPSHEETHEADERW sheet{};
  sheet.dwSize = sizeof(sheet);
  sheet.dwFlags = PSH_PROPSHEETPAGE | PSH_NOAPPLYNOW | PSH_NOCONTEXTHELP;
  sheet.hwndParent = owner;
  sheet.pszCaption = ToWide(m_caption);
  sheet.nPages = static_cast<UINT>(pages.size());
  sheet.ppsp = pages.data();
  static_cast<void>(PropertySheetW(&sheet));
  return m_wasAccepted;
}

// The first page is made before the system says that the sheet is there.
void Win32Sheet::OnPageCreated(HWND page) {
  if (m_window == nullptr) {
    m_window = GetAncestor(page, GA_ROOT);
    SetWindowSubclass(m_window, &Watch, 0, reinterpret_cast<DWORD_PTR>(this));
    if (m_onCreated) {
      m_onCreated(m_window);
    }
  }
}

LRESULT CALLBACK Win32Sheet::Watch(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                   UINT_PTR id, DWORD_PTR self) {
  auto& sheet = *reinterpret_cast<Win32Sheet*>(self);
  if (message == WM_NCDESTROY) {
    RemoveWindowSubclass(window, &Watch, id);
    sheet.m_window = nullptr;
  }
  if (const auto answered = sheet.Answer(message, wParam)) {
    return *answered;
  }
  const LRESULT answer = DefSubclassProc(window, message, wParam, lParam);
  // Only now the system has changed the page, and each page has a default button of its own.
  if (message == WM_NOTIFY && reinterpret_cast<const NMHDR*>(lParam)->code == TCN_SELCHANGE) {
    sheet.ShowDefaultButton();
  }
  return answer;
}

std::optional<LRESULT> Win32Sheet::Answer(UINT message, WPARAM wParam) {
  if (IsClosing(message, wParam)) {
    if (IsBusy()) {
      return 0;
    }
    m_wasAccepted = message == WM_COMMAND && LOWORD(wParam) == IDOK;
    return std::nullopt;
  }
  const HWND button = GetDefaultButton();
  switch (message) {
    case WM_SHOWWINDOW:
      Prepare();
      return std::nullopt;
    case WM_HELP:
      AskForHelp();
      return TRUE;
    case WM_SETCURSOR:
      if (m_thread.IsBusy()) {
        m_thread.ShowPointer();
        return TRUE;
      }
      return std::nullopt;
    case DM_GETDEFID:
      // Enter presses the default button of the page. If the page has none, it presses OK.
      if (button == nullptr) {
        return std::nullopt;
      }
      return MAKELONG(GetDlgCtrlID(button), DC_HASDEFID);
    case WM_COMMAND:
      if (button == nullptr || LOWORD(wParam) != GetDlgCtrlID(button)) {
        return std::nullopt;
      }
      if (IsWindowEnabled(button)) {
        SendMessageW(GetParent(button), WM_COMMAND, wParam, reinterpret_cast<LPARAM>(button));
      }
      return 0;
    default:
      return std::nullopt;
  }
}

// Now the system has made everything, and nothing is seen yet.
void Win32Sheet::Prepare() {
  if (std::exchange(m_isPrepared, true)) {
    return;
  }
  m_handler.OnInitSheet(*this);
  for (const int size : {ICON_SMALL, ICON_BIG}) {
    SendMessageW(m_window, WM_SETICON, static_cast<WPARAM>(size), reinterpret_cast<LPARAM>(m_icon));
  }
  // The sheet of the handheld has OK alone. It takes the place of Cancel, at the edge.
  const HWND cancel = GetDlgItem(m_window, IDCANCEL);
  const HWND ok = GetDlgItem(m_window, IDOK);
  if (cancel != nullptr && ok != nullptr) {
    const RECT place = PlaceOf(cancel);
    ShowWindow(cancel, SW_HIDE);
    SetWindowPos(ok, nullptr, place.left, place.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  }
  ShowDefaultButton();
}

void Win32Sheet::ShowDefaultButton() const {
  const WPARAM style = GetDefaultButton() == nullptr ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON;
  SendMessageW(GetDlgItem(m_window, IDOK), BM_SETSTYLE, style, TRUE);
}

// The page that is shown is asked first. The sheet's own help follows if the page has none.
void Win32Sheet::AskForHelp() {
  if (IsBusy()) {
    return;
  }
  Win32Dialog* const page = GetActivePage();
  if (page == nullptr || !page->AskForHelp()) {
    m_handler.OnHelp();
  }
}

bool Win32Sheet::IsBusy() const {
  return m_thread.IsWaiting() ||
         std::ranges::any_of(m_pages, [](const Page& page) { return page.dialog->IsBusy(); });
}

Win32Dialog* Win32Sheet::GetActivePage() const {
  const auto shown = reinterpret_cast<HWND>(SendMessageW(m_window, PSM_GETCURRENTPAGEHWND, 0, 0));
  const auto found = std::ranges::find_if(
      m_pages, [shown](const Page& page) { return page.dialog->GetWindow() == shown; });
  return shown == nullptr || found == m_pages.end() ? nullptr : found->dialog.get();
}

HWND Win32Sheet::GetDefaultButton() const {
  const Win32Dialog* const page = GetActivePage();
  return page == nullptr ? nullptr : page->GetDefaultButton();
}

void Win32Sheet::SetTabText(std::size_t tab, std::u16string_view text) {
  std::u16string copy(text);
  TCITEMW item{};
  item.mask = TCIF_TEXT;
  item.pszText = ToWide(copy.data());
  SendMessageW(reinterpret_cast<HWND>(SendMessageW(m_window, PSM_GETTABCONTROL, 0, 0)),
               TCM_SETITEMW, tab, reinterpret_cast<LPARAM>(&item));
}

}  // namespace win32
