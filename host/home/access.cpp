#include "host/home/access.h"

#include <QAccessibleWidget>
#include <QLineEdit>
#include <QToolButton>
#include <QVariant>

namespace home {
namespace {

constexpr const char* kRoleProperty = "accessibleRole";

// The library asks for each class of an object in turn, the object's own first.
QAccessibleInterface* MakeInterface(const QString& /*className*/, QObject* object) {
  const QVariant role = object == nullptr ? QVariant() : object->property(kRoleProperty);
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
