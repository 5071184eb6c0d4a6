#include "backends/win32/win32_dialog.h"

#include <commctrl.h>
#include <prsht.h>

#include <algorithm>

#include "backends/win32/system_calls.h"
#include "resources/translations.h"

namespace win32 {

using resources::ControlKind;

namespace {

/// The dialog sends itself this to deliver what was posted.
constexpr UINT kDeliver = WM_APP + 1;

}  // namespace

std::u16string ReadWindowText(HWND window) {
  std::u16string text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, u'\0');
  const int length = GetWindowTextW(window, ToWide(text.data()), static_cast<int>(text.size()));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

Win32Dialog::Win32Dialog(const resources::DialogTemplate& dialog, platform::DialogHandler& handler,
                         UiThread& thread, Pictures& pictures)
    : m_template(dialog),
      m_handler(handler),
      m_calls(handler, [this] { PostMessageW(m_window, kDeliver, 0, 0); }),
      m_thread(thread),
      m_pictures(pictures) {}

Win32Dialog::~Win32Dialog() = default;

INT_PTR CALLBACK Win32Dialog::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    // A page's record begins with its size, and a dialog with the address of its functions.
    const auto* const page = reinterpret_cast<const PROPSHEETPAGEW*>(lParam);
    const bool isPage = (GetWindowLongPtrW(window, GWL_STYLE) & WS_CHILD) != 0;
    const LPARAM self = isPage ? page->lParam : lParam;
    SetWindowLongPtrW(window, DWLP_USER, self);
    reinterpret_cast<Win32Dialog*>(self)->OnInit(window);
    return TRUE;
  }
  auto* const self = reinterpret_cast<Win32Dialog*>(GetWindowLongPtrW(window, DWLP_USER));
  return self == nullptr ? FALSE : self->Answer(message, wParam, lParam);
}

INT_PTR Win32Dialog::Answer(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_COMMAND:
      OnCommand(LOWORD(wParam), HIWORD(wParam), reinterpret_cast<HWND>(lParam));
      return TRUE;
    case WM_PAINT:
      OnPaint();
      return TRUE;
    case WM_DRAWITEM:
      DrawItem(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
      return TRUE;
    case WM_LBUTTONDOWN:
      OnButton({static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))});
      return TRUE;
    case WM_HELP:
      // Of a page this goes on to the sheet, which asks the page.
      return !m_isPage && AskForHelp() ? TRUE : FALSE;
    case WM_NOTIFY:
      if (m_isPage && reinterpret_cast<const NMHDR*>(lParam)->code == PSN_APPLY) {
        TellOk();
        SetWindowLongPtrW(m_window, DWLP_MSGRESULT, PSNRET_NOERROR);
        return TRUE;
      }
      return FALSE;
    case WM_SETCURSOR:
      if (!m_thread.IsBusy()) {
        return FALSE;
      }
      m_thread.ShowPointer();
      SetWindowLongPtrW(m_window, DWLP_MSGRESULT, TRUE);
      return TRUE;
    case kDeliver:
      m_calls.Deliver();
      return TRUE;
    case WM_DESTROY:
      OnDestroy();
      return FALSE;
    default:
      return FALSE;
  }
}

void Win32Dialog::OnInit(HWND window) {
  m_window = window;
  m_isPage = (GetWindowLongPtrW(window, GWL_STYLE) & WS_CHILD) != 0;
  m_scale = Scale(window);
  if (m_onCreated) {
    m_onCreated(window);
  }
  MakeControls();
  m_handler.Attach(*this);
  MakeLinks();
  m_calls.Make([this] { m_handler.OnInitDialog(); });
}

// The handler waits here for the threads that it has started, and those still find their dialog.
void Win32Dialog::OnDestroy() {
  m_handler.Detach();
  m_window = nullptr;
  m_controls.clear();
  m_bars.clear();
}

// The system has made the controls in the order of the template.
void Win32Dialog::MakeControls() {
  HWND made = ::GetWindow(m_window, GW_CHILD);
  for (const resources::ControlTemplate& description : m_template.controls) {
    // A text with a key of the language file comes from the page, which sets it later.
    Control control;
    control.description = description;
    control.window = made;
    control.text = resources::Say(description.text);
    if (framework::ItemList::IsFor(description.kind)) {
      control.items.emplace(description.kind, description.text);
    }
    const bool hasKeys = std::ranges::any_of(
        m_template.keys,
        [&](const resources::KeyTemplate& key) { return key.control == description.id; });
    if (hasKeys) {
      SetWindowSubclass(made, &WatchControl, static_cast<UINT_PTR>(description.id),
                        reinterpret_cast<DWORD_PTR>(this));
    }
    if (description.kind == ControlKind::kPicture) {
      const SIZE size = m_pictures.GetSize(description.id);
      SetWindowPos(made, nullptr, 0, 0, m_scale.Across(static_cast<int>(size.cx)),
                   m_scale.Down(static_cast<int>(size.cy)), SWP_NOMOVE | SWP_NOZORDER);
    }
    ShowText(control);
    m_controls.push_back(std::move(control));
    made = ::GetWindow(made, GW_HWNDNEXT);
  }
}

// Each painted link gets a button that draws nothing but the mark of the focus. So the keyboard and
// a screen reader reach it; what shows is the page's own picture.
void Win32Dialog::MakeLinks() {
  for (const platform::PaintedLink& link : m_handler.GetLinks()) {
    const RECT area = m_scale.ToWindow(link.area);
    const HWND made = CreateWindowExW(0, L"BUTTON", ToWide(std::u16string(link.name)),
                                      WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_OWNERDRAW, area.left,
                                      area.top, area.right - area.left, area.bottom - area.top,
                                      m_window, nullptr, nullptr, nullptr);
    if (made != nullptr) {
      m_links[made] = link.area;
      SetWindowSubclass(made, &WatchControl, 0, reinterpret_cast<DWORD_PTR>(this));
    }
  }
}

void Win32Dialog::OnPaint() {
  PAINTSTRUCT painting;
  const HDC context = BeginPaint(m_window, &painting);
  GdiCanvas canvas(context, GetClientRect(), m_scale, m_pictures);
  m_handler.OnPaint(canvas);
  EndPaint(m_window, &painting);
}

void Win32Dialog::DrawItem(const DRAWITEMSTRUCT& item) {
  RECT area = item.rcItem;
  if (const Control* const control = FindWindowed(item.hwndItem)) {
    // While it is pressed, the picture stands a little lower to the right.
    const int moved = (item.itemState & ODS_SELECTED) != 0 ? 1 : 0;
    FillRect(item.hDC, &area, GetSysColorBrush(COLOR_BTNFACE));
    m_pictures.Draw(item.hDC, {moved, moved}, control->description.id, m_scale);
  }
  if ((item.itemState & ODS_FOCUS) != 0 && (item.itemState & ODS_NOFOCUSRECT) == 0) {
    DrawFocusRect(item.hDC, &area);
  } else if (item.itemAction == ODA_FOCUS) {
    // What was under the mark is the page's own.
    RECT place = area;
    MapWindowPoints(item.hwndItem, m_window, reinterpret_cast<POINT*>(&place), 2);
    InvalidateRect(m_window, &place, TRUE);
  }
}

void Win32Dialog::PostCommand(int id) { m_calls.Post(id); }

// The dialog may be gone when a call from another thread arrives. A weak pointer shows that.
void Win32Dialog::CallHere(const std::function<void(Win32Dialog&)>& call) {
  if (m_thread.IsCurrent()) {
    call(*this);
    return;
  }
  m_thread.Post([weak = std::weak_ptr(m_self), call] {
    if (const auto self = weak.lock()) {
      call(**self);
    }
  });
}

void Win32Dialog::EndDialog(int result) {
  CallHere([result](Win32Dialog& dialog) {
    if (dialog.m_calls.End(result) && !dialog.m_isPage) {
      ::EndDialog(dialog.m_window, result);
    }
  });
}

void Win32Dialog::Invalidate() { InvalidateRect(m_window, nullptr, TRUE); }

HWND Win32Dialog::GetDefaultButton() const {
  const auto found = std::ranges::find_if(m_controls, [](const Control& control) {
    return control.description.kind == ControlKind::kDefaultPushButton &&
           control.description.isVisible;
  });
  return found == m_controls.end() ? nullptr : found->window;
}

Win32Dialog::Control* Win32Dialog::Find(int id) {
  const auto found = std::ranges::find_if(
      m_controls, [id](const Control& control) { return control.description.id == id; });
  return id == resources::kNoControlId || found == m_controls.end() ? nullptr : &*found;
}

const Win32Dialog::Control* Win32Dialog::Find(int id) const {
  return const_cast<Win32Dialog*>(this)->Find(id);
}

Win32Dialog::Control* Win32Dialog::FindList(int id) {
  Control* const control = Find(id);
  return control == nullptr || !control->items ? nullptr : control;
}

const Win32Dialog::Control* Win32Dialog::FindList(int id) const {
  return const_cast<Win32Dialog*>(this)->FindList(id);
}

Win32Dialog::Control* Win32Dialog::FindWindowed(HWND window) {
  const auto found = std::ranges::find(m_controls, window, &Control::window);
  return window == nullptr || found == m_controls.end() ? nullptr : &*found;
}

}  // namespace win32
