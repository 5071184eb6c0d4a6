#include "backends/qt/qt_dialog.h"

#include <QPushButton>
#include <algorithm>

#include "backends/qt/control.h"
#include "backends/qt/control_names.h"
#include "backends/qt/look.h"
#include "backends/qt/strings.h"
#include "backends/qt/widgets.h"

namespace qt {

using platform::CommandEvent;
using resources::ControlKind;

QtDialog::QtDialog(const resources::DialogTemplate& dialog, platform::DialogHandler& handler,
                   UiThread& thread, Pictures& pictures, QWidget* parent)
    : m_template(dialog),
      m_handler(handler),
      m_calls(handler, [this] { DeliverLater(); }),
      m_thread(thread),
      m_surface(std::make_unique<DialogSurface>(dialog, handler, pictures, parent)),
      m_self(std::make_shared<QtDialog*>(this)) {
  m_surface->setAccessibleName(ToQString(dialog.caption));
  m_surface->onPress = [this](platform::Point point) {
    if (!m_thread.IsWaiting() && !m_calls.IsActive()) {
      m_calls.Make([&] { m_handler.OnLButtonDown(point); });
    }
  };
  MakeControls(pictures);
  // Last, when there are controls to ask about. Links are asked of the handler, so they come after
  // it.
  m_handler.Attach(*this);
  MakeLinks();
}

QtDialog::~QtDialog() { m_handler.Detach(); }

void QtDialog::MakeControls(Pictures& pictures) {
  for (const resources::ControlTemplate& description : m_template.controls) {
    const int id = description.id;
    m_controls.push_back(MakeControl(description, *m_surface, pictures));
    Hear(m_controls.back());
    const bool hasKeys = std::ranges::any_of(
        m_template.keys, [id](const resources::KeyTemplate& key) { return key.control == id; });
    if (hasKeys) {
      m_surface->WatchKeys(*m_controls.back().widget, id, [this](int control, resources::Key key) {
        return PressKey(control, key);
      });
    }
  }
  // The order matters. A label's room must be known before its text is fitted, and each text must
  // be shown before a name is made of it.
  GiveLabelsRoom();
  TieLabels(m_controls);
  for (Control& control : m_controls) {
    ShowText(control);
  }
  ShowButtons(m_controls);
  NameControls(m_controls, ToQString(m_template.caption));
}

// Each painted link gets an area that takes the focus. A click on it by the keyboard becomes a
// press of the mouse at the link's middle, so the page has one way to follow a link.
void QtDialog::MakeLinks() {
  for (const platform::PaintedLink& link : m_handler.GetLinks()) {
    const platform::Rect& area = link.area;
    const platform::Point middle{(area.left + area.right) / 2, (area.top + area.bottom) / 2};
    auto* made = new LinkArea(m_surface.get(), ToDesktop(area));
    made->setAccessibleName(ToQString(link.name));
    QObject::connect(made, &QAbstractButton::clicked, made,
                     [this, middle] { m_surface->onPress(middle); });
    m_links.push_back(made);
  }
}

// A label may grow to the right up to the next visible control on its height, or to the edge.
void QtDialog::GiveLabelsRoom() {
  for (Control& label : m_controls) {
    if (label.label == nullptr) {
      continue;
    }
    const QRect place = label.widget->geometry();
    int right = m_surface->width() - place.left();
    for (const Control& other : m_controls) {
      const QRect area = other.widget->geometry();
      const bool isBeside = area.top() <= place.bottom() && area.bottom() >= place.top() &&
                            area.left() > place.right();
      if (isBeside && other.description.isVisible) {
        right = std::min(right, area.left() - ToDesktop(2));
      }
    }
    label.room = std::max(label.room, right - place.left());
  }
}

void QtDialog::Init() {
  m_calls.Make([this] { m_handler.OnInitDialog(); });
}

void QtDialog::TellOk() {
  m_calls.Make([this] { m_handler.OnOK(); });
}

void QtDialog::TellCancel() {
  if (!m_thread.IsWaiting() && !m_calls.IsActive()) {
    m_calls.Make([this] { m_handler.OnCancel(); });
  }
}

bool QtDialog::AskForHelp() {
  bool hasHelp = false;
  m_calls.Make([&] { hasHelp = m_handler.OnHelp(); });
  return hasHelp;
}

void QtDialog::DeliverLater() {
  m_thread.PostForLater([weak = std::weak_ptr(m_self)] {
    if (const auto self = weak.lock()) {
      (*self)->m_calls.Deliver();
    }
  });
}

// The names of controls follow their texts and choices, so they are renewed before the page works.
void QtDialog::TellUsersCommand(int id, CommandEvent event) {
  Rename();
  if (m_thread.IsWaiting() || m_calls.IsActive()) {
    return;
  }
  m_command = id;
  m_calls.Make([&] { m_handler.OnCommand(id, event); });
  m_command = resources::kNoControlId;
}

bool QtDialog::PressKey(int control, resources::Key key) {
  const auto found = std::ranges::find_if(m_template.keys, [&](const resources::KeyTemplate& each) {
    return each.control == control && each.key == key;
  });
  if (found == m_template.keys.end()) {
    return false;
  }
  const Control* button = Find(found->button);
  if (button != nullptr && button->button != nullptr) {
    button->button->click();
  }
  return true;
}

void QtDialog::PostCommand(int id) { m_calls.Post(id); }

// The dialog may be gone when a call from another thread arrives. A weak pointer shows that.
void QtDialog::CallHere(const std::function<void(QtDialog&)>& call) {
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

void QtDialog::EndDialog(int result) {
  CallHere([result](QtDialog& dialog) {
    if (dialog.m_calls.End(result) && dialog.m_onEnd) {
      dialog.m_onEnd();
    }
  });
}

void QtDialog::Invalidate() { m_surface->update(); }

QPushButton* QtDialog::GetDefaultButton() const {
  for (const Control& control : m_controls) {
    if (control.description.kind == ControlKind::kDefaultPushButton &&
        control.description.isVisible) {
      return static_cast<QPushButton*>(control.button);
    }
  }
  return nullptr;
}

std::vector<QWidget*> QtDialog::GetTabChain() const {
  std::vector<QWidget*> chain;
  for (const Control& control : m_controls) {
    if (control.widget->focusPolicy() != Qt::NoFocus && control.description.isVisible) {
      chain.push_back(control.widget);
    }
  }
  // What is painted has no place among the controls, so links come after all of them.
  chain.insert(chain.end(), m_links.begin(), m_links.end());
  return chain;
}

void QtDialog::Rename() { NameControls(m_controls, ToQString(m_template.caption)); }

Control* QtDialog::Find(int id) {
  const auto found = std::ranges::find_if(
      m_controls, [id](const Control& control) { return control.description.id == id; });
  return id == resources::kNoControlId || found == m_controls.end() ? nullptr : &*found;
}

const Control* QtDialog::Find(int id) const {
  const auto found = std::ranges::find_if(
      m_controls, [id](const Control& control) { return control.description.id == id; });
  return id == resources::kNoControlId || found == m_controls.end() ? nullptr : &*found;
}

Control* QtDialog::FindList(int id) {
  Control* control = Find(id);
  return control == nullptr || !control->items ? nullptr : control;
}

const Control* QtDialog::FindList(int id) const {
  const Control* control = Find(id);
  return control == nullptr || !control->items ? nullptr : control;
}

}  // namespace qt
