#pragma once

#include "resources/dialog_template.h"

namespace resources {

// Controls of the Learning page.
inline constexpr int kContactsLabel = 1031;
inline constexpr int kContactCombo = 1009;
inline constexpr int kNumberCombo = 1010;
inline constexpr int kRecordButton = 1016;
inline constexpr int kCountLabel = 1030;
inline constexpr int kTagList = 1013;
inline constexpr int kPlayButton = 1014;
inline constexpr int kDeleteButton = 1015;
inline constexpr int kDeleteAllButton = 1017;
inline constexpr int kTestButton = 1025;
inline constexpr int kProgressBar = 1212;  ///< Made while something is in progress.

/// Command that the Learning page sends itself once it is set up.
inline constexpr int kCheckVersionCommand = 2222;

extern const DialogTemplate kLearningDialog;
extern const DialogTemplate kAboutDialog;

}  // namespace resources
