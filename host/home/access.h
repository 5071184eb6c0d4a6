#pragma once

#include <QAccessible>
#include <QLabel>
#include <QString>

class QLineEdit;

namespace home {

// What screen readers know of widgets that the library does not know.

/// Gives the widget a role. Its name and description are accessibleName() and
/// accessibleDescription(). To be called in its constructor, before screen readers ask for it. A
/// QToolButton that is a QAccessible::ButtonMenu shows its menu if a screen reader asks for that.
void SetAccessibleRole(QWidget& widget, QAccessible::Role role);

/// Names the button that clears a field. Marks of mnemonics in the name are left out.
void NameClearButton(QLineEdit& field, const QString& name);

/// A line of text that screen readers say by themselves as soon as it changes, wherever the focus
/// is.
class LiveLabel : public QLabel {
 public:
  explicit LiveLabel(QWidget* parent);

  /// Shows the text, and lets screen readers find it without saying it.
  void ShowQuietly(const QString& text);
  /// Shows the text, and lets screen readers say it if it is not empty, also if it is the same as
  /// before. If the label is out of sight, they say it when it comes into sight.
  void Announce(const QString& text);
  /// Lets screen readers say something, and leaves what is shown.
  void Tell(const QString& text);
};

}  // namespace home
