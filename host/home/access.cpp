#include "host/home/access.h"

#include <QAccessibleWidget>
#include <QLineEdit>
#include <QToolButton>
#include <QVariant>

// Screen readers describe a widget by its class. A widget that is something else to its user, such
// as a label that is a heading, has its role as a property, and the factory of this file reads it.
namespace home {
namespace {

constexpr const char* kRoleProperty = "accessibleRole";

/// A button with a menu. The library's own does nothing on "ShowMenu" if any press opens the menu.
class MenuButtonInterface final : public QAccessibleWidget {
 public:
  explicit MenuButtonInterface(QToolButton& button)
      : QAccessibleWidget(&button, QAccessible::ButtonMenu), m_button(button) {}

  [[nodiscard]] QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.hasPopup = true;
    return state;
  }

  [[nodiscard]] QStringList actionNames() const override {
    return m_button.isEnabled() ? QStringList{showMenuAction(), setFocusAction()} : QStringList();
  }

  void doAction(const QString& action) override {
    if (action == showMenuAction() && m_button.isEnabled()) {
      // The menu serves events until it is closed, and the screen reader waits for an answer.
      QMetaObject::invokeMethod(&m_button, &QToolButton::showMenu, Qt::QueuedConnection);
    } else {
      QAccessibleWidget::doAction(action);
    }
  }

 private:
  QToolButton& m_button;
};

// The library asks for each class of an object in turn, the object's own first.
QAccessibleInterface* MakeInterface(const QString& /*className*/, QObject* object) {
  const QVariant role = object == nullptr ? QVariant() : object->property(kRoleProperty);
  if (auto* const button = qobject_cast<QToolButton*>(object);
      button != nullptr && role == QVariant(static_cast<int>(QAccessible::ButtonMenu))) {
    return new MenuButtonInterface(*button);
  }
  return role.isValid() ? new QAccessibleWidget(qobject_cast<QWidget*>(object),
                                                static_cast<QAccessible::Role>(role.toInt()))
                        : nullptr;
}

}  // namespace

void SetAccessibleRole(QWidget& widget, QAccessible::Role role) {
  static const bool kIsInstalled = [] {
    QAccessible::installFactory(MakeInterface);
    return true;
  }();
  static_cast<void>(kIsInstalled);
  widget.setProperty(kRoleProperty, static_cast<int>(role));
}

void NameClearButton(QLineEdit& field, const QString& name) {
  if (auto* const button = field.findChild<QToolButton*>()) {
    button->setAccessibleName(QString(name).remove(u'&'));
  }
}

LiveLabel::LiveLabel(QWidget* parent) : QLabel(parent) {
  SetAccessibleRole(*this, QAccessible::Notification);
  setTextFormat(Qt::PlainText);
}

void LiveLabel::ShowQuietly(const QString& text) {
  setText(text);
  setAccessibleName(text);
}

void LiveLabel::Announce(const QString& text) {
  setText(text);
  Tell(text);
}

void LiveLabel::Tell(const QString& text) {
  setAccessibleName(text);
  // Screen readers say a notification when it appears. The library reports that by itself.
  if (!text.isEmpty() && isVisible()) {
    QAccessibleEvent event(this, QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&event);
  }
}

}  // namespace home
