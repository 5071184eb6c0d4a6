// What a page asks of the controls of a dialog. Of a combo box or a list box, a framework::ItemList
// holds the items and the selection, and the control of the system shows them.

#include "backends/win32/win32_dialog.h"

#include <commctrl.h>

#include <algorithm>

#include "backends/win32/system_calls.h"

namespace win32 {
namespace {

using resources::ControlKind;

/// The messages by which a combo box or a list box gets its items.
struct ListMessages {
  UINT insert;
  UINT erase;
  UINT reset;
  UINT select;
  UINT getSelection;
};
constexpr ListMessages kComboMessages{CB_INSERTSTRING, CB_DELETESTRING, CB_RESETCONTENT,
                                      CB_SETCURSEL, CB_GETCURSEL};
constexpr ListMessages kListMessages{LB_INSERTSTRING, LB_DELETESTRING, LB_RESETCONTENT,
                                     LB_SETCURSEL, LB_GETCURSEL};

/// The distance between a button's edge and its text, in pixels of the device.
constexpr int kMargin = 2;

[[nodiscard]] const ListMessages& MessagesOf(ControlKind kind) {
  return kind == ControlKind::kListBox ? kListMessages : kComboMessages;
}

/// Raises a flag for as long as it lives. A control reports changes that the page makes like those
/// that the user makes. The flag says whose they are.
class Change {
 public:
  explicit Change(bool& flag) : m_flag(flag), m_earlier(flag) { m_flag = true; }
  Change(const Change&) = delete;
  Change& operator=(const Change&) = delete;
  ~Change() { m_flag = m_earlier; }

 private:
  bool& m_flag;
  const bool m_earlier;
};

/// Returns the text with "&" doubled. A button takes a single one for the mark of its key.
[[nodiscard]] std::u16string WithoutMarks(std::u16string_view text) {
  std::u16string plain;
  for (const char16_t unit : text) {
    plain.append(unit == u'&' ? 2 : 1, unit);
  }
  return plain;
}

[[nodiscard]] LPARAM AsParameter(const std::u16string& text) {
  return reinterpret_cast<LPARAM>(ToWide(text));
}

}  // namespace

void Win32Dialog::ShowText(Control& control) {
  const ControlKind kind = control.description.kind;
  if (control.items) {
    ShowSelection(control);
  } else if (kind == ControlKind::kStatic || kind == ControlKind::kCenteredStatic) {
    SetWindowTextW(control.window, ToWide(control.text));
  } else {
    SetWindowTextW(control.window, ToWide(WithoutMarks(control.text)));
  }
  if (kind == ControlKind::kPushButton || kind == ControlKind::kDefaultPushButton) {
    FitText(control);
  }
}

void Win32Dialog::FitText(Control& control) {
  const auto usual = reinterpret_cast<HFONT>(SendMessageW(m_window, WM_GETFONT, 0, 0));
  RECT area{};
  ::GetClientRect(control.window, &area);
  FontHandle narrowed = NarrowedFont(usual, control.text, area.right - 2 * m_scale.Across(kMargin));
  const HFONT shown = narrowed.Get() == nullptr ? usual : narrowed.Get();
  SendMessageW(control.window, WM_SETFONT, reinterpret_cast<WPARAM>(shown), TRUE);
  control.font = std::move(narrowed);
}

void Win32Dialog::ShowSelection(const Control& control) {
  const ListMessages& messages = MessagesOf(control.description.kind);
  const int wanted = control.items->GetSelection().value_or(-1);
  const Change change(m_isChanging);
  if (SendMessageW(control.window, messages.getSelection, 0, 0) != wanted) {
    SendMessageW(control.window, messages.select, static_cast<WPARAM>(wanted), 0);
  }
  const std::u16string field = control.items->GetField();
  if (control.description.kind == ControlKind::kEditableComboBox &&
      ReadWindowText(control.window) != field) {
    SetWindowTextW(control.window, ToWide(field));
  }
}

void Win32Dialog::SetText(int id, std::u16string_view text) {
  CallHere([id, text = std::u16string(text)](Win32Dialog& dialog) {
    if (Control* const control = dialog.Find(id)) {
      if (control->items) {
        control->items->SetField(text);
      } else {
        control->text = text;
      }
      dialog.ShowText(*control);
    }
  });
}

std::u16string Win32Dialog::GetText(int id) const {
  const Control* const control = Find(id);
  if (control == nullptr) {
    return {};
  }
  return control->items ? control->items->GetField() : control->text;
}

void Win32Dialog::Enable(int id, bool isEnabled) {
  if (const Control* const control = Find(id)) {
    if (!isEnabled) {
      TakeFocusFrom(*control);
    }
    EnableWindow(control->window, isEnabled ? TRUE : FALSE);
  }
}

// A disabled control would keep the focus, and the keyboard would be dead. The next button might do
// far more than the one pressed before. So the list gets it, or the first control that is no
// button.
void Win32Dialog::TakeFocusFrom(const Control& leaving) {
  if (GetFocus() != leaving.window) {
    return;
  }
  const Control* heir = nullptr;
  for (const Control& control : m_controls) {
    const bool isFit = control.items && &control != &leaving && IsWindowVisible(control.window) &&
                       IsWindowEnabled(control.window);
    const bool isList = control.description.kind == ControlKind::kListBox;
    if (isFit && (heir == nullptr || isList)) {
      heir = &control;
    }
  }
  if (heir == nullptr) {
    SendMessageW(m_window, WM_NEXTDLGCTL, 0, FALSE);
  } else {
    SendMessageW(m_window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(heir->window), TRUE);
  }
}

bool Win32Dialog::IsEnabled(int id) const {
  const Control* const control = Find(id);
  return control != nullptr && IsWindowEnabled(control->window);
}

void Win32Dialog::SetFont(int id, const platform::Font& font) {
  if (Control* const control = Find(id)) {
    FontHandle made(font, m_scale);
    SendMessageW(control->window, WM_SETFONT, reinterpret_cast<WPARAM>(made.Get()), TRUE);
    control->font = std::move(made);
  }
}

int Win32Dialog::AddItem(int id, std::u16string_view text) {
  Control* const control = FindList(id);
  if (control == nullptr) {
    return -1;
  }
  const int place = control->items->Add(text);
  {
    const Change change(m_isChanging);
    SendMessageW(control->window, MessagesOf(control->description.kind).insert,
                 static_cast<WPARAM>(place), AsParameter(std::u16string(text)));
  }
  ShowSelection(*control);
  // A list that is filled before it is shown stays at its top.
  if (control->description.kind == ControlKind::kListBox && IsWindowVisible(control->window)) {
    SendMessageW(control->window, LB_SETTOPINDEX, static_cast<WPARAM>(place), 0);
  }
  return place;
}

void Win32Dialog::DeleteItem(int id, int index) {
  Control* const control = FindList(id);
  if (control != nullptr && control->items->HasItem(index)) {
    control->items->Delete(index);
    {
      const Change change(m_isChanging);
      SendMessageW(control->window, MessagesOf(control->description.kind).erase,
                   static_cast<WPARAM>(index), 0);
    }
    ShowSelection(*control);
  }
}

void Win32Dialog::ResetItems(int id) {
  if (Control* const control = FindList(id)) {
    control->items->Reset();
    {
      const Change change(m_isChanging);
      SendMessageW(control->window, MessagesOf(control->description.kind).reset, 0, 0);
    }
    ShowSelection(*control);
  }
}

int Win32Dialog::GetItemCount(int id) const {
  const Control* const control = FindList(id);
  return control == nullptr ? 0 : control->items->GetCount();
}

std::u16string Win32Dialog::GetItemText(int id, int index) const {
  const Control* const control = FindList(id);
  return control == nullptr ? std::u16string() : control->items->GetText(index);
}

std::optional<int> Win32Dialog::GetSelection(int id) const {
  const Control* const control = FindList(id);
  return control == nullptr ? std::nullopt : control->items->GetSelection();
}

void Win32Dialog::SetSelection(int id, std::optional<int> index) {
  if (Control* const control = FindList(id)) {
    control->items->Select(index);
    ShowSelection(*control);
  }
}

void Win32Dialog::SetHorizontalExtent(int id, int width) {
  Control* const control = Find(id);
  if (control != nullptr && control->description.kind == ControlKind::kListBox) {
    control->horizontalExtent = width;
    SendMessageW(control->window, LB_SETHORIZONTALEXTENT,
                 static_cast<WPARAM>(m_scale.Across(width)), 0);
  }
}

int Win32Dialog::GetHorizontalExtent(int id) const {
  const Control* const control = Find(id);
  return control == nullptr ? 0 : control->horizontalExtent;
}

int Win32Dialog::GetTextWidth(int id, std::u16string_view text) const {
  const Control* const control = Find(id);
  const HWND window = control == nullptr ? m_window : control->window;
  const HDC context = GetDC(window);
  int width = 0;
  {
    const SelectedFont selected(context,
                                reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)));
    width = MeasureLine(context, text);
  }
  ReleaseDC(window, context);
  return m_scale.ToDeviceWidth(width);
}

void Win32Dialog::SetCheck(int id, bool isChecked) {
  const Control* const control = Find(id);
  if (control != nullptr && control->description.kind == ControlKind::kCheckBox) {
    SendMessageW(control->window, BM_SETCHECK, isChecked ? BST_CHECKED : BST_UNCHECKED, 0);
  }
}

bool Win32Dialog::IsChecked(int id) const {
  const Control* const control = Find(id);
  return control != nullptr && control->description.kind == ControlKind::kCheckBox &&
         SendMessageW(control->window, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void Win32Dialog::CreateProgressBar(int id, const platform::ProgressBar& bar) {
  const RECT area = m_scale.ToWindow(bar.rect);
  const HWND made = CreateWindowExW(0, L"msctls_progress32", L"",
                                    WS_CHILD | WS_VISIBLE | (bar.isSmooth ? PBS_SMOOTH : 0U),
                                    area.left, area.top, area.right - area.left,
                                    area.bottom - area.top, m_window, nullptr, nullptr, nullptr);
  SendMessageW(made, PBM_SETRANGE32, static_cast<WPARAM>(bar.minimum), bar.maximum);
  SendMessageW(made, PBM_SETPOS, static_cast<WPARAM>(bar.minimum), 0);
  m_bars[id] = {made, bar.step, bar.maximum};
}

// The system's own step would begin again at the end.
void Win32Dialog::StepProgress(int id) {
  CallHere([id](Win32Dialog& dialog) {
    const auto found = dialog.m_bars.find(id);
    if (found != dialog.m_bars.end()) {
      const Bar& bar = found->second;
      const auto position = static_cast<int>(SendMessageW(bar.window, PBM_GETPOS, 0, 0));
      SendMessageW(bar.window, PBM_SETPOS,
                   static_cast<WPARAM>(std::min(position + bar.step, bar.maximum)), 0);
    }
  });
}

void Win32Dialog::DestroyProgressBar(int id) {
  if (const auto found = m_bars.find(id); found != m_bars.end()) {
    DestroyWindow(found->second.window);
    m_bars.erase(found);
  }
}

platform::Rect Win32Dialog::GetControlRect(int id) const {
  const Control* const control = Find(id);
  return control == nullptr ? platform::Rect() : platform::ToPixels(control->description.rect);
}

platform::Rect Win32Dialog::GetClientRect() const {
  return platform::ToPixels({0, 0, m_template.width, m_template.height});
}

}  // namespace win32
