#pragma once

#include "resources/dialog_template.h"

namespace resources {

// Controls of the Learning page.
inline constexpr int kContactsLabelId = 1031;
inline constexpr int kContactComboId = 1009;
inline constexpr int kNumberComboId = 1010;
inline constexpr int kRecordButtonId = 1016;
inline constexpr int kCountLabelId = 1030;
inline constexpr int kTagListId = 1013;
inline constexpr int kPlayButtonId = 1014;
inline constexpr int kDeleteButtonId = 1015;
inline constexpr int kDeleteAllButtonId = 1017;
inline constexpr int kTestButtonId = 1025;
inline constexpr int kProgressBarId = 1212;  ///< Made while something is in progress.

// Controls of the connection settings page.
inline constexpr int kPortComboId = 1000;
inline constexpr int kBaudRateComboId = 1001;
inline constexpr int kDataBitsComboId = 1002;
inline constexpr int kStopBitsComboId = 1003;
inline constexpr int kFlowControlComboId = 1004;
inline constexpr int kHeadsetCheckId = 1005;
inline constexpr int kDefaultsButtonId = 1006;
inline constexpr int kSaveButtonId = 1007;
inline constexpr int kNoHangUpCheckId = 1018;

// Controls of the Test dialog.
inline constexpr int kTestListId = 1026;
inline constexpr int kTestHelpId = 142;  ///< A picture, of the same number.

// Controls of the dialog that waits while every template is computed again.
inline constexpr int kReinitWaitLine1Id = 1023;
inline constexpr int kReinitWaitLine2Id = 1024;

// Controls of the box that waits while voice tags are compared.
inline constexpr int kComparisonTextId = 1027;
inline constexpr int kComparisonCancelId = 1028;

/// Command that the Learning page sends itself once it is set up.
inline constexpr int kCheckVersionCommand = 2222;

extern const DialogTemplate kLearningDialog;
extern const DialogTemplate kAboutDialog;
extern const DialogTemplate kConnectionDialog;
extern const DialogTemplate kTestResultsDialog;
extern const DialogTemplate kReinitDialog;
extern const DialogTemplate kComparisonDialog;

}  // namespace resources
