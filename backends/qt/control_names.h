#pragma once

#include <QString>
#include <list>

#include "backends/qt/control.h"

namespace qt {

// What a screen reader calls the controls, in the words that the page shows anyhow, so that it
// speaks every language that the page does.

/// Ties each label to the control that it stands before. Once, when all controls are there.
void TieLabels(std::list<Control>& controls);

/// Names what has neither a text nor a label of its own: by the control that its template says, by
/// the frame it begins, or by the dialog. Whenever a text or a choice has changed.
void NameControls(std::list<Control>& controls, const QString& caption);

/// Gives the push buttons that can be seen their mnemonics, and letters of one size, in which all
/// of their texts fit; the check boxes letters of one size likewise. Whenever the text of one has
/// changed.
void ShowButtons(std::list<Control>& controls);

}  // namespace qt
