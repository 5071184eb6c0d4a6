#pragma once

#include <QString>
#include <list>

#include "backends/qt/control.h"

namespace qt {

// The names by which a screen reader calls the controls. They are made of the words that the page
// shows, so they are in the page's language.

/// Ties each label to the control that follows it. Call this once, when all controls exist.
void TieLabels(std::list<Control>& controls);

/// Names the controls that have neither a text nor a label of their own: after the control that the
/// template gives, after the frame that they begin, or after the dialog. Call this whenever a text
/// or a choice has changed.
void NameControls(std::list<Control>& controls, const QString& caption);

/// Gives the visible push buttons their mnemonics, and letters of one size, in which all their
/// texts fit. Gives the check boxes letters of one size too. Call this whenever a text of these has
/// changed.
void ShowButtons(std::list<Control>& controls);

}  // namespace qt
