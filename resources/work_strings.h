#pragma once

#include <string_view>

namespace resources {

// What became of the work that the window of voice tags asked for.

/// A part of a sentence, with a capital letter at its beginning by now, as a whole sentence.
inline constexpr std::u16string_view kWholeSentence = u"%1.";
inline constexpr std::u16string_view kNoContactHasNumber =
    u"No contact has a telephone number. Voice tags are for telephone numbers.";
inline constexpr std::u16string_view kEntryNotReadHere =
    u"What is stored about this voice tag cannot be read. Check and repair the voice tags in "
    u"Set-up.";
inline constexpr std::u16string_view kContactNotReadHere =
    u"The contact of this voice tag cannot be read.";
inline constexpr std::u16string_view kContactNotFound =
    u"This contact or this number does not exist any more. Nothing was changed.";
inline constexpr std::u16string_view kTagNotLearned =
    u"The voice tag was not learned, and nothing was changed.";
inline constexpr std::u16string_view kNotAllDeleted = u"Not all of these voice tags were deleted.";
inline constexpr std::u16string_view kOldTagRemains =
    u"The new voice tag was learned. The earlier one could not be deleted and is still there.";
inline constexpr std::u16string_view kNotInTrash = u"The voice tag is not in the trash any more.";
inline constexpr std::u16string_view kNoSuchTag = u"This voice tag does not exist any more.";
/// What is deleted or replaced could not be brought back.
inline constexpr std::u16string_view kDiskTooFull = u"The disk is full. Nothing was changed.";

// What a user of the window can do. It follows a reason.
inline constexpr std::u16string_view kChooseAnotherBook =
    u"; choose another address book in Set-up";
inline constexpr std::u16string_view kChooseContacts =
    u". Choose your contacts in Set-up: the desktop's address book, or a vCard file";

}  // namespace resources
