#pragma once

#include <string_view>

namespace resources {

// Faults that language files in use do not know. A key of their own would show as nothing. So they
// follow the language of the desktop.

/// The names of the tags follow, then what to do.
inline constexpr std::u16string_view kTagsNotCompared =
    u"No voice template can be read for these voice tags:";
inline constexpr std::u16string_view kRepairTemplates =
    u"Close Zedra Voxtrel and run this command. It makes missing and damaged templates again from "
    u"the recordings: voxtrel check --repair";
inline constexpr std::u16string_view kTagsWithoutName =
    u"Some voice tags were not read, or were removed because their contact is gone. ";
/// Follows it.
inline constexpr std::u16string_view kOpenAgain = u"Close Zedra Voxtrel and open it again.";
inline constexpr std::u16string_view kTestCancelled =
    u"The test was cancelled. Nothing is listed, since not all voice tags were compared.";
/// The tag whose template could not be written comes before it.
inline constexpr std::u16string_view kReinitStopped =
    u"The templates of this voice tag and of those after it were not made again. There is no room "
    u"on the device, another program has the file open, or the folder Voxtrel_stor is missing. "
    u"Make room or close that program, close this window, and run this command: voxtrel reinit "
    u"--force. If the folder is missing, make it first: voxtrel check --repair";
/// The two lines of the waiting window after the work has stopped.
inline constexpr std::u16string_view kReinitGaveUp = u"The work has stopped.";
inline constexpr std::u16string_view kReinitMayClose = u"Press Escape to close.";
inline constexpr std::u16string_view kReinitNotStarted =
    u"The templates cannot be made again: the device is too busy. Record again those that are not "
    u"recognized.";
/// Without a copy in the trash, a deletion would destroy what it deletes.
inline constexpr std::u16string_view kNotKept =
    u"Nothing was deleted, because the trash cannot take a copy.";
inline constexpr std::u16string_view kTagDestroyed =
    u"The disk is full: the tag was deleted and could not be kept in the trash. It cannot be "
    u"restored.";
/// "%d" is the number of them.
inline constexpr std::u16string_view kTagsDestroyed =
    u"The disk is full: the trash has no room for all that was deleted. Tags that cannot be "
    u"restored: "
    u"%d";
/// Follows the question whether to delete all tags while the list is not filled. "%d" is the number
/// of recordings that are there.
inline constexpr std::u16string_view kRecordingsWillBeDeleted =
    u"Recordings that will be deleted: %d";

}  // namespace resources
