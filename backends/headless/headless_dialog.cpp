#include "backends/headless/headless_dialog.h"

#include <algorithm>

#include "backends/headless/stroke_canvas.h"
#include "platform/dialog.h"

namespace headless {

using resources::ControlKind;

// What a user does goes through the same gate as on a screen: a control that is missing, hidden or
// disabled takes no press and no choice. What the page asks for is done at once, whatever the state
// of the control, as a window does it.
//
// The page belongs to one thread. Only SetText, StepProgress and EndDialog may be called by others,
// so the mutex guards texts, bars and the result, and nothing else.

HeadlessDialog::HeadlessDialog(const resources::DialogTemplate& dialog,
                               platform::DialogHandler& handler, platform::Threads* threads)
    : m_template(dialog), m_handler(handler) {
  for (const resources::ControlTemplate& control : dialog.controls) {
    if (control.id != resources::kNoControlId) {
      // A control without a number cannot be asked for, so nobody misses it here.
      const auto made = m_controls.emplace(
          control.id, Control{control, std::u16string(control.text), control.isEnabled});
      if (framework::ItemList::IsFor(control.kind)) {
        made.first->second.items.emplace(control.kind, control.text);
      }
    }
  }
  if (threads != nullptr) {
    // Without an event nobody can wait for the end, and the user closes the dialog.
    m_ended = threads->CreateManualResetEvent().value_or(nullptr);
  }
  // Last: the handler may ask about any control from now on.
  m_handler.Attach(*this);
}

HeadlessDialog::~HeadlessDialog() { m_handler.Detach(); }

void HeadlessDialog::Press(int id) {
  const Control* control = Find(id);
  if (control == nullptr || !control->isEnabled || !control->description.isVisible) {
    return;
  }
  // A check box of a window has its new state when the page hears of the click.
  if (control->description.kind == ControlKind::kCheckBox) {
    SetCheck(id, !control->isChecked);
  }
  m_handler.OnCommand(id, platform::CommandEvent::kClick);
  DeliverPosted();
}

void HeadlessDialog::Choose(int id, int index) {
  const Control* control = Find(id);
  if (control == nullptr || !control->isEnabled || !control->items ||
      !control->items->HasItem(index)) {
    return;
  }
  // The box first, as in a window: the page asks it what is selected.
  SetSelection(id, index);
  m_handler.OnCommand(id, platform::CommandEvent::kSelectionChange);
  DeliverPosted();
}

void HeadlessDialog::Type(int id, std::u16string_view text) {
  const Control* control = Find(id);
  if (control != nullptr && control->isEnabled &&
      control->description.kind == ControlKind::kEditableComboBox) {
    SetText(id, text);
  }
}

void HeadlessDialog::ClickAt(platform::Point point) {
  m_handler.OnLButtonDown(point);
  DeliverPosted();
}

bool HeadlessDialog::AskForHelp() {
  const bool hasHelp = m_handler.OnHelp();
  DeliverPosted();
  return hasHelp;
}

void HeadlessDialog::PressEnter() {
  // Enter presses the default button. A dialog without one takes it as OK.
  for (const auto& [id, control] : m_controls) {
    if (control.description.kind == ControlKind::kDefaultPushButton) {
      Press(id);
      return;
    }
  }
  m_handler.OnOK();
}

void HeadlessDialog::Close() { m_handler.OnCancel(); }

bool HeadlessDialog::HasControl(int id) const {
  const std::lock_guard lock(m_mutex);
  return Find(id) != nullptr || m_bars.contains(id);
}

bool HeadlessDialog::IsVisible(int id) const {
  const Control* control = Find(id);
  return control != nullptr && control->description.isVisible;
}

std::vector<std::u16string> HeadlessDialog::GetItems(int id) const {
  const framework::ItemList* items = FindItems(id);
  return items == nullptr ? std::vector<std::u16string>() : items->GetItems();
}

std::optional<platform::Font> HeadlessDialog::GetFont(int id) const {
  const Control* control = Find(id);
  return control == nullptr ? std::nullopt : control->font;
}

std::optional<HeadlessDialog::Progress> HeadlessDialog::GetProgress(int id) const {
  const std::lock_guard lock(m_mutex);
  const auto found = m_bars.find(id);
  return found == m_bars.end() ? std::nullopt : std::optional(found->second);
}

std::vector<PaintedStroke> HeadlessDialog::Paint() {
  StrokeCanvas canvas(GetClientRect());
  m_handler.OnPaint(canvas);
  return canvas.TakeStrokes();
}

std::optional<int> HeadlessDialog::GetResult() const {
  const std::lock_guard lock(m_mutex);
  return m_result;
}

void HeadlessDialog::DeliverPosted() {
  // A command may post the next one, or end the dialog. After its end nothing is delivered.
  while (!m_posted.empty() && !GetResult()) {
    const int id = m_posted.front();
    m_posted.pop_front();
    m_handler.OnCommand(id, platform::CommandEvent::kPosted);
  }
}

bool HeadlessDialog::WaitForEnd(std::uint32_t milliseconds) {
  return GetResult() ||
         (m_ended && m_ended->Wait(milliseconds) == platform::WaitResult::kSignalled);
}

void HeadlessDialog::SetText(int id, std::u16string_view text) {
  const std::lock_guard lock(m_mutex);
  Control* control = Find(id);
  if (control != nullptr && control->items) {
    control->items->SetField(text);
  } else if (control != nullptr) {
    control->text = text;
  }
}

std::u16string HeadlessDialog::GetText(int id) const {
  const std::lock_guard lock(m_mutex);
  const Control* control = Find(id);
  if (control == nullptr) {
    return {};
  }
  return control->items ? control->items->GetField() : control->text;
}

void HeadlessDialog::Enable(int id, bool isEnabled) {
  if (Control* control = Find(id)) {
    control->isEnabled = isEnabled;
  }
}

bool HeadlessDialog::IsEnabled(int id) const {
  const Control* control = Find(id);
  return control != nullptr && control->isEnabled;
}

void HeadlessDialog::SetFont(int id, const platform::Font& font) {
  if (Control* control = Find(id)) {
    control->font = font;
  }
}

int HeadlessDialog::AddItem(int id, std::u16string_view text) {
  framework::ItemList* items = FindItems(id);
  return items == nullptr ? -1 : items->Add(text);
}

void HeadlessDialog::DeleteItem(int id, int index) {
  if (framework::ItemList* items = FindItems(id)) {
    items->Delete(index);
  }
}

void HeadlessDialog::ResetItems(int id) {
  if (framework::ItemList* items = FindItems(id)) {
    items->Reset();
  }
}

int HeadlessDialog::GetItemCount(int id) const {
  const framework::ItemList* items = FindItems(id);
  return items == nullptr ? 0 : items->GetCount();
}

std::u16string HeadlessDialog::GetItemText(int id, int index) const {
  const framework::ItemList* items = FindItems(id);
  return items == nullptr ? std::u16string() : items->GetText(index);
}

std::optional<int> HeadlessDialog::GetSelection(int id) const {
  const framework::ItemList* items = FindItems(id);
  return items == nullptr ? std::nullopt : items->GetSelection();
}

void HeadlessDialog::SetSelection(int id, std::optional<int> index) {
  const std::lock_guard lock(m_mutex);
  if (framework::ItemList* items = FindItems(id)) {
    items->Select(index);
  }
}

void HeadlessDialog::SetHorizontalExtent(int id, int width) {
  Control* control = Find(id);
  if (control != nullptr && control->description.kind == ControlKind::kListBox) {
    control->horizontalExtent = width;
  }
}

int HeadlessDialog::GetHorizontalExtent(int id) const {
  const Control* control = Find(id);
  return control == nullptr ? 0 : control->horizontalExtent;
}

int HeadlessDialog::GetTextWidth(int /*id*/, std::u16string_view text) const {
  return MeasureText(text);
}

void HeadlessDialog::SetCheck(int id, bool isChecked) {
  Control* control = Find(id);
  if (control != nullptr && control->description.kind == ControlKind::kCheckBox) {
    control->isChecked = isChecked;
  }
}

bool HeadlessDialog::IsChecked(int id) const {
  const Control* control = Find(id);
  return control != nullptr && control->isChecked;
}

void HeadlessDialog::CreateProgressBar(int id, const platform::ProgressBar& bar) {
  const std::lock_guard lock(m_mutex);
  // A bar is made at run time and so is no control of the template.
  m_bars[id] = {bar, bar.minimum};
}

void HeadlessDialog::StepProgress(int id) {
  const std::lock_guard lock(m_mutex);
  const auto found = m_bars.find(id);
  if (found != m_bars.end()) {
    Progress& progress = found->second;
    progress.position = std::min(progress.position + progress.bar.step, progress.bar.maximum);
  }
}

void HeadlessDialog::DestroyProgressBar(int id) {
  const std::lock_guard lock(m_mutex);
  m_bars.erase(id);
}

platform::Rect HeadlessDialog::GetControlRect(int id) const {
  const Control* control = Find(id);
  return control == nullptr ? platform::Rect() : platform::ToPixels(control->description.rect);
}

platform::Rect HeadlessDialog::GetClientRect() const {
  return platform::ToPixels({0, 0, m_template.width, m_template.height});
}

void HeadlessDialog::PostCommand(int id) { m_posted.push_back(id); }

void HeadlessDialog::Invalidate() { ++m_invalidations; }

void HeadlessDialog::EndDialog(int result) {
  {
    const std::lock_guard lock(m_mutex);
    if (!m_result) {
      m_result = result;  // The first end counts.
    }
  }
  // Without the lock: a thread that is woken asks for the result at once.
  if (m_ended) {
    m_ended->Set();
  }
}

HeadlessDialog::Control* HeadlessDialog::Find(int id) {
  const auto found = m_controls.find(id);
  return found == m_controls.end() ? nullptr : &found->second;
}

const HeadlessDialog::Control* HeadlessDialog::Find(int id) const {
  const auto found = m_controls.find(id);
  return found == m_controls.end() ? nullptr : &found->second;
}

framework::ItemList* HeadlessDialog::FindItems(int id) {
  Control* control = Find(id);
  return control == nullptr || !control->items ? nullptr : &*control->items;
}

const framework::ItemList* HeadlessDialog::FindItems(int id) const {
  const Control* control = Find(id);
  return control == nullptr || !control->items ? nullptr : &*control->items;
}

}  // namespace headless
